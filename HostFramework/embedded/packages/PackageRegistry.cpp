#include "HostFramework/embedded/packages/PackageRegistry.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "HostFramework/Threads.h"

ROTBase::~ROTBase() = default;

Proxy::~Proxy() = default;

int Proxy::OnCallSynchronous(unsigned short, const VSerializable&, VSerializable&) { return 1; }

int Proxy::OnCallAsynchronous(unsigned short, const VSerializable&) { return 1; }

PackageProxy::PackageProxy(ROTBase* rot) : rot_(rot) {}

PackageInstance::~PackageInstance() = default;

PackageInstance* PackageInstance::FCreate() { return new PackageInstance; }

namespace {

thread_local Proxy* currentCaller = nullptr;

}  // namespace

void QantServerCallContext::SetCaller(Proxy* proxy) { currentCaller = proxy; }

Proxy* QantServerCallContext::GetCaller() { return currentCaller; }

namespace embedded {
namespace {

// Never destroyed: libraries take their classes out while the process ends.
struct Registry {
  sfMutex mutex;
  std::vector<PackageClass> classes SF_GUARDED_BY(mutex);
};

Registry& TheRegistry() {
  static Registry* const registry = new Registry;
  return *registry;
}

template <typename Matches>
bool Find(Matches matches, PackageClass* found) {
  Registry& registry = TheRegistry();
  const sfGuard guard(registry.mutex);
  const auto at = std::find_if(registry.classes.begin(), registry.classes.end(), matches);
  if (at == registry.classes.end()) return false;
  *found = *at;
  return true;
}

// The one message that `bytes` hold; null when they are not exactly that.
std::unique_ptr<VSerializable> ReadMessage(std::string_view bytes) {
  VStream head(bytes);
  std::string signature;
  if (!head.ReadString(&signature)) return nullptr;
  std::unique_ptr<VSerializable> message = MessageType::MakeMessage(signature);
  VStream stream(bytes);
  if (!message || !message->Read(stream) || !stream.AtEnd()) return nullptr;
  return message;
}

}  // namespace

bool FindPackageClass(std::string_view name, PackageClass* found) {
  return Find([&](const PackageClass& c) { return c.name == name || c.versionedName == name; },
              found);
}

bool FindPackageClass(const GUID& classId, PackageClass* found) {
  return Find([&](const PackageClass& c) { return c.classId == classId; }, found);
}

PackageConnection::PackageConnection(std::unique_ptr<PackageInstance> instance,
                                     std::unique_ptr<PackageProxy> proxy)
    : instance_(std::move(instance)), proxy_(std::move(proxy)) {}

std::unique_ptr<PackageConnection> PackageConnection::Open(std::string_view name) {
  PackageClass found;
  if (!FindPackageClass(name, &found) || !found.proxyFactory) return nullptr;
  std::unique_ptr<PackageInstance> instance(found.instanceFactory ? found.instanceFactory()
                                                                  : nullptr);
  std::unique_ptr<PackageProxy> proxy(found.proxyFactory(nullptr));
  if (!proxy) return nullptr;
  return std::unique_ptr<PackageConnection>(
      new PackageConnection(std::move(instance), std::move(proxy)));
}

int PackageConnection::Call(unsigned short method, const VSerializable& request,
                            VSerializable& response) {
  VStream stream;
  request.Write(stream);
  std::string answer;
  const int result = Serve(method, stream.bytes(), response.GetSignature(), &answer);
  if (result != 0) return result;
  VStream received(answer);
  return response.Read(received) && received.AtEnd() ? 0 : 1;
}

int PackageConnection::CallAsynchronous(unsigned short method, const VSerializable& request) {
  VStream stream;
  request.Write(stream);
  const std::unique_ptr<VSerializable> received = ReadMessage(stream.bytes());
  return received ? proxy_->OnCallAsynchronous(method, *received) : 1;
}

int PackageConnection::Serve(unsigned short method, std::string_view request,
                             std::string_view responseSignature, std::string* answer) {
  const std::unique_ptr<VSerializable> received = ReadMessage(request);
  const std::unique_ptr<VSerializable> response = MessageType::MakeMessage(responseSignature);
  if (!received || !response) return 1;
  const int result = proxy_->OnCallSynchronous(method, *received, *response);
  if (result != 0) return result;
  VStream stream;
  response->Write(stream);
  answer->append(stream.bytes());
  return 0;
}

}  // namespace embedded

bool PackageRegistration::ClassObjectRegistration(unsigned reason, const GUID& classId,
                                                  PackageProxyFactory proxyFactory,
                                                  PackageInstanceFactory instanceFactory,
                                                  const char* name, const char* versionedName,
                                                  int threading, int flags) {
  embedded::Registry& registry = embedded::TheRegistry();
  const sfGuard guard(registry.mutex);
  if (reason != kAttach && reason != kDetach) return false;
  const std::size_t removed = std::erase_if(
      registry.classes, [&](const embedded::PackageClass& c) { return c.classId == classId; });
  if (reason == kDetach) return removed > 0;
  registry.classes.push_back(
      {classId, proxyFactory, instanceFactory, name, versionedName, threading, flags});
  return true;
}
