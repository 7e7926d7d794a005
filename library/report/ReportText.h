// Host text as reports show and write it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "HostFramework/Text.h"

namespace library {

// Characters of a problem's text at most.
inline constexpr std::size_t kMostTextCharacters = 200;

// Turns host text into UTF-8 with its control characters escaped: tab, line feed and carriage
// return as \t, \n and \r, the others as \xHH (U+0080 to U+009F as \u0080 to \u009F). Bytes that
// are no character become U+FFFD. One thread; make it after the host's settings were made.
class ReportText {
 public:
  ReportText() : converter_(QANTMBConverterNew_A(nullptr)) {}
  // At most `characters` characters, and never a part of an escape. Valid until the next call;
  // allocates only while the buffer grows.
  std::string_view Escaped(std::string_view hostText, std::size_t characters = kMostTextCharacters);

 private:
  ConverterHandle converter_;
  std::string utf8_;
  std::string escaped_;
};

}  // namespace library
