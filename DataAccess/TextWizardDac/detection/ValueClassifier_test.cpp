#include "detection/ValueClassifier.h"

#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "detection/testing/TestLocale.h"

namespace textwizard {
namespace {

int KeyOf(std::string_view value, Arrangement arrangement = kDelimitedLines) {
  const RegExMappings table;
  return ValueClassifier(table, arrangement).IsDateTime(value);
}

bool Has(NumberForm form, std::string_view value) {
  const RegExMappings table;
  return ValueClassifier(table, kDelimitedLines).Is(form, value);
}

TEST(ValueClassifier, FindsTheFirstRowOfEveryLayout) {
  const std::pair<const char*, int> values[] = {
      {"01-JAN-2020", 1000},
      {"1jan2020", 1000},
      {"31.dec,1999", 1000},
      {"9 xyz 2020", 1000},
      {"|5/abc/2020", 1000},
      {"3|/abc/2020", 1000},
      {"31-dec-99", 1001},
      {"12/31/1999", 1002},
      {"1/1/2020", 1002},
      {"12/05/20", 1003},
      {"31.12.1999", 1004},
      {"31.12.99", 1005},
      {"99/12/31", 1008},
      {"1999/12/31", 1009},
      {"3 q 20", 1010},
      {"4Q99", 1010},
      {"3Q2020", 1011},
      {"jan 20", 1012},
      {"JAN 2020", 1013},
      {"5 wk 20", 1014},
      {"53WK2020", 1015},
      {"Wednesday", 1016},
      {"September", 1017},
      {"may", 1017},
      {"10:30", 1018},
      {"-1000:5", 1018},
      {"12:30:45", 1019},
      {"12:30:45.5", 1020},
      {"12:30:45 5", 1020},
      {"5 12:30", 1021},
      {"-999 23:59", 1021},
      {"5 12:30:45.25", 1022},
      {"01-jan-2020 12:30", 1023},
      {"01-jan-2020 12:30:45.5", 1024},
      {"01-jan-2020 12:30:45", 1100},
      {"5 12:30:45", 1101},
      {"Sat", 1102},
      {"Feb", 1103},
      {"2020-01-31 23:59", 1113},
      {"20-01-31 23:59", 1113},
      {"2020-01-31 23:59:30", 1114},
      {"2020-01-31 23:59:30.123", 1115},
      {"10 30", 1116},
      {"5:7.5", 1117},
      {"100:59,99", 1117},
  };
  for (const auto& [value, key] : values) EXPECT_EQ(KeyOf(value), key) << value;
}

TEST(ValueClassifier, TellsWhatIsNoDate) {
  for (const char* value : {"q3 2020",
                            "0-jan-2020",
                            "32-jan-2020",
                            "13/01/2020",
                            "01/32/2020",
                            "32.13.1999 ",
                            "5q20",
                            "jan-2020",
                            "54wk2020",
                            "0wk20",
                            "wednes",
                            "1:60",
                            "24:5x",
                            "5 24:6x",
                            "1000 62:30",
                            "01-jan-2020 24:00",
                            "2020-13-01 10:00",
                            "2020-01-32 10:00",
                            "2020-01-31 24:00",
                            "abc",
                            "",
                            " ",
                            "10:30 "}) {
    EXPECT_EQ(KeyOf(value), 0) << "[" << value << "]";
  }
}

TEST(ValueClassifier, AnEarlierRowWinsATie) {
  // Both also match a later row: minutes and seconds, and a year first.
  const RegExMappings table;
  ValueClassifier classifier(table, kDelimitedLines);
  EXPECT_TRUE(classifier.MatchesRow("10:30", 1116));
  EXPECT_EQ(classifier.IsDateTime("10:30"), 1018);
  EXPECT_TRUE(classifier.MatchesRow("12/05/20", 1008));
  EXPECT_EQ(classifier.IsDateTime("12/05/20"), 1003);
}

TEST(ValueClassifier, DateAndTimeSeparatorsAreOptionalInYearFirstTexts) {
  EXPECT_EQ(KeyOf("20200131 23:59"), 1113);
  EXPECT_EQ(KeyOf("20 01 31 23 59"), 1113);
  // Nothing at all between day and hour: a number of hours comes first in the table.
  EXPECT_EQ(KeyOf("2020013123:59"), 1018);
  const RegExMappings table;
  EXPECT_TRUE(ValueClassifier(table, kDelimitedLines).MatchesRow("2020013123:59", 1113));
  EXPECT_EQ(KeyOf("2020/01.31 23:59:30"), 1114);
}

TEST(ValueClassifier, TheLetterBetweenDateAndTimeNeverMatches) {
  // The pattern has it in upper case, the value is lower-cased.
  EXPECT_EQ(KeyOf("2020-01-31T23:59"), 0);
  EXPECT_EQ(KeyOf("2020-01-31t23:59"), 0);
}

TEST(ValueClassifier, NamesAreThoseOfTheLocale) {
  const TestLocale names(LC_TIME, "de_DE.UTF-8");
  EXPECT_EQ(KeyOf("Mittwoch"), 1016);
  EXPECT_EQ(KeyOf("Dezember"), 1017);
  EXPECT_EQ(KeyOf("m\xc3\xa4rz"), 1017);
  EXPECT_EQ(KeyOf("DEZ 2020"), 1013);
  EXPECT_EQ(KeyOf("December"), 0);
  // Lower-casing goes by bytes and so leaves a capital of two bytes alone.
  EXPECT_EQ(KeyOf("M\xc3\x84RZ"), 0);
}

TEST(ValueClassifier, APointInANameStandsForAnyCharacter) {
  const TestLocale names(LC_TIME, "fr_FR.UTF-8");
  EXPECT_EQ(KeyOf("janv. 2020"), 1013);
  EXPECT_EQ(KeyOf("janvx 2020"), 1013);
  EXPECT_EQ(KeyOf("janv 2020"), 0);
}

TEST(ValueClassifier, DigitsAndSpacesBeyondAsciiCount) {
  EXPECT_EQ(KeyOf("\xd9\xa1\xd9\xa0:30"), 1018);
  EXPECT_EQ(KeyOf("jan\xc2\xa0"
                  "2020"),
            1013);
}

TEST(ValueClassifier, TextIsReadInTheHostsCodePage) {
  const embedded::InCodePage latin1("ISO-8859-1");
  EXPECT_EQ(KeyOf("jan\xa0"
                  "2020"),
            1013);
  EXPECT_TRUE(Has(NumberForm::kDollar, "$5\xa0"));
  EXPECT_FALSE(Has(NumberForm::kDollar, "$5\xe9"));
}

TEST(ValueClassifier, DatesAreTrimmedOnlyAcrossLinesAndInColumns) {
  EXPECT_EQ(KeyOf(" 12/31/1999 ", kDelimitedLines), 0);
  EXPECT_EQ(KeyOf(" 12/31/1999 ", kDelimitedCount), 1002);
  EXPECT_EQ(KeyOf(" 12/31/1999 ", kFixedColumns), 1002);
  EXPECT_EQ(KeyOf("\t12/31/1999", kFixedColumns), 0);
}

TEST(ValueClassifier, ARowAloneIsNeverTrimmed) {
  const RegExMappings table;
  ValueClassifier classifier(table, kFixedColumns);
  EXPECT_TRUE(classifier.MatchesRow("12/31/1999", 1002));
  EXPECT_FALSE(classifier.MatchesRow(" 12/31/1999", 1002));
  EXPECT_TRUE(classifier.MatchesRow("SATURDAY", 1016));
  EXPECT_FALSE(classifier.MatchesRow("12/31/1999", 1006));
  EXPECT_FALSE(classifier.MatchesRow("12/31/1999", 0));
}

TEST(ValueClassifier, Percentages) {
  for (const char* value : {"5%", "-5.25 %", ".5%", "12   %", "12", "%", ""}) {
    EXPECT_TRUE(Has(NumberForm::kPercentage, value)) << value;
  }
  for (const char* value : {"+5%", "5.%", "1,5%", "5%%", "5% ", " 5%", "x%"}) {
    EXPECT_FALSE(Has(NumberForm::kPercentage, value)) << value;
  }
}

TEST(ValueClassifier, DollarAmounts) {
  for (const char* value : {"$5", "$-5", "$1,000", "$1000.50", "$1,234,567.8", "$5 \t"}) {
    EXPECT_TRUE(Has(NumberForm::kDollar, value)) << value;
  }
  for (const char* value : {"5", "-$5", "$", "$1,00", "$1,2345", "$1.", "$ 5", "$1,000,00.0"}) {
    EXPECT_FALSE(Has(NumberForm::kDollar, value)) << value;
  }
}

TEST(ValueClassifier, CommaAndDotGroupedNumbers) {
  for (const char* value : {"1,000", "-12,345,678.90", "5", "1234.5", "1,000 "}) {
    EXPECT_TRUE(Has(NumberForm::kComma, value)) << value;
  }
  for (const char* value : {"1,00", "1234,567", "1.000,5", "+1,000", "1,000.", ".5", ""}) {
    EXPECT_FALSE(Has(NumberForm::kComma, value)) << value;
  }
  for (const char* value : {"1.000", "-12.345.678,90", "5", "1234,5", "1.000 "}) {
    EXPECT_TRUE(Has(NumberForm::kDot, value)) << value;
  }
  for (const char* value : {"1.00", "1234.567", "1,000.5", "1.000,"}) {
    EXPECT_FALSE(Has(NumberForm::kDot, value)) << value;
  }
}

TEST(ValueClassifier, ASwappedDecimalCharacterIsReadAsTheOtherOne) {
  const RegExMappings table;
  ValueClassifier classifier(table, kDelimitedLines);
  // In the C locale the file's comma has to become the point that strtod knows.
  EXPECT_TRUE(classifier.IsNumericSwapped("1,5", ','));
  EXPECT_FALSE(classifier.IsNumericSwapped("1,5,2", ','));
  EXPECT_TRUE(classifier.IsNumericSwapped("1,5 ", ','));
  EXPECT_FALSE(classifier.IsNumericSwapped(",", ','));
  EXPECT_FALSE(classifier.IsNumericSwapped(".", ','));
  EXPECT_TRUE(classifier.IsNumericSwapped("1.5", '.'));
  EXPECT_TRUE(classifier.IsNumericSwapped("1.2.3", '.'));
  EXPECT_FALSE(classifier.IsNumericSwapped("..", '.'));
  EXPECT_TRUE(classifier.IsNumericSwapped("15", ','));
  const TestLocale comma(LC_NUMERIC, "de_DE.UTF-8");
  ValueClassifier german(table, kDelimitedLines);
  EXPECT_TRUE(german.IsNumericSwapped("1.5", '.'));
  EXPECT_FALSE(german.IsNumeric("1.5"));
}

// Patterns take long to compile, and most values show by other means what they are.
TEST(ValueClassifier, CompilesThePatternsThatAreNeededAndNoOthers) {
  const RegExMappings table;
  ValueClassifier classifier(table, kDelimitedLines);
  const auto compiled = [&table] {
    int count = table.percentMatcher.compiled() + table.dollarMatcher.compiled() +
                table.commaMatcher.compiled() + table.dotMatcher.compiled();
    for (const auto& [key, row] : table.regExMappings()) count += row.matcher.compiled();
    return count;
  };
  for (const char* const value : {"some text", "-x", "caf\xC3\xA9"}) {
    EXPECT_EQ(classifier.IsDateTime(value), 0) << value;
    EXPECT_TRUE(classifier.FormsOf(value).none()) << value;
  }
  EXPECT_EQ(classifier.IsDateTime("31.12.1999"), 1004);
  EXPECT_TRUE(classifier.Is(NumberForm::kDollar, "$5"));
  EXPECT_EQ(compiled(), 0);
  // A digit of another script is left to the expressions.
  EXPECT_TRUE(classifier.Is(NumberForm::kComma, "1,\xEF\xBC\x92\x33\x34"));
  EXPECT_GT(compiled(), 0);
}

}  // namespace
}  // namespace textwizard
