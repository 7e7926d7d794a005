// Short texts into the cells of a string variable.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "reading/ShortText.h"

namespace textwizard {

// Writes `text` and blanks behind it, `cellBytes` bytes in all: a multiple of 8, not less than the
// text's size. Word by word, because nearly all strings are a few words long and a call of a
// copying and of a filling function each would take longer than their work.
inline void StoreText(std::string_view text, unsigned char* cells, std::size_t cellBytes) {
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  constexpr std::uint64_t kBlanks = 0x2020202020202020;
  const char* const from = text.data();
  const std::size_t size = text.size();
  std::size_t at = 0;
  for (; at + kWord <= size; at += kWord) std::memcpy(cells + at, from + at, kWord);
  if (at == cellBytes) return;
  // The bytes of the last, broken word.
  const std::size_t rest = size - at;
  std::uint64_t word = 0;
  if (at > 0) {
    // Read together with the bytes before them.
    if (rest > 0) {
      std::memcpy(&word, from + size - kWord, kWord);
      word >>= 8 * (kWord - rest);
    }
  } else if (rest > 0) {
    word = LoadShortText(from, rest);
  }
  word |= kBlanks << (8 * rest);
  std::memcpy(cells + at, &word, kWord);
  for (at += kWord; at < cellBytes; at += kWord) std::memcpy(cells + at, &kBlanks, kWord);
}

// The longest cells that StoreReadableText fills.
inline constexpr std::size_t kReadableCells = 64;

// The same for at most kReadableCells bytes of cells, when as many can be read from the text's
// first byte on. Takes no decision that depends on the text: lengths are hard to foresee, and most
// of the time that a string takes would be lost on wrong guesses.
inline void StoreReadableText(std::string_view text, unsigned char* cells, std::size_t cellBytes) {
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  constexpr std::uint64_t kBlanks = 0x2020202020202020;
  // The bytes that stay are those before the middle.
  static constexpr auto kKept = [] {
    std::array<unsigned char, 2 * kReadableCells> kept{};
    for (std::size_t i = 0; i < kReadableCells; ++i) kept[i] = 0xFF;
    return kept;
  }();
  const unsigned char* const kept = kKept.data() + kReadableCells - text.size();
  for (std::size_t at = 0; at < cellBytes; at += kWord) {
    std::uint64_t word, mask;
    std::memcpy(&word, text.data() + at, kWord);
    std::memcpy(&mask, kept + at, kWord);
    word = ((word ^ kBlanks) & mask) ^ kBlanks;
    std::memcpy(cells + at, &word, kWord);
  }
}

}  // namespace textwizard
