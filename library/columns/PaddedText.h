// The text of a string variable's cells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "HostFramework/DataSource.h"

namespace library {

// The text (host text) in the `bytes` bytes of the cells from `cell` on, without the blanks that
// pad it. A view into the case.
inline std::string_view WithoutPadding(const OBS* cell, std::size_t bytes) {
  const char* const text = reinterpret_cast<const char*>(cell->bytes);
  std::size_t length = bytes;
  // A short text in a wide variable is mostly padding: drop eight blanks at a time.
  constexpr std::uint64_t kBlanks = 0x2020202020202020U;
  while (length >= sizeof kBlanks) {
    std::uint64_t last = 0;
    std::memcpy(&last, text + length - sizeof last, sizeof last);
    if (last != kBlanks) break;
    length -= sizeof last;
  }
  while (length > 0 && text[length - 1] == ' ') --length;
  return {text, length};
}

}  // namespace library
