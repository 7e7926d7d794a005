#include "HostFramework/embedded/values/Decimal.h"

#include <charconv>
#include <system_error>

namespace embedded {
namespace {

// With the point in front of the first digit, a decimal exponent above the first is more than any
// double, and one below the second less than half of the smallest.
constexpr std::int64_t kLargestExponent = 309;
constexpr std::int64_t kSmallestExponent = -324;

}  // namespace

bool Decimal::Round(std::int64_t exponent, double* value) {
  if (kept_ == 0) {
    *value = 0;
    return true;
  }
  exponent += dropped_;
  if (exponent + kept_ > kLargestExponent) return false;
  if (exponent + kept_ < kSmallestExponent) {
    *value = 0;
    return true;
  }
  char* end = digits_ + kept_;
  if (!restIsZero_) {
    *end++ = '1';
    --exponent;
  }
  *end++ = 'e';
  end = std::to_chars(end, digits_ + sizeof digits_, exponent).ptr;

  double rounded = 0;
  if (std::from_chars(digits_, end, rounded).ec == std::errc::result_out_of_range) {
    // The same report stands for both directions; only a number of 300 digits is too large.
    if (exponent + kept_ > 0) return false;
    rounded = 0;
  }
  *value = rounded;
  return true;
}

}  // namespace embedded
