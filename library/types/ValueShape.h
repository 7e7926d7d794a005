// The shape of a short text: what it is when one digit is like another and one letter like another.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reading/ShortText.h"

namespace library {

// Compared in a few operations. Texts longer than kLongest have none.
struct ValueShape {
  static constexpr std::size_t kLongest = 24;

  std::array<std::uint64_t, 3> words{};
  std::size_t size = 0;

  bool operator==(const ValueShape&) const = default;

  // Of a text of 1 to kLongest bytes.
  static ValueShape Of(std::string_view text) {
    ValueShape shape;
    shape.size = text.size();
    std::size_t word = 0;
    for (; text.size() > kWord; text.remove_prefix(kWord)) {
      shape.words[word++] = Plain(textwizard::LoadWord(text.data()));
    }
    shape.words[word] = Plain(textwizard::LoadShortText(text.data(), text.size()));
    return shape;
  }

 private:
  static constexpr std::size_t kWord = sizeof(std::uint64_t);
  static constexpr std::uint64_t kOnes = 0x0101010101010101;
  static constexpr std::uint64_t kHigh = 0x80 * kOnes;
  static constexpr std::uint64_t kLow = 0x7F * kOnes;

  // Each byte: '0' for a digit, 'a' for a letter of ASCII, else itself.
  static std::uint64_t Plain(std::uint64_t bytes) {
    const std::uint64_t digits = InRange(bytes, '0', '9');
    const std::uint64_t letters = InRange(bytes | 0x20 * kOnes, 'a', 'z') & ~bytes;
    const std::uint64_t digitBytes = (digits >> 7 & kOnes) * 0xFF;
    const std::uint64_t letterBytes = (letters >> 7 & kOnes) * 0xFF;
    return (bytes & ~(digitBytes | letterBytes)) | ('0' * kOnes & digitBytes) |
           ('a' * kOnes & letterBytes);
  }
  // The high bit of each byte of ASCII from `first` to `last`.
  static constexpr std::uint64_t InRange(std::uint64_t bytes, unsigned first, unsigned last) {
    const std::uint64_t low = bytes & kLow;
    const std::uint64_t fromFirst = low + (0x80 - first) * kOnes;
    const std::uint64_t behindLast = low + (0x7F - last) * kOnes;
    return fromFirst & ~behindLast & ~bytes & kHigh;
  }
};

}  // namespace library
