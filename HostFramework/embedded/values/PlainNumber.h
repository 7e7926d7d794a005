// Reading what nearly all numbers are: a few digits, perhaps with a decimal character among them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "HostFramework/embedded/values/Decimal.h"

namespace embedded {

// Reads eight characters at a time as one word: the first one in the lowest byte, each less '0', so
// that a digit is its value, and shorter texts with zeros in front. Nothing outside a text is read.
class PlainNumber {
 public:
  static constexpr std::size_t kLongest = 16;
  static constexpr std::size_t kNoDecimal = kLongest;

  // Whether Read reads it. *places then: how many digits stand behind the decimal character,
  // kNoDecimal when there is none. Costs less than reading it.
  static bool Look(const char* text, std::size_t length, char decimal, std::size_t* places) {
    if constexpr (std::endian::native != std::endian::little) return false;
    const auto mark = static_cast<unsigned char>(decimal ^ '0');
    *places = kNoDecimal;
    if (length <= kWord) {
      const std::uint64_t digits = LoadShort(text, length);
      const std::uint64_t others = NotDigits(digits);
      return others == 0 || (length > 1 && FindGap(digits, others, mark, *places));
    }
    const std::uint64_t head = HeadDigits(text, length);
    const std::uint64_t tail = TailDigits(text, length);
    const std::uint64_t notInHead = NotDigits(head);
    if (const std::uint64_t notInTail = NotDigits(tail)) {
      return notInHead == 0 && FindGap(tail, notInTail, mark, *places);
    }
    if (notInHead != 0) {
      if (!FindGap(head, notInHead, mark, *places)) return false;
      *places += kWord;
      return true;
    }
    double value;
    return length < kLongest || Read(text, length, decimal, false, &value);
  }

  // Reads 1 to kLongest characters, digits with one `decimal` or none. All digits are found and
  // valued together, without a branch that depends on their number. Returns false and leaves *value
  // alone for any other text and for numbers of 16 digits beyond 2^53.
  static bool Read(const char* text, std::size_t length, char decimal, bool negative,
                   double* value) {
    if constexpr (std::endian::native != std::endian::little) return false;
    const auto mark = static_cast<unsigned char>(decimal ^ '0');
    std::size_t places = 0;
    if (length <= kWord) {
      std::uint64_t digits = LoadShort(text, length);
      if (const std::uint64_t others = NotDigits(digits)) {
        if (length == 1 || !CloseGap(digits, others, mark, 0, places)) return false;
      }
      *value = EightDigits(digits) / kSignedPowers[negative][places];
      return true;
    }
    std::uint64_t head = HeadDigits(text, length);
    std::uint64_t tail = TailDigits(text, length);
    const std::uint64_t notInHead = NotDigits(head);
    if (const std::uint64_t notInTail = NotDigits(tail)) {
      if (notInHead != 0 || !CloseGap(tail, notInTail, mark, head >> 56, places)) return false;
      head <<= 8;
    } else if (notInHead != 0) {
      if (!CloseGap(head, notInHead, mark, 0, places)) return false;
      places += kWord;
    }
    const std::uint64_t digits = EightDigits(head) * std::uint64_t{100'000'000} + EightDigits(tail);
    if (digits > kExactIntegers) return false;
    // Both are exact, so that the division alone rounds.
    *value = static_cast<double>(digits) / kSignedPowers[negative][places];
    return true;
  }

 private:
  static constexpr std::size_t kWord = sizeof(std::uint64_t);
  static constexpr std::uint64_t kZeros = 0x3030303030303030;
  static constexpr double kSignedPowers[2][kLongest] = {
      {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15},
      {-1e0, -1e1, -1e2, -1e3, -1e4, -1e5, -1e6, -1e7, -1e8, -1e9, -1e10, -1e11, -1e12, -1e13,
       -1e14, -1e15}};

  template <typename Word>
  static Word Load(const char* text) {
    Word bytes;
    std::memcpy(&bytes, text, sizeof bytes);
    return bytes;
  }

  // All of 1 to 8 characters.
  static std::uint64_t LoadShort(const char* text, std::size_t length) {
    std::uint64_t bytes;
    if (length >= 4) {
      bytes = Load<std::uint32_t>(text) | std::uint64_t{Load<std::uint32_t>(text + length - 4)}
                                              << (length - 4) * 8;
    } else {
      const auto at = [text](std::size_t i) {
        return std::uint64_t{static_cast<unsigned char>(text[i])} << i * 8;
      };
      bytes = at(0) | at(length / 2) | at(length - 1);
    }
    return (bytes ^ kZeros) << (kWord - length) * 8;
  }

  // Of 9 to 16 characters: those before the last eight; the last eight.
  static std::uint64_t HeadDigits(const char* text, std::size_t length) {
    return (Load<std::uint64_t>(text) ^ kZeros) << (2 * kWord - length) * 8;
  }
  static std::uint64_t TailDigits(const char* text, std::size_t length) {
    return Load<std::uint64_t>(text + length - kWord) ^ kZeros;
  }

  // The high bit of each byte that is not a digit, up to a byte that is far from one: what is said
  // of the bytes behind that can be wrong.
  static std::uint64_t NotDigits(std::uint64_t bytes) {
    constexpr std::uint64_t kAboveNine = 0x7676767676767676;  // 10 more reaches the high bit
    return (bytes | (bytes + kAboveNine)) & 0x8080808080808080;
  }

  // The value of eight digits: neighbours are joined to pairs, pairs to fours, fours to eight.
  static std::uint32_t EightDigits(std::uint64_t bytes) {
    bytes = bytes * 10 + (bytes >> 8);
    constexpr std::uint64_t kMask = 0x000000FF000000FF;
    constexpr std::uint64_t kFirst = 0x000F424000000064;   // 100 + (1000000 << 32)
    constexpr std::uint64_t kSecond = 0x0000271000000001;  // 1 + (10000 << 32)
    return static_cast<std::uint32_t>(
        ((bytes & kMask) * kFirst + ((bytes >> 16) & kMask) * kSecond) >> 32);
  }

  // How many digits stand behind the one character of `bytes` that is no digit, if it is `mark`.
  // False when another character is no digit.
  static bool FindGap(std::uint64_t bytes, std::uint64_t others, unsigned char mark,
                      std::size_t& places) {
    if ((others & (others - 1)) != 0) return false;
    const auto top = static_cast<unsigned>(std::countr_zero(others));
    if (static_cast<unsigned char>(bytes >> (top - 7)) != mark) return false;
    places = (63 - top) / 8;
    return true;
  }
  // The same; takes that character out and moves up those before it; `filler` comes in from below.
  static bool CloseGap(std::uint64_t& bytes, std::uint64_t others, unsigned char mark,
                       std::uint64_t filler, std::size_t& places) {
    if (!FindGap(bytes, others, mark, places)) return false;
    const std::uint64_t below = (others >> 7) - 1;
    const std::uint64_t above = 0 - (others << 1);
    bytes = (bytes & above) | (bytes & below) << 8 | filler;
    return true;
  }
};

}  // namespace embedded
