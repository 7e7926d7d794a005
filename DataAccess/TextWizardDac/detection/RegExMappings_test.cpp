#include "detection/RegExMappings.h"

#include <clocale>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "command/FormatCode.h"
#include "detection/testing/TestLocale.h"

namespace textwizard {
namespace {

// The regex of a row under the names of `locale`.
std::string RowRegex(int key, const char* locale = "C") {
  const TestLocale names(LC_TIME, locale);
  return RegExMappings().regExMappings().at(key).regex;
}

TEST(RegExMappings, HoldsTheRowsByAscendingKey) {
  std::vector<int> keys;
  const RegExMappings table;
  for (const auto& [key, row] : table.regExMappings()) {
    EXPECT_EQ(row.key, key);
    keys.push_back(key);
  }
  EXPECT_EQ(keys,
            (std::vector<int>{1000, 1001, 1002, 1003, 1004, 1005, 1008, 1009, 1010, 1011, 1012,
                              1013, 1014, 1015, 1016, 1017, 1018, 1019, 1020, 1021, 1022, 1023,
                              1024, 1100, 1101, 1102, 1103, 1113, 1114, 1115, 1116, 1117}));
}

TEST(RegExMappings, ARowsFormatNameSpellsItsTypeWidthAndDecimals) {
  const std::map<int, std::string> types = {
      {kFormatDate, "DATE"},   {kFormatADate, "ADATE"},  {kFormatEDate, "EDATE"},
      {kFormatSDate, "SDATE"}, {kFormatQyr, "QYR"},      {kFormatMoyr, "MOYR"},
      {kFormatWkyr, "WKYR"},   {kFormatWkday, "WKDAY"},  {kFormatMonth, "MONTH"},
      {kFormatTime, "TIME"},   {kFormatDTime, "DTIME"},  {kFormatDateTime, "DATETIME"},
      {kFormatMTime, "MTIME"}, {kFormatYmdhms, "YMDHMS"}};
  const RegExMappings table;
  for (const auto& [key, row] : table.regExMappings()) {
    ASSERT_TRUE(types.count(row.formatType)) << key;
    std::string name = types.at(row.formatType) + std::to_string(row.width);
    // The one name that leaves its decimals out.
    if (row.decimals != 0 && key != 1117) name += "." + std::to_string(row.decimals);
    EXPECT_EQ(row.formatName, name) << key;
  }
  EXPECT_EQ(table.regExMappings().at(1117).decimals, 1);
}

TEST(RegExMappings, EveryPatternCompiles) {
  const RegExMappings table;
  for (const auto& [key, row] : table.regExMappings()) EXPECT_TRUE(row.matcher) << key;
  EXPECT_TRUE(table.percentMatcher);
  EXPECT_TRUE(table.dollarMatcher);
  EXPECT_TRUE(table.commaMatcher);
  EXPECT_TRUE(table.dotMatcher);
}

TEST(RegExMappings, ACopyOfARowSharesItsMatcherAndMayOutliveTheTable) {
  RegExToFormatMapping copy;
  {
    const RegExMappings table;
    copy = table.regExMappings().at(1018);
    EXPECT_EQ(copy.matcher, table.regExMappings().at(1018).matcher);
  }
  const icu::UnicodeString text("10:30");
  copy.matcher->reset(text);
  UErrorCode status = U_ZERO_ERROR;
  EXPECT_TRUE(copy.matcher->matches(status));
}

TEST(RegExMappings, TablesDoNotShareMatchers) {
  const RegExMappings one, other;
  EXPECT_NE(one.regExMappings().at(1000).matcher, other.regExMappings().at(1000).matcher);
  EXPECT_NE(one.dotMatcher, other.dotMatcher);
}

TEST(RegExMappings, InsertsTheLocalesLowerCasedNames) {
  EXPECT_EQ(RowRegex(1012), "^(jan|feb|mar|apr|may|jun|jul|aug|sep|oct|nov|dec)\\s\\d{2}$");
  EXPECT_EQ(RowRegex(1013), "^(jan|feb|mar|apr|may|jun|jul|aug|sep|oct|nov|dec)\\s\\d{4}$");
  EXPECT_EQ(RowRegex(1103), "^(jan|feb|mar|apr|may|jun|jul|aug|sep|oct|nov|dec)$");
  EXPECT_EQ(RowRegex(1017),
            "^(january|february|march|april|may|june|july|august|september|october|november|"
            "december)$");
  EXPECT_EQ(RowRegex(1016), "^(sunday|monday|tuesday|wednesday|thursday|friday|saturday)$");
  EXPECT_EQ(RowRegex(1102), "^(sun|mon|tue|wed|thu|fri|sat)$");
}

TEST(RegExMappings, TakesNamesOfTheProcessLocale) {
  EXPECT_EQ(RowRegex(1016, "de_DE.UTF-8"),
            "^(sonntag|montag|dienstag|mittwoch|donnerstag|freitag|samstag)$");
  EXPECT_EQ(RowRegex(1017, "de_DE.UTF-8"),
            "^(januar|februar|m\xc3\xa4rz|april|mai|juni|juli|august|september|oktober|november|"
            "dezember)$");
}

TEST(RegExMappings, CutsANameAtFifteenBytesAndNeverInsideACharacter) {
  const std::string months = RowRegex(1017, "ru_RU.UTF-8");
  // Eight letters of two bytes each are 16 bytes: seven of them stay.
  EXPECT_NE(months.find("|сентябр|"), std::string::npos) << months;
  EXPECT_EQ(months.find("сентября"), std::string::npos) << months;
  // Seven letters are kept whole.
  EXPECT_NE(months.find("|октября|"), std::string::npos) << months;
}

}  // namespace
}  // namespace textwizard
