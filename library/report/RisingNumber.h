// Decimal digits of numbers of which each is mostly a little above the one before, as places in a
// file are.
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace library {

// Writes any number fast that differs from the one before in its last four digits only. One thread.
class RisingNumber {
 public:
  static constexpr std::size_t kMostBytes = 24;
  // Writes the number, which is not negative, at `to`, where there is room for kMostBytes; returns
  // its end. What is behind that in the room may be changed, too.
  char* Write(std::int64_t number, char* to) {
    if (number < kLow) return std::to_chars(to, to + kMostBytes, number).ptr;
    const std::int64_t high = number / kLow;
    if (high != high_) {
      high_ = high;
      digits_.fill('0');
      length_ = static_cast<std::size_t>(
          std::to_chars(digits_.data(), digits_.data() + digits_.size(), high).ptr -
          digits_.data());
    }
    std::memcpy(to, digits_.data(), digits_.size());
    to += length_;
    const auto low = static_cast<std::uint32_t>(number - high * kLow);
    std::memcpy(to, &kPairs[low / 100 * 2], 2);
    std::memcpy(to + 2, &kPairs[low % 100 * 2], 2);
    return to + 4;
  }

 private:
  static constexpr std::int64_t kLow = 10000;
  // "00" to "99".
  static constexpr std::array<char, 200> kPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      pairs[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
    }
    return pairs;
  }();

  // The number before without its last four digits, and how that is written.
  std::int64_t high_ = 0;
  std::array<char, 16> digits_{};
  std::size_t length_ = 0;
};

}  // namespace library
