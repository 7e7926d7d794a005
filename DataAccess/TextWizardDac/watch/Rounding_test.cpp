#include "watch/Rounding.h"

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

bool Rounded(const std::string& text) {
  return IsRounded(text, std::strtod(text.c_str(), nullptr));
}

TEST(IsRounded, FifteenDigitsAreAlwaysKept) {
  for (const char* const text : {"", "x", "0", "000000000000000000000", "999999999999999",
                                 "0.123456789012345", "123456789012345e300"}) {
    EXPECT_FALSE(Rounded(text)) << text;
  }
}

TEST(IsRounded, LongIntegersAreRoundedWhereTheyAreNoDouble) {
  EXPECT_FALSE(Rounded("9007199254740992"));
  EXPECT_TRUE(Rounded("9007199254740993"));
  EXPECT_FALSE(Rounded("9007199254740994"));
  EXPECT_TRUE(Rounded("12345678901234567890"));
  EXPECT_TRUE(Rounded("-1234567890123456789"));
  // 2 to the power of 70.
  EXPECT_FALSE(Rounded("1180591620717411303424"));
  EXPECT_TRUE(Rounded("1180591620717411303425"));
}

TEST(IsRounded, FractionsAreRoundedWhenTheirDigitsDoNotComeBack) {
  EXPECT_FALSE(Rounded("0.1234567890123456"));
  EXPECT_FALSE(Rounded("0.30000000000000004"));
  EXPECT_TRUE(Rounded("0.30000000000000003"));
  EXPECT_TRUE(Rounded("3.14159265358979323846"));
  // All the digits that the double has.
  EXPECT_FALSE(Rounded("0.1000000000000000055511151231257827021181583404541015625"));
}

TEST(IsRounded, ZerosAtBothEndsAreNoDigits) {
  EXPECT_FALSE(Rounded("0.10000000000000000000"));
  EXPECT_FALSE(Rounded("0000000000000000000001.50"));
  EXPECT_FALSE(Rounded("100000000000000000000"));
  EXPECT_FALSE(Rounded("12345678901234560000"));
}

TEST(IsRounded, WhatStandsBetweenTheDigitsAndTheExponentDoNotMatter) {
  EXPECT_TRUE(IsRounded("$9,007,199,254,740,993.00", 9007199254740992.0));
  EXPECT_FALSE(IsRounded("$9,007,199,254,740,994.00", 9007199254740994.0));
  EXPECT_TRUE(IsRounded("9.007199254740993D15", 9007199254740992.0));
  EXPECT_TRUE(IsRounded("  9.007199254740993e+15 %", 9007199254740992.0));
  EXPECT_FALSE(IsRounded("1e1234567890123456", 1e300));
}

TEST(IsRounded, MoreDigitsThanADoubleHas) {
  EXPECT_TRUE(Rounded("1" + std::string(1000, '0') + ".1"));
  EXPECT_TRUE(Rounded("0." + std::string(5000, '3')));
  EXPECT_FALSE(Rounded("0." + std::string(5000, '0')));
}

TEST(IsRounded, SeventeenDigitsAsADoubleIsPrintedAreNot) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    const double value =
        std::ldexp(static_cast<double>(random() >> 11) + 1, static_cast<int>(random() % 400) - 250);
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", value);
    ASSERT_FALSE(IsRounded(text, value)) << text;
    // A digit behind them that is not the double's own.
    std::snprintf(text, sizeof text, "%.18e", value);
    char& last = text[19];
    last = last == '9' ? '8' : static_cast<char>(last + 1);
    ASSERT_TRUE(last == '0' || IsRounded(text, value)) << text;
  }
}

}  // namespace
}  // namespace textwizard
