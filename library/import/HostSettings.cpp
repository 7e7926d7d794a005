#include "library/import/HostSettings.h"

#include <mutex>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"

namespace library {
namespace {

struct Leased {
  std::mutex mutex;
  // Guarded by the mutex.
  int leases = 0;
  HostSettings settings;
};

Leased& TheHost() {
  static Leased* const host = new Leased;
  return *host;
}

const char* NameOrNull(const std::string& name) { return name.empty() ? nullptr : name.c_str(); }

}  // namespace

bool SetHost(const HostSettings& settings, HostSetting* wrong, std::string* error) {
  if (!embedded::SetCodePage(NameOrNull(settings.codePage))) {
    *wrong = HostSetting::kCodePage;
    *error = embedded::CodePageRefusal(settings.codePage);
    return false;
  }
  if (!embedded::SetLocaleCodePage(NameOrNull(settings.localeCodePage))) {
    *wrong = HostSetting::kLocaleCodePage;
    *error = embedded::CodePageRefusal(settings.localeCodePage);
    return false;
  }
  if (settings.decimalComma) {
    iocvsetdeccharcomma_();
  } else {
    iocvsetdecchardot_();
  }
  return true;
}

std::unique_ptr<HostLease> HostLease::Take(const HostSettings& settings, std::string* error) {
  Leased& host = TheHost();
  const std::lock_guard guard(host.mutex);
  error->clear();
  if (host.leases > 0 && !(host.settings == settings)) return nullptr;
  HostSetting wrong{};
  if (host.leases == 0 && !SetHost(settings, &wrong, error)) return nullptr;
  std::unique_ptr<HostLease> lease(new HostLease);
  host.settings = settings;
  ++host.leases;
  return lease;
}

std::unique_ptr<HostLease> HostLease::TakeUtf8() {
  HostSettings settings;
  {
    Leased& host = TheHost();
    const std::lock_guard guard(host.mutex);
    if (host.leases > 0) settings = host.settings;
  }
  settings.codePage.clear();
  std::string error;
  return Take(settings, &error);
}

HostLease::~HostLease() {
  Leased& host = TheHost();
  const std::lock_guard guard(host.mutex);
  --host.leases;
}

}  // namespace library
