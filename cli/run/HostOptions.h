// What the program sets of the host.
#pragma once

#include <string>

namespace cli {

struct HostOptions {
  bool decimalComma = false;
  std::string codePage;        // empty: UTF-8
  std::string localeCodePage;  // empty: the locale's own
};

// Puts the host into the state that the options ask for, before anything else of it is used. False
// when one names nothing; then *error says which.
bool SetHost(const HostOptions& options, std::string* error);

}  // namespace cli
