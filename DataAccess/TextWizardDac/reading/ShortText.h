// Texts of a few bytes as one word.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace textwizard {

static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");

// The first 8 bytes at `text`.
inline std::uint64_t LoadWord(const char* text) {
  std::uint64_t word;
  std::memcpy(&word, text, sizeof word);
  return word;
}

// The 1 to 8 bytes of a text, with zeros behind them. Nothing outside is read.
inline std::uint64_t LoadShortText(const char* text, std::size_t size) {
  if (size >= sizeof(std::uint32_t)) {
    // Two halves that overlap.
    std::uint32_t low, high;
    std::memcpy(&low, text, sizeof low);
    std::memcpy(&high, text + size - sizeof high, sizeof high);
    return low | std::uint64_t{high} << (size - sizeof high) * 8;
  }
  // Three bytes, some of them perhaps the same.
  const auto byte = [text](std::size_t i) {
    return std::uint64_t{static_cast<unsigned char>(text[i])} << i * 8;
  };
  return byte(0) | byte(size / 2) | byte(size - 1);
}

}  // namespace textwizard
