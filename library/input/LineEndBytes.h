// How a text writes its line ends.
#pragma once

#include <string>
#include <string_view>

namespace library {

// The bytes of each.
struct LineEndBytes {
  std::string feed = "\n";
  std::string carriageReturn = "\r";
};

// Of a text that begins with the bytes of `head`: its byte-order mark tells the width of its units.
// Without one they are bytes.
inline LineEndBytes LineEndsOf(std::string_view head) {
  using std::string_literals::operator""s;
  if (head.starts_with("\xFF\xFE")) return {"\n\0"s, "\r\0"s};
  if (head.starts_with("\xFE\xFF")) return {"\0\n"s, "\0\r"s};
  return {};
}

}  // namespace library
