// Characters of UTF-8 text that is known to be valid.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace library {

// Bytes of the character that begins with `lead`.
inline std::size_t Utf8Length(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  return byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

inline bool IsUtf8Continuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

inline std::size_t CountUtf8(std::string_view text) {
  std::size_t count = 0;
  for (const char byte : text) count += IsUtf8Continuation(byte) ? 0 : 1;
  return count;
}

// The characters of a text, one by one.
inline std::vector<std::string> Utf8Characters(std::string_view text) {
  std::vector<std::string> characters;
  while (!text.empty()) {
    const std::size_t length = std::min(Utf8Length(text.front()), text.size());
    characters.emplace_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return characters;
}

}  // namespace library
