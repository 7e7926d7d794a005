// The embedded host's side of packages: finding a registered class, making an object of it, and
// calling that object by messages that travel as bytes.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "HostFramework/Packages.h"

namespace embedded {

// What a registered class was registered with.
struct PackageClass {
  GUID classId;
  PackageProxyFactory proxyFactory = nullptr;
  PackageInstanceFactory instanceFactory = nullptr;
  std::string name;
  std::string versionedName;
  int threading = 0;
  int flags = 0;
};

// The class registered under one of its names, or under its identifier; false when there is none.
// Any thread.
bool FindPackageClass(std::string_view name, PackageClass* found);
bool FindPackageClass(const GUID& classId, PackageClass* found);

// A connection to one package object of its own. One thread at a time. The library that registered
// the class stays loaded while it lives.
class PackageConnection {
 public:
  // Makes an object of the class registered under `name`; null when there is none.
  static std::unique_ptr<PackageConnection> Open(std::string_view name);

  // Writes `request` to bytes, has the object answer them, and reads the answer into `response`.
  // The object's result, or 1 when either message is refused.
  int Call(unsigned short method, const VSerializable& request, VSerializable& response);
  int CallAsynchronous(unsigned short method, const VSerializable& request);

  // The object's side of a call, on bytes that may come from anywhere: reads the request (its
  // signature tells its class), makes the response named by `responseSignature`, and appends what
  // the object answers to *answer. 1, with *answer left alone, when the bytes are not one whole
  // message of a known class and version.
  int Serve(unsigned short method, std::string_view request, std::string_view responseSignature,
            std::string* answer);

 private:
  PackageConnection(std::unique_ptr<PackageInstance> instance, std::unique_ptr<PackageProxy> proxy);
  std::unique_ptr<PackageInstance> instance_;
  std::unique_ptr<PackageProxy> proxy_;
};

}  // namespace embedded
