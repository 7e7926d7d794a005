// Field text into values: compact dates and times, strings and their widths.
#include "reading/ValueConverter.h"

#include <optional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "model/FormatCode.h"

namespace textwizard {
namespace {

std::optional<double> Converted(std::string_view field, std::uint32_t format) {
  double value = 0;
  if (!ConvertNumber(field, format, &value)) return std::nullopt;
  return value;
}

// What the host reads from a separated text; the test fails when that is nothing.
std::optional<double> Host(std::string_view text, std::uint32_t format) {
  double value = 0;
  const int result =
      IocvConvertInput(text.data(), text.size(), static_cast<int>(format), 0, &value);
  EXPECT_EQ(result, 0) << text;
  return value;
}

constexpr double kDay = 86400;
// Days from 1582-10-14 to 1970-01-01.
constexpr double kUnixEpoch = 141428;

TEST(ValueConverter, CompactDatesOfSixAndEightDigits) {
  EXPECT_EQ(Converted("01312024", kFormatADate), Host("01/31/2024", kFormatADate));
  EXPECT_EQ(Converted("013124", kFormatADate), Host("01/31/24", kFormatADate));
  EXPECT_EQ(Converted("20240131", kFormatSDate), Host("2024/01/31", kFormatSDate));
  EXPECT_EQ(Converted("240131", kFormatSDate), Host("24/01/31", kFormatSDate));
  EXPECT_EQ(Converted("31012024", kFormatEDate), Host("31/01/2024", kFormatEDate));
  EXPECT_EQ(Converted("310124", kFormatEDate), Host("31/01/24", kFormatEDate));
  EXPECT_EQ(Converted("31012024", kFormatDate), Host("31/01/2024", kFormatDate));
  EXPECT_EQ(Converted("310124", kFormatDate), Host("31/01/24", kFormatDate));
  // 1970-01-02.
  EXPECT_EQ(Converted("19700102", kFormatSDate), (kUnixEpoch + 1) * kDay);
}

TEST(ValueConverter, CompactDatesWithAMonthName) {
  EXPECT_EQ(Converted("31JAN2024", kFormatDate), Host("31-JAN-2024", kFormatDate));
  EXPECT_EQ(Converted("31JAN24", kFormatDate), Host("31-JAN-24", kFormatDate));
}

TEST(ValueConverter, ACompactDateOfAnyOtherLengthIsMissing) {
  EXPECT_EQ(Converted("1312024", kFormatADate), std::nullopt);
  EXPECT_EQ(Converted("31JAN2024", kFormatEDate), std::nullopt);
  EXPECT_EQ(Converted("31JAN24", kFormatSDate), std::nullopt);
  for (const std::uint32_t format : {kFormatDate, kFormatADate, kFormatEDate, kFormatSDate}) {
    for (const std::string_view text : {"", "1", "01", "0131", "01312", "0131202412"}) {
      EXPECT_EQ(Converted(text, format), std::nullopt) << format << " " << text;
    }
  }
}

TEST(ValueConverter, ADateWithAnySeparatorIsTakenAsItIs) {
  for (const std::string_view text : {"31/01/2024", "31.01.2024", "31-01-2024", "31,01,2024"}) {
    EXPECT_EQ(Converted(text, kFormatEDate), Host("31/01/2024", kFormatEDate)) << text;
  }
  // Six bytes, but not compact.
  EXPECT_EQ(Converted("1/1/24", kFormatADate), Host("01/01/24", kFormatADate));
  // A backslash keeps the text from being taken for compact.
  EXPECT_EQ(Converted("31\\012024", kFormatEDate), std::nullopt);
}

TEST(ValueConverter, CompactTimes) {
  EXPECT_EQ(Converted("1230", kFormatTime), 45000.0);
  EXPECT_EQ(Converted("123045", kFormatTime), 45045.0);
  EXPECT_EQ(Converted("12304512", kFormatTime), 45045.12);
  for (const std::string_view text : {"", "1", "12", "123", "12304", "1230451", "123045123"}) {
    EXPECT_EQ(Converted(text, kFormatTime), std::nullopt) << text;
  }
  EXPECT_EQ(Converted("1:30", kFormatTime), 5400.0);
}

TEST(ValueConverter, OtherFormatsAreNotRewritten) {
  EXPECT_EQ(Converted("123045", kFormatF), 123045.0);
  EXPECT_EQ(Converted("1230", kFormatMTime), std::nullopt);
  EXPECT_EQ(Converted("01JAN2024", kFormatDateTime), std::nullopt);
}

TEST(ValueConverter, AnEmptyFieldOfANumberIsMissing) {
  EXPECT_EQ(Converted("", kFormatF), std::nullopt);
  EXPECT_EQ(Converted({}, kFormatF), std::nullopt);
  EXPECT_EQ(Converted("   ", kFormatComma), std::nullopt);
  EXPECT_EQ(Converted("x", kFormatF), std::nullopt);
}

bool Truncated(std::string_view field, std::size_t width, const StringRules& rules,
               std::string_view text) {
  const StringValue value = ConvertString(field, width, rules);
  EXPECT_EQ(value.text, text);
  return value.truncated;
}

TEST(ValueConverter, AStringThatFitsIsStoredAsItIs) {
  EXPECT_FALSE(Truncated("ab", 4, {}, "ab"));
  EXPECT_FALSE(Truncated("abcd", 4, {}, "abcd"));
  EXPECT_FALSE(Truncated("", 4, {}, ""));
  // Leading blanks go only where they make a field too long.
  EXPECT_FALSE(Truncated("  ab", 4, {.leadingSpaces = true}, "  ab"));
}

TEST(ValueConverter, AStringThatIsTooLongIsTruncated) {
  EXPECT_TRUE(Truncated("abcdef", 4, {}, "abcdef"));
  EXPECT_TRUE(Truncated("  abc", 4, {}, "  abc"));
}

TEST(ValueConverter, LeadingSpacesMayMakeALongStringFit) {
  EXPECT_FALSE(Truncated("  abc", 4, {.leadingSpaces = true}, "abc"));
  EXPECT_TRUE(Truncated("  abcde", 4, {.leadingSpaces = true}, "abcde"));
  EXPECT_FALSE(Truncated("      ", 4, {.leadingSpaces = true}, ""));
}

TEST(ValueConverter, OnlyOnWorkersAnEnclosedStringTwoBytesTooLongIsNotCounted) {
  const StringRules worker{.enclosedFitsUnmarked = true};
  EXPECT_FALSE(Truncated("\"abcd\"", 4, worker, "\"abcd\""));
  EXPECT_FALSE(Truncated("'abcd'", 4, worker, "'abcd'"));
  EXPECT_TRUE(Truncated("\"abcd\"", 4, {}, "\"abcd\""));
  EXPECT_TRUE(Truncated("\"abcd'", 4, worker, "\"abcd'"));
  EXPECT_TRUE(Truncated("\"abc\"", 4, worker, "\"abc\""));
  EXPECT_TRUE(Truncated("\"abcde\"", 4, worker, "\"abcde\""));
  EXPECT_TRUE(Truncated("xabcdx", 4, worker, "xabcdx"));
  // After leading blanks are gone.
  EXPECT_FALSE(
      Truncated("  'abcd'", 4, {.leadingSpaces = true, .enclosedFitsUnmarked = true}, "'abcd'"));
}

}  // namespace
}  // namespace textwizard
