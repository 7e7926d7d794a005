#include <algorithm>
#include <vector>

#include "HostFramework/Serialization.h"
#include "HostFramework/Threads.h"

namespace {

// Never destroyed: libraries take their types out while the process ends.
struct Types {
  sfMutex mutex;
  std::vector<const MessageType*> types SF_GUARDED_BY(mutex);
};

Types& TheTypes() {
  static Types* const types = new Types;
  return *types;
}

}  // namespace

MessageType::MessageType(Maker make) : make_(make), signature_(make()->GetSignature()) {
  Types& known = TheTypes();
  const sfGuard guard(known.mutex);
  known.types.push_back(this);
}

MessageType::~MessageType() {
  Types& known = TheTypes();
  const sfGuard guard(known.mutex);
  std::erase(known.types, this);
}

std::unique_ptr<VSerializable> MessageType::MakeMessage(std::string_view signature) {
  Types& known = TheTypes();
  const sfGuard guard(known.mutex);
  // The type that came last stands for a signature that several have.
  const auto found =
      std::find_if(known.types.rbegin(), known.types.rend(),
                   [signature](const MessageType* type) { return signature == type->signature_; });
  return found == known.types.rend() ? nullptr : (*found)->make_();
}
