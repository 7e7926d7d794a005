#include "library/report/RisingNumber.h"

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace library {
namespace {

std::string Written(RisingNumber& numbers, std::int64_t number) {
  char digits[RisingNumber::kMostBytes];
  return {digits, numbers.Write(number, digits)};
}

TEST(RisingNumber, WritesEveryNumberWhicheverCameBefore) {
  std::vector<std::int64_t> numbers = {0,
                                       9,
                                       10,
                                       9999,
                                       10000,
                                       10001,
                                       19999,
                                       20000,
                                       99999,
                                       100000,
                                       99990000,
                                       99999999,
                                       7,
                                       12345,
                                       123450,
                                       12345,
                                       std::numeric_limits<std::int64_t>::max()};
  std::mt19937_64 random(3);
  for (int bits = 1; bits < 64; ++bits) {
    numbers.push_back(static_cast<std::int64_t>(random() >> (64 - bits)));
    numbers.push_back(numbers.back() ^ 1);
  }
  RisingNumber rising;
  for (const std::int64_t number : numbers) {
    EXPECT_EQ(Written(rising, number), std::to_string(number));
  }
}

TEST(RisingNumber, WritesARiseThroughEveryCarry) {
  RisingNumber rising;
  for (std::int64_t number = 0; number < 300000; number += 7) {
    ASSERT_EQ(Written(rising, number), std::to_string(number));
  }
}

}  // namespace
}  // namespace library
