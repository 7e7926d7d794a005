// The package's class in the host's registry: taken in when the library is loaded, taken out when
// it is unloaded.

#include "HostFramework/FileMessages.h"
#include "HostFramework/Packages.h"
#include "wizard/TextWizardDACHandler.h"

namespace textwizard {
namespace {

constexpr GUID kClassId = {
    0xF9B51811, 0xCFDE, 0x11D2, {0xA4, 0x31, 0x00, 0xC0, 0x4F, 0x99, 0x1C, 0x5F}};

// The class's registration flags.
constexpr int kThreading = 1;
constexpr int kFlags = 3;

bool Register(unsigned reason) {
  try {
    return PackageRegistration::ClassObjectRegistration(
        reason, kClassId, &TextWizardDACHandler::Factory, &PackageInstance::FCreate, kWizardPackage,
        kWizardPackageVersion, kThreading, kFlags);
  } catch (...) {
    // Whatever the registry lacks, the library is to be loaded.
    return false;
  }
}

struct LoadedClass {
  LoadedClass() { Register(PackageRegistration::kAttach); }
  ~LoadedClass() { Register(PackageRegistration::kDetach); }
};

const LoadedClass loadedClass;

}  // namespace
}  // namespace textwizard

// Forwards the loader's notices to the registration: the first attach (reason 1), and the first
// detach (reason 0) after it. 1 when the notice was forwarded or is none of these.
extern "C" __attribute__((visibility("default"))) int DllMain(void* /*handle*/, unsigned reason) {
  static bool attached = false;
  static bool detached = false;
  if (reason == PackageRegistration::kAttach && !attached) {
    attached = textwizard::Register(reason);
    return attached ? 1 : 0;
  }
  if (reason == PackageRegistration::kDetach && attached && !detached) {
    detached = textwizard::Register(reason);
    return detached ? 1 : 0;
  }
  return 1;
}
