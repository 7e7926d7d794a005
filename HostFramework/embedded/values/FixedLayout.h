// Texts of dates and times whose parts stand at fixed places, tested and valued eight characters at
// a time. Most columns hold nothing else; every other text is read part by part.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace embedded {

static_assert(std::endian::native == std::endian::little, "the first character is the lowest byte");

// A layout of eight characters, written with '0' for a digit, '-' for one of - / . , and 'a' for
// any ASCII character; others stand for themselves.
class FixedLayout {
 public:
  static constexpr std::size_t kSize = sizeof(std::uint64_t);

  constexpr explicit FixedLayout(const char (&layout)[kSize + 1]) {
    for (std::size_t i = kSize; i-- > 0;) {
      const char c = layout[i];
      // The separators are four neighbours, too.
      const unsigned first = c == '-' ? ',' : c == 'a' ? 0 : static_cast<unsigned char>(c);
      const unsigned count = c == '0' ? 10 : c == '-' ? 4 : c == 'a' ? 0x80 : 1;
      first_ = first_ << 8 | first;
      reach_ = reach_ << 8 | (0x80 - count);
    }
  }

  // Whether eight characters at `text` have the layout. Then each byte of *places, the first one
  // the lowest, is the value of the digit at its place, below 4 for a separator, and 0 for a
  // character that stands for itself.
  bool Matches(const char* text, std::uint64_t* places) const {
    std::memcpy(places, text, kSize);
    *places ^= first_;
    // A sum that goes beyond its byte comes from a byte that fails by itself.
    return ((*places | (*places + reach_)) & 0x8080808080808080) == 0;
  }

  // The number of the two digits at `place` and behind it.
  static int TwoDigits(std::uint64_t places, int place) {
    const std::uint64_t digits = places >> 8 * place;
    return static_cast<int>((digits * 10 + (digits >> 8)) & 0xFF);
  }
  static int FourDigits(std::uint64_t places, int place) {
    return TwoDigits(places, place) * 100 + TwoDigits(places, place + 2);
  }

 private:
  // The first of the characters that may stand at each place, and how far each place's value is
  // from setting the high bit.
  std::uint64_t first_ = 0;
  std::uint64_t reach_ = 0;
};

}  // namespace embedded
