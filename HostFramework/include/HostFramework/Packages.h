// Packages: objects that answer numbered calls, made by factories that a library registers under a
// class identifier and two names.
#pragma once

#include <cstdint>

#include "HostFramework/Serialization.h"

struct GUID {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::uint8_t data4[8] = {};
  bool operator==(const GUID&) const = default;
};

// The side that asks for a package object.
class ROTBase {
 public:
  virtual ~ROTBase();
};

// An object that answers calls. Calls to one object come from one thread at a time.
class Proxy {
 public:
  virtual ~Proxy();
  // Answers call `method` in `response`. 0 when it was handled, else 1 (as here, always).
  virtual int OnCallSynchronous(unsigned short method, const VSerializable& request,
                                VSerializable& response);
  // The same without an answer.
  virtual int OnCallAsynchronous(unsigned short method, const VSerializable& request);
};

class PackageProxy : public Proxy {
 public:
  // `rot` is not owned and may be null.
  explicit PackageProxy(ROTBase* rot);
  ROTBase* GetROT() const { return rot_; }

 private:
  ROTBase* rot_;
};

// A package's own state while one of its objects lives.
class PackageInstance {
 public:
  virtual ~PackageInstance();
  static PackageInstance* FCreate();
};

// Makes an object, which the caller owns; null when there is no memory for one. Throws nothing.
using PackageProxyFactory = PackageProxy* (*)(ROTBase* rot);
using PackageInstanceFactory = PackageInstance* (*)();

// The class objects of the process. Any thread.
class PackageRegistration {
 public:
  enum Reason : unsigned { kDetach = 0, kAttach = 1 };

  // Registers (kAttach) or removes (kDetach) a class object under its identifier and both names.
  // `threading` and `flags` are the registry's registration flags. Registering an identifier again
  // replaces it. False when the reason is another or there is nothing to remove.
  static bool ClassObjectRegistration(unsigned reason, const GUID& classId,
                                      PackageProxyFactory proxyFactory,
                                      PackageInstanceFactory instanceFactory, const char* name,
                                      const char* versionedName, int threading, int flags);
};

// Which object answers the call that runs on this thread.
class QantServerCallContext {
 public:
  static void SetCaller(Proxy* proxy);
  static Proxy* GetCaller();
};
