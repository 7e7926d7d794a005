// Decimal digits to the nearest double. Everything that ends as a fraction of a unit goes through
// here, so numbers and times are rounded by one rule: once, to nearest, ties to even.
#pragma once

#include <cstdint>

namespace embedded {

// 2^53: every integer up to here is a double.
inline constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53;

// 10^0 to 10^22 are doubles too.
inline constexpr int kExactPowers = 22;
inline constexpr double kPowersOfTen[kExactPowers + 1] = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Sets *value to digits x 10^exponent and returns true when one multiplication or division of
// doubles is sure to round it correctly: both operands are exact, so only the result is rounded.
inline bool ExactDecimal(std::uint64_t digits, std::int64_t exponent, double* value) {
  if (digits > kExactIntegers || exponent < -kExactPowers || exponent > kExactPowers) return false;
  const double exact = static_cast<double>(digits);
  *value = exponent < 0 ? exact / kPowersOfTen[-exponent] : exact * kPowersOfTen[exponent];
  return true;
}

// Decimal digits of any number, kept on the stack. A double's value and the midpoint between two
// doubles have at most 767 significant digits, so of a longer text it is enough to know the first
// kKept and whether anything but zeros follows.
class Decimal {
 public:
  // Appends a digit (0 to 9) on the right.
  void Append(int digit) {
    if (kept_ == 0 && digit == 0) return;
    if (kept_ < kKept) {
      digits_[kept_++] = static_cast<char>('0' + digit);
    } else {
      ++dropped_;
      restIsZero_ = restIsZero_ && digit == 0;
    }
  }

  // Sets *value to the digits x 10^exponent, correctly rounded: 0 or a denormal when that is tiny.
  // False when it is too large for a double. To be called once.
  bool Round(std::int64_t exponent, double* value);

 private:
  static constexpr int kKept = 800;
  static constexpr int kExponentRoom = 8;  // one digit for the rest, "e-1150"

  int kept_ = 0;
  bool restIsZero_ = true;
  std::int64_t dropped_ = 0;
  char digits_[kKept + kExponentRoom];
};

}  // namespace embedded
