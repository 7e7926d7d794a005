#include "library/types/ValueReader.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "reading/ValueConverter.h"

namespace library {
namespace {

// The readings of a text, as the names of what reads them.
std::string Read(std::string_view text) {
  static const char* const kNames[kReadings] = {
      "point", "comma", "point%", "comma%",  "$",   "ymd", "mdy",  "dmy", "ymdt",
      "dmyt",  "time",  "mtime",  "daytime", "qyr", "my",  "week", "day", "month"};
  const ReadingSet set = ReadValue(text).set;
  std::string names;
  for (std::size_t i = 0; i < kReadings; ++i) {
    if (!set.Has(static_cast<Reading>(i))) continue;
    names += (names.empty() ? "" : " ") + std::string(kNames[i]);
  }
  return names;
}

constexpr const char* kAnyNumber = "point comma point% comma% $";
constexpr const char* kPointNumber = "point point% $";
constexpr const char* kCommaNumber = "comma comma%";

class ValueReaderTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
  void SetUp() override { iocvsetdecchardot_(); }
};

TEST_F(ValueReaderTest, Numbers) {
  for (const char* text : {"0", "42", "-7", "+5", "123456789012345678901234567890"}) {
    EXPECT_EQ(Read(text), kAnyNumber) << text;
  }
  for (const char* text : {"1.5", ".5", "5.", "-0.25", "1.2345", "1234.567", "1,234.5", "1,234,567",
                           "1.5e3", "1.5E-300"}) {
    EXPECT_EQ(Read(text), kPointNumber) << text;
  }
  for (const char* text : {"1,5", ",5", "1.234,5", "1.234.567", "0,12", "12345,678"}) {
    EXPECT_EQ(Read(text), kCommaNumber) << text;
  }
  for (const char* text : {"1.234", "1,234", "999,999", "-1.000"}) {
    EXPECT_EQ(Read(text), kAnyNumber) << text << " may be grouped";
  }
  EXPECT_EQ(Read("1e5"), kAnyNumber);
  EXPECT_EQ(Read("12%"), "point% comma%");
  EXPECT_EQ(Read("12.5 %"), "point%");
  EXPECT_EQ(Read("12,5%"), "comma%");
  EXPECT_EQ(Read("$1,234.50"), "$");
  EXPECT_EQ(Read("-$5"), "$");
}

TEST_F(ValueReaderTest, TextsThatAreNoNumbers) {
  for (const char* text : {"abc",
                           "1.2.3",
                           "1,2,3",
                           "0x1F",
                           "inf",
                           "nan",
                           "NaN",
                           "1 234",
                           "12a",
                           "--5",
                           "1e",
                           "e5",
                           "%",
                           "$",
                           "-",
                           ".",
                           "1.5.",
                           "(5)",
                           "5-",
                           "12%%",
                           "1e999",
                           "\xC2\xA3"
                           "5",
                           "#1"}) {
    EXPECT_EQ(Read(text), "") << text;
  }
}

TEST_F(ValueReaderTest, WhatANumberNeeds) {
  ValueReadings found = ReadValue("-1,234.50");
  EXPECT_EQ(found.point.whole, 6);
  EXPECT_EQ(found.point.fraction, 2);
  EXPECT_TRUE(found.point.grouped);
  found = ReadValue("1.234");
  EXPECT_EQ(found.point.whole, 1);
  EXPECT_EQ(found.point.fraction, 3);
  EXPECT_FALSE(found.point.grouped);
  EXPECT_EQ(found.comma.whole, 5);
  EXPECT_EQ(found.comma.fraction, 0);
  EXPECT_TRUE(found.comma.grouped);
  found = ReadValue("1.25e-7");
  EXPECT_EQ(found.point.fraction, 2);
  EXPECT_TRUE(found.point.exponent);
  EXPECT_EQ(ReadValue("$1,000.5").point.whole, 5);
  EXPECT_EQ(ReadValue("12.5 %").point.fraction, 1);
}

TEST_F(ValueReaderTest, LeadingZeros) {
  for (const char* text : {"007", "00", "0123", "-05"}) {
    EXPECT_TRUE(ReadValue(text).leadingZero) << text;
  }
  for (const char* text : {"0", "0.5", "10", "-0", "0,5", "00.5", "0e5", ".007"}) {
    EXPECT_FALSE(ReadValue(text).leadingZero) << text;
  }
}

TEST_F(ValueReaderTest, DigitsThatADoubleDoesNotKeep) {
  for (const char* text : {"9007199254740993", "1234567890123456789", "0.1234567890123456789",
                           "12345678901234567890123456789012345678", "1,234,567,890,123,456,789",
                           "$9007199254740993", "1.000000000000000001"}) {
    EXPECT_TRUE(ReadValue(text).losesDigits) << text;
  }
  for (const char* text :
       {"9007199254740992", "123456789012345", "0.30000000000000004", "1000000000000000000000",
        "1.000000000000000000000", "0.1", "0000000000000000000000001", "1.7976931348623157e308"}) {
    EXPECT_FALSE(ReadValue(text).losesDigits) << text;
  }
}

TEST_F(ValueReaderTest, Dates) {
  EXPECT_EQ(Read("2020-01-02"), "ymd");
  EXPECT_EQ(Read("2020/1/2"), "ymd");
  EXPECT_EQ(Read("12/31/2019"), "mdy");
  EXPECT_EQ(Read("31/12/2019"), "dmy");
  EXPECT_EQ(Read("31.12.2019"), "dmy");
  EXPECT_EQ(Read("1-2-2020"), "mdy dmy");
  EXPECT_EQ(Read("1/2/20"), "mdy dmy");
  EXPECT_EQ(Read("01/02/20"), "ymd mdy dmy");
  EXPECT_EQ(Read("03.04.19"), "ymd mdy dmy");
  EXPECT_EQ(Read("31-Jan-2020"), "dmy");
  EXPECT_EQ(Read("31JAN2020"), "dmy");
  EXPECT_EQ(Read("1-jan-99"), "dmy");
  EXPECT_EQ(Read("31. December 2020"), "dmy");
  EXPECT_EQ(Read("2020-Jan-31"), "ymd");
  EXPECT_EQ(Read("Jan 31, 2020"), "mdy");
  EXPECT_EQ(Read("1Q2020"), "qyr");
  EXPECT_EQ(Read("3 Q 20"), "qyr");
  EXPECT_EQ(Read("Jan 2020"), "my");
  EXPECT_EQ(Read("Jan-20"), "my");
  EXPECT_EQ(Read("03/2020"), "my");
  EXPECT_EQ(Read("12 WK 2020"), "week");
  EXPECT_EQ(Read("Monday"), "day");
  EXPECT_EQ(Read("sat"), "day");
  EXPECT_EQ(Read("March"), "month");
  EXPECT_EQ(Read("MAY"), "month");
}

TEST_F(ValueReaderTest, Times) {
  EXPECT_EQ(Read("2020-01-02 03:04"), "ymdt");
  EXPECT_EQ(Read("2020-01-02T03:04:05"), "ymdt");
  EXPECT_EQ(Read("2020-01-02 03:04:05.678"), "ymdt");
  EXPECT_EQ(Read("20200102 03:04"), "ymdt");
  EXPECT_EQ(Read("31-Jan-2020 10:30"), "dmyt");
  EXPECT_EQ(Read("31/12/2019 23:59:59"), "dmyt");
  EXPECT_EQ(Read("10:30"), "time mtime");
  EXPECT_EQ(Read("-25:00:00"), "time mtime");
  EXPECT_EQ(Read("75:30.5"), "mtime");
  EXPECT_EQ(Read("3 10:30"), "daytime");
  EXPECT_EQ(ReadValue("10:30:15.25").secondFraction, 2);
  EXPECT_TRUE(ReadValue("10:30:15").hasSeconds);
  EXPECT_FALSE(ReadValue("2020-01-02 10:30").hasSeconds);
  EXPECT_EQ(ReadValue("31.12.2019 10:30").secondFraction, 0);
  EXPECT_TRUE(ReadValue("01/02/2020 10:30").eitherOrder);
  EXPECT_FALSE(ReadValue("31/12/2019 10:30").eitherOrder);
}

// Some format reads each of these; nearly nobody means that.
TEST_F(ValueReaderTest, TextsThatStayTexts) {
  for (const char* text : {"1.1.1",
                           "1.2.34",
                           "10.2.11",
                           "1-2-34",
                           "1,2,20",
                           "10 20 30",
                           "I",
                           "V",
                           "X",
                           "iv",
                           "May 15",
                           "1,5,3",
                           "Q1 2020",
                           "2020-13-01",
                           "2020-02-30",
                           "31/02/2020",
                           "12:30 PM",
                           "12:60",
                           "2020-01-02T03:04:05Z",
                           "Satu",
                           "Marchh",
                           "Mondays",
                           "12/31/2019 10:30",
                           "192.168.1.1",
                           "555-1234",
                           "1/2",
                           "3/4",
                           "A1",
                           "1 Jan 2000 and more"}) {
    EXPECT_EQ(Read(text), "") << text;
  }
}

TEST_F(ValueReaderTest, BlanksBetweenTheParts) {
  // The conversion of cases reads no date whose parts only blanks separate.
  double value;
  ASSERT_FALSE(textwizard::ConvertNumber("1 Jan 2000", textwizard::kFormatDate, &value));
  EXPECT_EQ(Read("1 Jan 2000"), "");
}

// The one promise: what is in the set is what the conversion of cases reads.
TEST_F(ValueReaderTest, EveryReadingConverts) {
  std::mt19937_64 random(11);
  const std::vector<std::string> pieces = {
      "0",    "1",    "2",   "3",    "12",     "19", "20",      "29",  "31",  "99",
      "2020", "1999", "123", "1234", ".",      ",",  "-",       "+",   "/",   ":",
      " ",    "T",    "%",   "$",    "e",      "E",  "d",       "Jan", "feb", "March",
      "Q",    "wk",   "WK",  "Mon",  "Friday", "x",  "\xC3\xA9"};
  std::size_t readable = 0;
  for (int round = 0; round < 400000; ++round) {
    std::string text;
    for (std::size_t count = 1 + random() % 9; count > 0; --count) {
      text += pieces[random() % pieces.size()];
    }
    if (text.front() == ' ' || text.back() == ' ') continue;
    const ReadingSet set = ReadValue(text).set;
    for (std::size_t i = 0; i < kReadings; ++i) {
      const auto reading = static_cast<Reading>(i);
      if (!set.Has(reading)) continue;
      ++readable;
      double value;
      const bool percent = reading == Reading::kPointPercent || reading == Reading::kCommaPercent;
      if (reading == Reading::kCommaPercent) iocvsetdeccharcomma_();
      EXPECT_TRUE(textwizard::ConvertNumber(text, FormatOf(reading), &value))
          << text << " as " << i;
      // F and E read what their percentage reads.
      if (percent &&
          set.Has(reading == Reading::kPointPercent ? Reading::kPoint : Reading::kComma)) {
        EXPECT_TRUE(textwizard::ConvertNumber(text, textwizard::kFormatF, &value)) << text;
      }
      iocvsetdecchardot_();
    }
  }
  EXPECT_GT(readable, 100000u);
}

}  // namespace
}  // namespace library
