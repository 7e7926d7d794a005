#include "library/import/HostSettings.h"

#include "HostFramework/Threads.h"
#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"

namespace library {
namespace {

struct UsedHost {
  sfMutex mutex;
  int uses SF_GUARDED_BY(mutex) = 0;
  bool isAlone SF_GUARDED_BY(mutex) = false;  // the one use is alone
  HostSettings settings SF_GUARDED_BY(mutex);
};

UsedHost& TheHost() {
  static UsedHost* const host = new UsedHost;
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

std::unique_ptr<HostUse> HostUse::Take(const HostSettings& settings, bool alone,
                                       std::string* error) {
  UsedHost& host = TheHost();
  const sfGuard guard(host.mutex);
  error->clear();
  const bool free = host.uses == 0;
  if (!free && (alone || host.isAlone || !(host.settings == settings))) return nullptr;
  HostSetting wrong{};
  if (free && !SetHost(settings, &wrong, error)) return nullptr;
  std::unique_ptr<HostUse> use(new HostUse(alone));
  host.settings = settings;
  host.isAlone = alone;
  ++host.uses;
  return use;
}

std::unique_ptr<HostUse> HostUse::Share(const HostSettings& settings, std::string* error) {
  return Take(settings, false, error);
}

std::unique_ptr<HostUse> HostUse::ShareUtf8() {
  HostSettings settings;
  {
    UsedHost& host = TheHost();
    const sfGuard guard(host.mutex);
    if (host.uses > 0) settings = host.settings;
  }
  settings.codePage.clear();
  std::string error;
  return Take(settings, false, &error);
}

std::unique_ptr<HostUse> HostUse::Alone() {
  std::string error;
  return Take({}, true, &error);
}

void HostUse::NowShared(const HostSettings& settings) {
  UsedHost& host = TheHost();
  const sfGuard guard(host.mutex);
  alone_ = host.isAlone = false;
  host.settings = settings;
}

HostUse::~HostUse() {
  UsedHost& host = TheHost();
  const sfGuard guard(host.mutex);
  --host.uses;
  if (alone_) host.isAlone = false;
}

}  // namespace library
