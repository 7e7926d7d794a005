// The text of a string's cells, looked at and copied by words.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace library {

// What stands in a text that a writer has to look at. A word has eight bytes; every operation gives
// a word that is not 0 when a byte of the given one is meant. Which one it does not tell.
class WordScan {
 public:
  static constexpr std::uint64_t kHighBits = 0x8080808080808080U;

  static constexpr std::uint64_t Repeat(char byte) {
    return kOnes * static_cast<unsigned char>(byte);
  }
  // `repeated`: the byte that is looked for, by Repeat.
  static constexpr std::uint64_t Has(std::uint64_t word, std::uint64_t repeated) {
    const std::uint64_t zero = word ^ repeated;
    return (zero - kOnes) & ~zero & kHighBits;
  }
  // Bytes below 0x20.
  static constexpr std::uint64_t HasControls(std::uint64_t word) {
    return (word - kOnes * 0x20) & ~word & kHighBits;
  }
  static constexpr std::uint64_t HasNoAscii(std::uint64_t word) { return word & kHighBits; }

 private:
  static constexpr std::uint64_t kOnes = 0x0101010101010101U;
};

// Copies a text of `size` bytes whose last word can be read whole; `out` has room for as many
// words. Hands every word to `look`, blanks standing for what is behind the text. Returns the
// text's length without the blanks at its end. Takes no decision that depends on the text: lengths
// are hard to foresee, and most of the time that a short text takes would be lost on wrong guesses.
template <class Look>
inline std::size_t CopyCells(const char* text, std::size_t size, char* out, Look look) {
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  constexpr std::uint64_t kBlanks = 0x2020202020202020U;
  std::size_t length = 0;
  const auto copy = [&](std::size_t at, std::uint64_t word) {
    std::memcpy(out + at, &word, kWord);
    look(word);
    const std::uint64_t inked = word ^ kBlanks;
    const std::size_t end = at + kWord - static_cast<std::size_t>(std::countl_zero(inked)) / 8;
    length = inked != 0 ? end : length;
  };
  const auto load = [&](std::size_t at) {
    std::uint64_t word = 0;
    std::memcpy(&word, text + at, kWord);
    return word;
  };
  std::size_t at = 0;
  for (; at + kWord <= size; at += kWord) copy(at, load(at));
  if (at < size) {
    const std::uint64_t behind = ~std::uint64_t{0} << (8 * (size - at));
    copy(at, (load(at) & ~behind) | (kBlanks & behind));
  }
  return length;
}

// Bytes that CopyCells may write for a text of so many.
inline constexpr std::size_t CellRoom(std::size_t bytes) { return bytes + sizeof(std::uint64_t); }

}  // namespace library
