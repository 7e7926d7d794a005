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

// The host in one state as long as somebody works with it.
class HostUse {
 public:
  // Null when others work with the host in another state, or alone (then *error is empty), or when
  // a name names nothing. Any thread.
  static std::unique_ptr<HostUse> Share(const HostSettings& settings, std::string* error);
  // The host in UTF-8 mode, whatever its other settings are. Null when others work with it in a
  // code page, or alone.
  static std::unique_ptr<HostUse> ShareUtf8();
  // In UTF-8 mode, with a decimal point, for one who will set it otherwise. Null when others work
  // with it.
  static std::unique_ptr<HostUse> Alone();
  // Any thread.
  ~HostUse();
  HostUse(const HostUse&) = delete;
  HostUse& operator=(const HostUse&) = delete;

  // Who was alone has put the host into this state, and works on with others in it.
  void NowShared(const HostSettings& settings);

 private:
  explicit HostUse(bool alone) : alone_(alone) {}
  static std::unique_ptr<HostUse> Take(const HostSettings& settings, bool alone,
                                       std::string* error);

  bool alone_;
};

}  // namespace library
