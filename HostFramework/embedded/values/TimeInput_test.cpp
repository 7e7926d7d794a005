// The rules of the time and duration formats, text by text.
#include <charconv>
#include <random>
#include <string>

#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

constexpr double kHalfPastTen = 37800;

TEST(TimeInput, HoursAndMinutes) {
  EXPECT_EQ(Read("10:30", kFormatTime), kHalfPastTen);
  EXPECT_EQ(Read("+10:30", kFormatTime), kHalfPastTen);
  EXPECT_EQ(Read("-10:30", kFormatTime), -kHalfPastTen);
  EXPECT_EQ(Read("0:00", kFormatTime), 0.0);
  EXPECT_EQ(Read("00:59", kFormatTime), 3540.0);
  EXPECT_EQ(Read("1:5", kFormatTime), 3900.0);
  EXPECT_EQ(Read("24:00", kFormatTime), 86400.0);
  EXPECT_EQ(Read("100:00", kFormatTime), 360000.0);
  EXPECT_EQ(Read("123456789:00", kFormatTime), 444444440400.0);
  EXPECT_EQ(Read("00000000000000000000001:00", kFormatTime), 3600.0);
}

TEST(TimeInput, Seconds) {
  EXPECT_EQ(Read("10:30:15", kFormatTime), kHalfPastTen + 15);
  EXPECT_EQ(Read("10:30:5", kFormatTime), kHalfPastTen + 5);
  EXPECT_EQ(Read("-1:00:01", kFormatTime), -3601.0);
  for (const char* text : {"10:30:15.25", "10:30:15,25", "10:30:15 25", "10:30:15-25",
                           "10:30:15/25", "10:30:15.2500000000000000000000000000000000000"}) {
    EXPECT_EQ(Read(text, kFormatTime), kHalfPastTen + 15.25) << text;
  }
  EXPECT_EQ(Read("0:0:0.1", kFormatTime), 0.1);
  EXPECT_EQ(Read("-0:00:00.5", kFormatTime), -0.5);
}

TEST(TimeInput, TheDecimalCharacterDoesNotMatter) {
  const DecimalComma comma;
  EXPECT_EQ(Read("10:30:15.25", kFormatTime), kHalfPastTen + 15.25);
  EXPECT_EQ(Read("10:30:15,25", kFormatTime), kHalfPastTen + 15.25);
}

TEST(TimeInput, TextsThatAreNotTimes) {
  for (const char* text :
       {"10",          "10:",         ":30",         "10:60",  "10:99",     "10:30:60",
        "10:30:99",    "10:030",      "10:30:015",   "10:30:", "10:30:15.", "10:30:15..5",
        "10:30:15  5", "10:30.5",     "10.30",       "10-30",  "1030",      "--10:30",
        "+-10:30",     "- 10:30",     "10 :30",      "10: 30", "10:30 PM",  "10:30:15:25",
        "10h30",       "10:30:15.5x", "10:30:15.-5", "10:-30", "a:30",      "10:3|"}) {
    EXPECT_EQ(Read(text, kFormatTime), kNoValue) << text;
  }
}

TEST(TimeInput, HoursWithoutEnd) {
  // The nearest double to so many hours, as far as there is one.
  EXPECT_DOUBLE_EQ(Read("1" + std::string(30, '0') + ":00", kFormatTime).value(), 3600e30);
  EXPECT_DOUBLE_EQ(Read("-1" + std::string(30, '0') + ":00:00", kFormatTime).value(), -3600e30);
  EXPECT_EQ(Read("1" + std::string(400, '0') + ":00", kFormatTime), kNoValue);
  EXPECT_DOUBLE_EQ(Read(std::string(14, '9') + ":59:59.5", kFormatTime).value(),
                   359999999999999999.5);
}

TEST(TimeInput, FractionsAreRoundedOnce) {
  // The nearest double to the whole number of seconds, not a sum of two rounded parts.
  EXPECT_EQ(Read("1000:00:00.1", kFormatTime), 3600000.1);
  EXPECT_EQ(Read("27777777:46:40.123456", kFormatTime), 100000000000.123456);
  EXPECT_EQ(Read("0:00:00.000001", kFormatTime), 0.000001);
  EXPECT_EQ(Read("0:00:00.1234567890123456789", kFormatTime), 0.1234567890123456789);
  EXPECT_EQ(Read("0:00:59." + std::string(900, '9'), kFormatTime), 60.0);
  EXPECT_EQ(Read("0:00:01." + std::string(900, '0') + "1", kFormatTime), 1.0);
}

// digits x unit + rest, by long multiplication.
std::string Scaled(const std::string& digits, int unit, int rest) {
  std::string product;
  int carry = rest;
  for (std::size_t i = digits.size(); i-- > 0 || carry > 0;) {
    if (i < digits.size()) {
      carry += (digits[i] - '0') * unit;
    } else {
      i = 0;
    }
    product.insert(product.begin(), static_cast<char>('0' + carry % 10));
    carry /= 10;
  }
  return product;
}

double Nearest(const std::string& number) {
  double value = 0;
  std::from_chars(number.data(), number.data() + number.size(), value);
  return value;
}

TEST(TimeInput, LongCountsKeepTheirFraction) {
  EXPECT_EQ(Read("10000000000000:30.5", kFormatMTime), 600000000000030.5);
  EXPECT_EQ(Read("-10000000000000:30.5", kFormatMTime), -600000000000030.5);
  EXPECT_EQ(Read("99999999999999:59.5", kFormatMTime), 5999999999999999.5);
  // Between two doubles the even one, and the upper one when anything more follows.
  EXPECT_EQ(Read("100000000000000:00.5", kFormatMTime), 6000000000000000.0);
  EXPECT_EQ(Read("100000000000000:00.50000000000000000001", kFormatMTime), 6000000000000001.0);
  EXPECT_EQ(Read(std::string(900, '0') + "1:00:00.5", kFormatTime), 3600.5);
  EXPECT_EQ(Read("1" + std::string(304, '0') + ":00:00", kFormatTime), 3.6e307);
  EXPECT_EQ(Read(std::string(400, '9') + ":00:00", kFormatTime), kNoValue);
}

TEST(TimeInput, LongCountsAreRoundedOnce) {
  std::mt19937_64 random(24);
  const auto below = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  for (int i = 0; i < 20000; ++i) {
    std::string count;
    for (int digits = 1 + below(40); digits > 0; --digits) {
      count += static_cast<char>('0' + below(10));
    }
    std::string fraction;
    for (int digits = 1 + below(20); digits > 0; --digits) {
      fraction += static_cast<char>('0' + below(10));
    }
    const int hours = 10 + below(14), minutes = 10 + below(50), seconds = 10 + below(50);
    const std::string minute = std::to_string(minutes), second = std::to_string(seconds);
    const std::string point = "." + fraction;
    const std::string tail = minute + ":" + second + point;
    EXPECT_EQ(Read(count + ":" + second + point, kFormatMTime),
              Nearest(Scaled(count, 60, seconds) + point))
        << count;
    EXPECT_EQ(Read(count + ":" + tail, kFormatTime),
              Nearest(Scaled(count, 3600, minutes * 60 + seconds) + point))
        << count;
    EXPECT_EQ(Read(count + " " + std::to_string(hours) + ":" + tail, kFormatDTime),
              Nearest(Scaled(count, 86400, hours * 3600 + minutes * 60 + seconds) + point))
        << count;
  }
}

TEST(TimeInput, DaysAndTime) {
  EXPECT_EQ(Read("1 10:30", kFormatDTime), 86400 + kHalfPastTen);
  EXPECT_EQ(Read("1:10:30", kFormatDTime), 86400 + kHalfPastTen);
  EXPECT_EQ(Read("1   10:30", kFormatDTime), 86400 + kHalfPastTen);
  EXPECT_EQ(Read("001 10:30:15", kFormatDTime), 86400 + kHalfPastTen + 15);
  EXPECT_EQ(Read("-2 00:00:01", kFormatDTime), -172801.0);
  EXPECT_EQ(Read("+2 00:00", kFormatDTime), 172800.0);
  EXPECT_EQ(Read("0 23:59:59.75", kFormatDTime), 86399.75);
  EXPECT_EQ(Read("0 23:59:59,75", kFormatDTime), 86399.75);
  EXPECT_EQ(Read("10000 0:00", kFormatDTime), 864000000.0);
  for (const char* text :
       {"1",          "1 ",          "10:30",        "1 24:00",      "1 10",         "1 10:60",
        "1 10:30:60", "1 10:30:15.", "1 10:30:15 5", "1 10:30:15-5", "1 10:30:15/5", "1-10:30",
        "1/10:30",    "1,10:30",     "1 -10:30",     "1 +10:30",     "- 1 10:30",    "1T10:30",
        "1: 10:30",   "1::10:30",    "1 100:30",     "a 10:30",      "--1 10:30"}) {
    EXPECT_EQ(Read(text, kFormatDTime), kNoValue) << text;
  }
}

TEST(TimeInput, MinutesAndSeconds) {
  EXPECT_EQ(Read("12:30", kFormatMTime), 750.0);
  EXPECT_EQ(Read("12.30", kFormatMTime), 750.0);
  EXPECT_EQ(Read("12,30", kFormatMTime), 750.0);
  EXPECT_EQ(Read("12 30", kFormatMTime), 750.0);
  EXPECT_EQ(Read("12:5", kFormatMTime), 725.0);
  EXPECT_EQ(Read("-12:30", kFormatMTime), -750.0);
  EXPECT_EQ(Read("+12:30", kFormatMTime), 750.0);
  EXPECT_EQ(Read("1000:00", kFormatMTime), 60000.0);
  EXPECT_EQ(Read("12:30.5", kFormatMTime), 750.5);
  EXPECT_EQ(Read("12:30,5", kFormatMTime), 750.5);
  EXPECT_EQ(Read("12:30:5", kFormatMTime), 750.5);
  EXPECT_EQ(Read("12:30:45", kFormatMTime), 750.45);
  EXPECT_EQ(Read("12.30.45", kFormatMTime), 750.45);
  EXPECT_EQ(Read("12 30.125", kFormatMTime), 750.125);
  for (const char* text :
       {"12", "1230", "12:", ":30", "12:60", "12:030", "12:30:", "12:30.", "12:30 5", "12:30-5",
        "12-30", "12/30", "12  30", "12: 30", "12:30:45:5", "--12:30", "- 12:30", "12:30x"}) {
    EXPECT_EQ(Read(text, kFormatMTime), kNoValue) << text;
  }
}

TEST(TimeInput, DigitsAndBlanksOfOtherScripts) {
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("\u0661\u0660:30", kFormatTime), kHalfPastTen);
  EXPECT_EQ(Read("10:30:15\u00A0\u0662\u0665", kFormatTime), kHalfPastTen + 15.25);
  EXPECT_EQ(Read("10:30:15.\u0662\u0665\u0660\u0660\u0660\u0660\u0660\u0660\u0660\u0660\u0660\u0660"
                 "\u0660\u0660\u0660\u0660",
                 kFormatTime),
            kHalfPastTen + 15.25);
  EXPECT_EQ(Read("1\u200310:30", kFormatDTime), 86400 + kHalfPastTen);
}

}  // namespace
}  // namespace embedded
