#include "library/outputs/ValueText.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/DataSource.h"

namespace library {
namespace {

std::string Number(double value) {
  char text[kValueTextRoom];
  return {text, WriteNumber(text, value)};
}

std::string Value(double value, ValueKind kind) {
  char text[kValueTextRoom];
  return {text, WriteValue(text, value, kind)};
}

TEST(ValueText, WholeNumbersHaveNoPoint) {
  EXPECT_EQ(Number(5), "5");
  EXPECT_EQ(Number(-12), "-12");
  EXPECT_EQ(Number(0), "0");
  EXPECT_EQ(Number(1000000), "1000000");
  EXPECT_EQ(Number(9007199254740993.0), "9007199254740992");
}

TEST(ValueText, FractionsHaveTheFewestDigitsThatReadBack) {
  EXPECT_EQ(Number(0.1), "0.1");
  EXPECT_EQ(Number(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(Number(1234.5), "1234.5");
  EXPECT_EQ(Number(0.0001), "0.0001");
}

TEST(ValueText, VeryLargeAndVerySmallNumbersHaveAnExponent) {
  EXPECT_EQ(Number(1e21), "1e+21");
  EXPECT_EQ(Number(-2.5e300), "-2.5e+300");
  EXPECT_EQ(Number(0.00001), "1e-05");
  EXPECT_EQ(Number(5e-324), "5e-324");
}

TEST(ValueText, NegativeZeroKeepsItsSign) { EXPECT_EQ(Number(-0.0), "-0"); }

TEST(ValueText, EveryDoubleReadsBackToItself) {
  std::mt19937_64 random(7);
  for (int count = 0; count < 200000; ++count) {
    const std::uint64_t bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (count % 2 == 0)
      value = std::ldexp(static_cast<double>(random() % 1000000007), -(count % 60));
    if (!std::isfinite(value)) continue;
    const std::string text = Number(value);
    double back = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), back);
    ASSERT_EQ(parsed.ptr, text.data() + text.size()) << text;
    ASSERT_EQ(std::memcmp(&back, &value, sizeof value), 0) << text;
  }
}

// What WriteNumber promises, by the library's conversions alone.
std::string NumberByTheLibrary(double value) {
  char text[kValueTextRoom];
  const double size = std::fabs(value);
  const bool plain = size < 1e16 && (size >= 1e-4 || value == 0);
  const auto end = plain ? std::to_chars(text, text + sizeof text, value, std::chars_format::fixed)
                         : std::to_chars(text, text + sizeof text, value);
  return {text, end.ptr};
}

TEST(ValueText, WrittenDecimalsHaveTheFewestDigits) {
  std::mt19937_64 random(11);
  for (int count = 0; count < 300000; ++count) {
    // Numbers as files have them: up to 17 digits, of which some are decimals.
    const std::uint64_t bound = static_cast<std::uint64_t>(std::pow(10, random() % 18));
    const double scale = std::pow(10.0, static_cast<double>(random() % 10));
    double value = static_cast<double>(random() % bound) / scale;
    if (random() % 2 == 0) value = -value;
    // And their neighbours, which have no short text.
    if (random() % 8 == 0) value = std::nextafter(value, 1e300);
    ASSERT_EQ(Number(value), NumberByTheLibrary(value));
  }
}

TEST(ValueText, DigitsAreWrittenUpToTheLastPowerOfTen) {
  for (double power = 1; power < 1e19; power *= 10) {
    for (const double value : {power - 1, power, power + 1, power * 5 + 0.5, power / 1e6 + 1e-6}) {
      EXPECT_EQ(Number(value), NumberByTheLibrary(value));
      EXPECT_EQ(Number(-value), NumberByTheLibrary(-value));
    }
  }
}

TEST(ValueText, DatesAreDays) {
  EXPECT_EQ(Value(86400, ValueKind::kDate), "1582-10-15");
  EXPECT_EQ(Value(12219379200, ValueKind::kDate), "1970-01-01");
  EXPECT_EQ(Value(13802313600, ValueKind::kDate), "2020-02-29");
  EXPECT_EQ(Value(13802400000, ValueKind::kDate), "2020-03-01");
  EXPECT_EQ(Value(265621593600, ValueKind::kDate), "9999-12-31");
}

TEST(ValueText, EveryDayOfTheCalendarFollowsTheOneBefore) {
  // Month lengths and leap years counted by hand from 1582-10-15.
  int year = 1582, month = 10, day = 15;
  for (std::int64_t number = 1; number <= 3074324; ++number) {
    char expected[48];
    std::snprintf(expected, sizeof expected, "%04d-%02d-%02d", year, month, day);
    ASSERT_EQ(Value(static_cast<double>(number * 86400), ValueKind::kDate), expected);
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const int lengths[] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (++day > lengths[month - 1]) day = 1, ++month;
    if (month > 12) month = 1, ++year;
  }
  EXPECT_EQ(year, 10000);
}

TEST(ValueText, DateTimesHaveTheSecondsAndTheirFraction) {
  EXPECT_EQ(Value(12219379200, ValueKind::kDateTime), "1970-01-01T00:00:00");
  EXPECT_EQ(Value(12219379200 + 86399, ValueKind::kDateTime), "1970-01-01T23:59:59");
  EXPECT_EQ(Value(12219379200 + 3661.5, ValueKind::kDateTime), "1970-01-01T01:01:01.5");
  EXPECT_EQ(Value(12219379200 + 0.1, ValueKind::kDateTime), "1970-01-01T00:00:00.1");
  // The last moments before midnight belong to their day.
  EXPECT_EQ(Value(std::nextafter(265621593600.0, 0), ValueKind::kDateTime).substr(0, 19),
            "9999-12-30T23:59:59");
  EXPECT_EQ(Value(12219379200 + 59.999, ValueKind::kDateTime), "1970-01-01T00:00:59.999");
}

TEST(ValueText, TimesCountHoursWithoutLimit) {
  EXPECT_EQ(Value(0, ValueKind::kTime), "0:00:00");
  EXPECT_EQ(Value(61, ValueKind::kTime), "0:01:01");
  EXPECT_EQ(Value(3600 * 123.0 + 59, ValueKind::kTime), "123:00:59");
  EXPECT_EQ(Value(45296.7, ValueKind::kTime), "12:34:56.7");
}

TEST(ValueText, NegativeTimesHaveASign) {
  EXPECT_EQ(Value(-1.5, ValueKind::kTime), "-0:00:01.5");
  EXPECT_EQ(Value(-3600, ValueKind::kTime), "-1:00:00");
}

TEST(ValueText, TinyFractionsOfASecondFit) {
  EXPECT_EQ(Value(1e-9, ValueKind::kTime), "0:00:00.000000001");
  EXPECT_EQ(Value(5e-324, ValueKind::kTime).size(), std::string("0:00:00.").size() + 324);
}

TEST(ValueText, WhatLiesOutsideTheCalendarStaysANumber) {
  EXPECT_EQ(Value(86399, ValueKind::kDate), "86399");
  EXPECT_EQ(Value(-5, ValueKind::kDateTime), "-5");
  EXPECT_EQ(Value(265621680000, ValueKind::kDate), "265621680000");
  EXPECT_EQ(Value(1e300, ValueKind::kTime), "1e+300");
}

TEST(ValueText, MissingIsTheLowestDoubleAndWhatIsNoNumber) {
  EXPECT_TRUE(IsMissing(kSystemMissing));
  EXPECT_TRUE(IsMissing(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_TRUE(IsMissing(std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(IsMissing(0));
  EXPECT_FALSE(IsMissing(std::numeric_limits<double>::max()));
}

}  // namespace
}  // namespace library
