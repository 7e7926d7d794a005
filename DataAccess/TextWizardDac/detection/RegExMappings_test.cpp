#include "detection/RegExMappings.h"

#include <clocale>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "detection/testing/TestLocale.h"
#include "model/FormatCode.h"

namespace textwizard {
namespace {

// The regex of a row under the names of `locale`.
std::string RowRegex(int key, const char* locale) {
  const TestLocale names(LC_TIME, locale);
  return RegExMappings().regExMappings().at(key).regex;
}

struct Row {
  int key;
  const char* formatName;
  int formatType;
  int width;
  int decimals;
  const char* icuPattern;
  const char* regex;
};

// The table as it must stand, quirks included, with the names of the C locale. A second copy on
// purpose: a pattern changed by a character still recognises nearly everything.
constexpr Row kTable[] = {
    // clang-format off
    {1000, "DATE11", kFormatDate, 11, 0, "dd-MMM-yyyy",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])(\-|\.|\,|\/|\s)?[a-zA-Z]{3}(\-|\.|\,|\/|\s)?\d{4}$)"},
    {1001, "DATE9", kFormatDate, 9, 0, "dd-MMM-yy",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])(\-|\.|\,|\/|\s)?[a-zA-Z]{3}(\-|\.|\,|\/|\s)?\d{2}$)"},
    {1002, "ADATE10", kFormatADate, 10, 0, "MM/dd/yyyy",
     R"(^([0]?[1-9]|[1][0-2])/([0]?[1-9]|[1|2][0-9]|[3][0|1])/\d{4}$)"},
    {1003, "ADATE8", kFormatADate, 8, 0, "MM/dd/yy",
     R"(^([0]?[1-9]|[1][0-2])/([0]?[1-9]|[1|2][0-9]|[3][0|1])/\d{2}$)"},
    {1004, "EDATE10", kFormatEDate, 10, 0, "dd.MM.yyyy",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])\.([0]?[1-9]|[1][0-2])\.\d{4}$)"},
    {1005, "EDATE8", kFormatEDate, 8, 0, "dd.MM.yy",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])\.([0]?[1-9]|[1][0-2])\.\d{2}$)"},
    {1008, "SDATE8", kFormatSDate, 8, 0, "yy/MM/dd",
     R"(^\d{2}/([0]?[1-9]|[1][0-2])/([0]?[1-9]|[1|2][0-9]|[3][0|1])$)"},
    {1009, "SDATE10", kFormatSDate, 10, 0, "yyyy/MM/dd",
     R"(^\d{4}/([0]?[1-9]|[1][0-2])/([0]?[1-9]|[1|2][0-9]|[3][0|1])$)"},
    {1010, "QYR6", kFormatQyr, 6, 0, "q Q yy",
     R"(^[1234](\s?)[Qq](\s?)\d{2}$)"},
    {1011, "QYR8", kFormatQyr, 8, 0, "q Q yyyy",
     R"(^[1234](\s?)[Qq](\s?)\d{4}$)"},
    {1012, "MOYR6", kFormatMoyr, 6, 0, "MMM yy",
     R"(^(jan|feb|mar|apr|may|jun|jul|aug|sep|oct|nov|dec)\s\d{2}$)"},
    {1013, "MOYR8", kFormatMoyr, 8, 0, "MMM yyyy",
     R"(^(jan|feb|mar|apr|may|jun|jul|aug|sep|oct|nov|dec)\s\d{4}$)"},
    {1014, "WKYR8", kFormatWkyr, 8, 0, "ww WK yy",
     R"(^([0]?[1-9]|[1|2|3|4][0-9]|[5][0-3])(\s?)[wW][kK](\s?)\d{2}$)"},
    {1015, "WKYR10", kFormatWkyr, 10, 0, "ww WK yyyy",
     R"(^([0]?[1-9]|[1|2|3|4][0-9]|[5][0-3])(\s?)[wW][kK](\s?)\d{4}$)"},
    {1016, "WKDAY9", kFormatWkday, 9, 0, "EEEE",
     R"(^(sunday|monday|tuesday|wednesday|thursday|friday|saturday)$)"},
    {1017, "MONTH9", kFormatMonth, 9, 0, "MMMM",
     R"(^(january|february|march|april|may|june|july|august|september|october|november|)"
     R"(december)$)"},
    {1018, "TIME5", kFormatTime, 5, 0, "hh:mm",
     R"(^(\-|\+?)(\d{1,}):([0-5]?[0-9])$)"},
    {1019, "TIME8", kFormatTime, 8, 0, "hh:mm:ss",
     R"(^(\-|\+?)(\d{1,}):([0-5]?[0-9]):([0-5]?[0-9])$)"},
    {1020, "TIME11.2", kFormatTime, 11, 2, "hh:mm:ss.ss",
     R"(^(\-|\+?)(\d{1,}):([0-5]?[0-9]):([0-5]?[0-9])(\-|\.|\,|\/|\s)\d{1,}$)"},
    {1021, "DTIME9", kFormatDTime, 9, 0, "ddd hh:mm",
     R"(^(\-|\+?)([0-9]{1,3})\s([0-1]?[0-9]|[2][0-3]):([0-5][0-9])$)"},
    {1022, "DTIME15.2", kFormatDTime, 15, 2, "ddd hh:mm:ss.ss",
     R"(^(\-|\+?)([0-9]{1,3})\s([0-1]?[0-9]|[2][0-3]):([0-5][0-9]):([0-5][0-9])\.\d{1,}$)"},
    {1023, "DATETIME17", kFormatDateTime, 17, 0, "dd-MMM-yyyy HH:mm",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])-[a-zA-Z]{3}-\d{4}\s([0-1]?[0-9]|[2][0-3]))"
     R"(:([0-5][0-9])$)"},
    {1024, "DATETIME23.2", kFormatDateTime, 23, 2, "dd-MMM-yyyy HH:mm:ss.ss",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])-[a-zA-Z]{3}-\d{4}\s([0-1]?[0-9]|[2][0-3]))"
     R"(:([0-5][0-9]):([0-5][0-9])(\.|\s)\d{1,}$)"},
    {1100, "DATETIME20", kFormatDateTime, 20, 0, "dd-MMM-yyyy HH:mm:ss",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])-[a-zA-Z]{3}-\d{4}\s([0-1]?[0-9]|[2][0-3]))"
     R"(:([0-5][0-9]):([0-5][0-9])$)"},
    {1101, "DTIME12", kFormatDTime, 12, 0, "ddd hh:mm:ss",
     R"(^(\-|\+?)([0-9]{1,3})\s([0-1]?[0-9]|[2][0-3]):([0-5][0-9]):([0-5][0-9])$)"},
    {1102, "WKDAY3", kFormatWkday, 3, 0, "EEE",
     R"(^(sun|mon|tue|wed|thu|fri|sat)$)"},
    {1103, "MONTH3", kFormatMonth, 3, 0, "MMM",
     R"(^(jan|feb|mar|apr|may|jun|jul|aug|sep|oct|nov|dec)$)"},
    {1113, "YMDHMS16", kFormatYmdhms, 16, 0, "yyyy-MM-dd HH:mm",
     R"(^(\d{2}|\d{4})(?:\-|\/|\.|\,|\s)?([0]{1}\d{1}|[1]{1}[0-2]{1})(?:\-|\/|\.|\,|\s)?)"
     R"(([0-2]{1}\d{1}|[3]{1}[0-1]{1})(?:T|\s)?([0-1]{1}\d{1}|[2]{1}[0-3]{1})(?::|\.|\,|\s))"
     R"(([0-5]{1}\d{1})$)"},
    {1114, "YMDHMS19", kFormatYmdhms, 19, 0, "yyyy-MM-dd HH:mm:ss",
     R"(^(\d{2}|\d{4})(?:\-|\/|\.|\,|\s)?([0]{1}\d{1}|[1]{1}[0-2]{1})(?:\-|\/|\.|\,|\s)?)"
     R"(([0-2]{1}\d{1}|[3]{1}[0-1]{1})(?:T|\s)?([0-1]{1}\d{1}|[2]{1}[0-3]{1})(?::|\.|\,|\s))"
     R"(([0-5]{1}\d{1})(?::|\.|\,|\s)([0-5]{1}\d{1})$)"},
    {1115, "YMDHMS22.2", kFormatYmdhms, 22, 2, "yyyy-MM-dd HH:mm:ss.ss",
     R"(^(\d{2}|\d{4})(?:\-|\/|\.|\,|\s)?([0]{1}\d{1}|[1]{1}[0-2]{1})(?:\-|\/|\.|\,|\s)?)"
     R"(([0-2]{1}\d{1}|[3]{1}[0-1]{1})(?:T|\s)?([0-1]{1}\d{1}|[2]{1}[0-3]{1})(?::|\.|\,|\s))"
     R"(([0-5]{1}\d{1})(?::|\.|\,|\s)([0-5]{1}\d{1})((:|\.|\,)\d{1,})$)"},
    {1116, "MTIME5", kFormatMTime, 5, 0, "mm:ss",
     R"(^(\-|\+?)(\d{1,})((:|\.|\,|\s)?)(([0-5]{1}\d{1})|(\d{1}))$)"},
    {1117, "MTIME7", kFormatMTime, 7, 1, "mm:ss.s",
     R"(^(\-|\+?)(\d{1,})((:|\.|\,|\s)?)(([0-5]{1}\d{1})|(\d{1}))(:|\.|\,)\d{1,}$)"},
    // clang-format on
};

TEST(RegExMappings, HoldsTheRowsByAscendingKey) {
  const TestLocale names(LC_TIME, "C");
  const RegExMappings table;
  ASSERT_EQ(table.regExMappings().size(), std::size(kTable));
  const Row* expected = kTable;
  for (const auto& [key, row] : table.regExMappings()) {
    SCOPED_TRACE(key);
    EXPECT_EQ(key, expected->key);
    EXPECT_EQ(row.key, expected->key);
    EXPECT_EQ(row.formatName, expected->formatName);
    EXPECT_EQ(row.formatType, expected->formatType);
    EXPECT_EQ(row.width, expected->width);
    EXPECT_EQ(row.decimals, expected->decimals);
    EXPECT_EQ(row.icuPattern, expected->icuPattern);
    EXPECT_EQ(row.regex, expected->regex);
    ++expected;
  }
}

TEST(RegExMappings, HoldsTheFourNumberPatterns) {
  const RegExMappings table;
  EXPECT_EQ(table.percentRegex, R"(^-?\d*(\.\d+)? *%?$)");
  EXPECT_EQ(table.dollarRegex, R"(^\$(\-?)(\d{1,3}(\,\d{3})*|(\d+))(\.\d{1,})?\s*$)");
  EXPECT_EQ(table.commaRegex, R"(^(\-?)(\d{1,3}(\,\d{3})*|(\d+))(\.\d{1,})?\s*$)");
  EXPECT_EQ(table.dotRegex, R"(^(\-?)(\d{1,3}(\.\d{3})*|(\d+))(\,\d{1,})?\s*$)");
}

TEST(RegExMappings, EveryPatternCompiles) {
  const RegExMappings table;
  for (const auto& [key, row] : table.regExMappings()) {
    ASSERT_TRUE(row.matcher) << key;
    EXPECT_EQ(row.matcher->pattern().flags(), 0u) << key;
    std::string compiled;
    EXPECT_EQ(row.matcher->pattern().pattern().toUTF8String(compiled), row.regex) << key;
  }
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
