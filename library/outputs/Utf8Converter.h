// Host text (the encoding that the embedded host works in) as UTF-8, which is what the program
// writes everywhere.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "HostFramework/Text.h"

namespace library {

// Converts host text to UTF-8. What is not valid becomes U+FFFD. One thread at a time.
class Utf8Converter {
 public:
  // For the host's text encoding as it is now (make it after the host's settings were made), or for
  // the code page that is named.
  explicit Utf8Converter(const char* codePage = nullptr);

  // The text in UTF-8: the text itself when it is ASCII, else a view of this object's buffer, valid
  // until the next call. Allocates only while the buffer grows.
  std::string_view ToUtf8(std::string_view text);

 private:
  ConverterHandle converter_;
  std::string converted_;
};

// True when every byte is ASCII.
bool IsAscii(std::string_view text);

}  // namespace library
