// The text of a string variable's cells.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "HostFramework/DataSource.h"

namespace library {

// The text (host text) in the `bytes` bytes of the cells from `cell` on, without the blanks that
// pad it. A view into the case. Looks at whole words from the end: a short text in a wide variable
// is mostly padding.
inline std::string_view WithoutPadding(const OBS* cell, std::size_t bytes) {
  const char* const text = reinterpret_cast<const char*>(cell->bytes);
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  static_assert(sizeof(OBS) == kWord);
  constexpr std::uint64_t kBlanks = 0x2020202020202020U;
  std::size_t end = (bytes + kWord - 1) / kWord * kWord;
  // What the last cell has behind the text counts as blanks.
  std::uint64_t inText = bytes < end ? ~std::uint64_t{0} >> (8 * (end - bytes)) : ~std::uint64_t{0};
  for (; end > 0; end -= kWord) {
    std::uint64_t word = 0;
    std::memcpy(&word, text + end - kWord, kWord);
    const std::uint64_t inked = (word ^ kBlanks) & inText;
    if (inked != 0) return {text, end - static_cast<std::size_t>(std::countl_zero(inked)) / 8};
    inText = ~std::uint64_t{0};
  }
  return {text, 0};
}

}  // namespace library
