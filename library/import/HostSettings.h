// What an import wants of the host, whose settings are the process's.
#pragma once

#include <memory>
#include <string>

namespace library {

struct HostSettings {
  bool decimalComma = false;
  std::string codePage{};        // of the host's text; empty: UTF-8
  std::string localeCodePage{};  // what ENCODING=LOCALE means; empty: the locale's own
  bool operator==(const HostSettings&) const = default;
};

enum class HostSetting { kCodePage, kLocaleCodePage };

// Puts the host into that state, before anything else of it is used. False when a name names
// nothing; then *wrong is whose it is, and *error says why (host text).
bool SetHost(const HostSettings& settings, HostSetting* wrong, std::string* error);

// The host in one state as long as somebody needs it.
class HostLease {
 public:
  // Null when others hold the host in another state (then *error is empty), or when a name names
  // nothing. Any thread.
  static std::unique_ptr<HostLease> Take(const HostSettings& settings, std::string* error);
  // The host in UTF-8 mode, whatever its other settings are. Null when others hold it in a code
  // page.
  static std::unique_ptr<HostLease> TakeUtf8();
  // Any thread.
  ~HostLease();
  HostLease(const HostLease&) = delete;
  HostLease& operator=(const HostLease&) = delete;

 private:
  HostLease() = default;
};

}  // namespace library
