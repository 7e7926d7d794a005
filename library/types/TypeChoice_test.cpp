#include "library/types/TypeChoice.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/types/testing/Evidence.h"

namespace library {
namespace {

using testing_support::EvidenceOf;
using Column = std::vector<std::string>;

std::string Name(const ChosenFormat& format) {
  using namespace textwizard;
  static const std::vector<std::pair<std::uint32_t, const char*>> kNames = {
      {kFormatA, "A"},         {kFormatF, "F"},         {kFormatComma, "COMMA"},
      {kFormatDot, "DOT"},     {kFormatE, "E"},         {kFormatDollar, "DOLLAR"},
      {kFormatPct, "PCT"},     {kFormatDate, "DATE"},   {kFormatADate, "ADATE"},
      {kFormatEDate, "EDATE"}, {kFormatSDate, "SDATE"}, {kFormatYmdhms, "YMDHMS"},
      {kFormatTime, "TIME"},   {kFormatMTime, "MTIME"}, {kFormatDTime, "DTIME"},
      {kFormatQyr, "QYR"},     {kFormatMoyr, "MOYR"},   {kFormatWkyr, "WKYR"},
      {kFormatWkday, "WKDAY"}, {kFormatMonth, "MONTH"}, {kFormatDateTime, "DATETIME"}};
  for (const auto& [code, name] : kNames) {
    if (code != format.code) continue;
    return format.decimals > 0 ? fmt::format("{}{}.{}", name, format.width, format.decimals)
                               : fmt::format("{}{}", name, format.width);
  }
  return "?";
}

TypeChoice Choose(const std::vector<Column>& columns, const TypeSettings& settings = {}) {
  const embedded::InCodePage host(nullptr);
  std::vector<ColumnEvidence> evidence;
  for (const Column& column : columns) evidence.push_back(EvidenceOf(column));
  return ChooseTypes(evidence, settings);
}

// The format of the one column, and the remarks on it.
std::string Type(const Column& column, const TypeSettings& settings = {}) {
  return Name(Choose({column}, settings).columns[0].format);
}
std::vector<ColumnRemark> Remarks(const Column& column) {
  return Choose({column}).columns[0].remarks;
}

TEST(TypeChoice, NumbersFitEveryValue) {
  EXPECT_EQ(Type({"1", "-22", "333"}), "F3");
  EXPECT_EQ(Type({"1.5", "22.25"}), "F5.2");
  EXPECT_EQ(Type({"1234", "0.001"}), "F8.3");
  EXPECT_EQ(Type({".5"}), "F3.1");
  EXPECT_EQ(Type({"5."}), "F1");
  EXPECT_EQ(Type({"1.5e3", "2"}), "E9.1");
  EXPECT_EQ(Type({"1,234.5", "7"}), "COMMA7.1");
  EXPECT_EQ(Type({"$5", "12"}), "DOLLAR3");
  EXPECT_EQ(Type({"$1,234.50"}), "DOLLAR9.2");
  EXPECT_EQ(Type({"5%", "12.5%"}), "PCT5.1");
  EXPECT_EQ(Type({"0.123456789012345"}), "F17.15");
}

TEST(TypeChoice, IsoDatesAndDateTimes) {
  EXPECT_EQ(Type({"2020-01-02", "2020-12-31"}), "SDATE10");
  EXPECT_EQ(Type({"2020-01-02 03:04:05"}), "YMDHMS19");
  EXPECT_EQ(Type({"2020-01-02T03:04:05", "2020-01-02T03:04:05"}), "YMDHMS19");
  EXPECT_EQ(Type({"2020-01-02 03:04"}), "YMDHMS16");
  EXPECT_EQ(Type({"2020-01-02 03:04:05.25", "2020-01-02 03:04:05"}), "YMDHMS22.2");
}

TEST(TypeChoice, OtherDatesAndTimes) {
  EXPECT_EQ(Type({"12/31/2019"}), "ADATE10");
  EXPECT_EQ(Type({"31/12/2019", "01/02/2020"}), "EDATE10");
  EXPECT_EQ(Type({"31.12.19", "01.02.20"}), "EDATE8");
  EXPECT_EQ(Type({"31-Jan-2020"}), "DATE11");
  EXPECT_EQ(Type({"31JAN20"}), "DATE9");
  EXPECT_EQ(Type({"99/12/31"}), "SDATE8");
  EXPECT_EQ(Type({"31-Jan-2020 10:30"}), "DATETIME17");
  EXPECT_EQ(Type({"31/12/2019 10:30:15"}), "DATETIME20");
  EXPECT_EQ(Type({"10:30"}), "TIME5");
  EXPECT_EQ(Type({"10:30:15"}), "TIME8");
  EXPECT_EQ(Type({"10:30:15.5"}), "TIME10.1");
  EXPECT_EQ(Type({"75:30.5", "10:30.25"}), "MTIME8.2");
  EXPECT_EQ(Type({"3 10:30"}), "DTIME9");
  EXPECT_EQ(Type({"1Q2020", "2 Q 2020"}), "QYR8");
  EXPECT_EQ(Type({"1Q20"}), "QYR6");
  EXPECT_EQ(Type({"Jan 2020", "Feb 2020"}), "MOYR8");
  EXPECT_EQ(Type({"12 WK 2020"}), "WKYR10");
  EXPECT_EQ(Type({"Mon", "Sat", "Sun"}), "WKDAY3");
  EXPECT_EQ(Type({"Monday", "Sat"}), "WKDAY9");
  EXPECT_EQ(Type({"Jan", "Mar"}), "MONTH3");
  EXPECT_EQ(Type({"January", "May"}), "MONTH9");
}

TEST(TypeChoice, WhatNothingReadsIsAText) {
  EXPECT_EQ(Type({"Sat", "Sun", "Mar"}), "A3");
  EXPECT_EQ(Type({"1 Jan 2000", "2 Feb 2001"}), "A10");
  EXPECT_EQ(Type({"0x1F", "0x20"}), "A4");
  EXPECT_EQ(Type({"1.1.1", "1.2.3"}), "A5");
  EXPECT_EQ(Type({"abc", "Z\xC3\xBCrich"}), "A7") << "bytes";
  EXPECT_EQ(Type({"", "NA"}), "A2") << "no value at all";
  EXPECT_EQ(Type({}), "A1");
  EXPECT_EQ(Type({"abc", "NULL", "x"}), "A4") << "a null text is a text here";
}

TEST(TypeChoice, DateTimesWithATimeZoneAreTextsAndSaidToBe) {
  for (const char* zone : {"Z", "+01:00", "-0530", "+02"}) {
    const Column column = {"2020-01-02T03:04:05" + std::string(zone), "",
                           "2021-02-03 04:05:06" + std::string(zone)};
    EXPECT_EQ(Type(column)[0], 'A') << zone;
    const std::vector<ColumnRemark> remarks = Remarks(column);
    ASSERT_EQ(remarks.size(), 1U) << zone;
    EXPECT_EQ(remarks[0].kind, ColumnRemark::kTimeZone);
    EXPECT_EQ(remarks[0].values.text, column[0]);
    EXPECT_EQ(remarks[0].values.count, 2);
  }
  EXPECT_TRUE(Remarks({"A-05", "Z", "2020-01Z"}).empty());
}

TEST(TypeChoice, TextsStayTextsWhereANumberWouldLoseSomething) {
  EXPECT_EQ(Type({"01234", "12345"}), "A5");
  EXPECT_EQ(Remarks({"01234", "12345"})[0].kind, ColumnRemark::kLeadingZeros);
  EXPECT_EQ(Remarks({"12345", "01234"})[0].values.line, 3);
  EXPECT_EQ(Type({"1234567890123456789", "5"}), "A19");
  EXPECT_EQ(Remarks({"5", "1234567890123456789"})[0].kind, ColumnRemark::kLostDigits);
  EXPECT_EQ(Type({"0", "0.5", "10"}), "F4.1");
}

TEST(TypeChoice, TheLeastShareDecides) {
  Column column(95, "1");
  column.resize(100, "x");
  EXPECT_EQ(Type(column), "F1");
  const std::vector<ColumnRemark> remarks = Remarks(column);
  ASSERT_EQ(remarks.size(), 1u);
  EXPECT_EQ(remarks[0].kind, ColumnRemark::kUnreadable);
  EXPECT_EQ(remarks[0].values.count, 5);
  EXPECT_EQ(remarks[0].values.line, 97);
  column.push_back("y");
  EXPECT_EQ(Type(column), "A1");
  ASSERT_EQ(Remarks(column).size(), 1u);
  EXPECT_EQ(Remarks(column)[0].kind, ColumnRemark::kMixed);
  EXPECT_EQ(Remarks(column)[0].values.text, "x");
  EXPECT_EQ(Remarks(column)[0].other->code, textwizard::kFormatF);
  column = Column(95, "1");
  column.resize(200, "NA");
  column.push_back("x");
  EXPECT_EQ(Type(column), "F1") << "null texts count as nothing";
  EXPECT_EQ(Type({"1", "x"}, {.leastShare = 50.0}), "F1");
}

TEST(TypeChoice, ATypeThatReadsMoreValuesWins) {
  EXPECT_EQ(Type({"5", "10%"}), "PCT3");
  EXPECT_EQ(Type({"1/2/2020", "13/2/2020", "3/14/2020", "14/2/2020"}, {.leastShare = 51}),
            "EDATE10");
}

TEST(TypeChoice, TheDecimalCharacterIsThatOfTheWholeFile) {
  const TypeChoice choice = Choose({{"1,234", "5,678"}, {"1,5", "22,75"}, {"3", "4"}});
  EXPECT_EQ(choice.decimal, DecimalCharacter::kComma);
  EXPECT_EQ(choice.decimalWitness.line, 2);
  EXPECT_EQ(choice.decimalWitness.text, "1,5");
  EXPECT_EQ(choice.decimalColumn, 1u);
  EXPECT_EQ(Name(choice.columns[0].format), "F5.3") << "so 1,234 has decimals";
  EXPECT_EQ(Name(choice.columns[1].format), "F5.2");
  EXPECT_EQ(Name(choice.columns[2].format), "F1");
  EXPECT_TRUE(choice.columns[0].remarks.empty());
}

TEST(TypeChoice, AColumnOfTheOtherDecimalCharacterSaysItItself) {
  TypeChoice choice = Choose({{"1,5", "2,25"}, {"1.5", "2.5"}, {"3.5", "4.5"}});
  EXPECT_EQ(choice.decimal, DecimalCharacter::kPoint);
  EXPECT_EQ(choice.decimalAgainst, 2);
  EXPECT_EQ(Name(choice.columns[0].format), "DOT4.2");
  EXPECT_EQ(Name(choice.columns[1].format), "F3.1");
  choice = Choose({{"1,5", "2,25"}, {"1.5", "2.5"}, {"3.5", "4.5"}},
                  {.decimal = DecimalCharacter::kComma, .decimalGiven = true});
  EXPECT_EQ(choice.decimal, DecimalCharacter::kComma);
  EXPECT_EQ(Name(choice.columns[0].format), "F4.2");
  EXPECT_EQ(Name(choice.columns[1].format), "COMMA3.1");
}

TEST(TypeChoice, DatesWithPointsLeaveThoseWithSlashesOpen) {
  TypeChoice choice = Choose({{"31.12.2019", "01.02.2020"}, {"03/11/1935", "11/11/1976"}});
  EXPECT_EQ(Name(choice.columns[1].format), "EDATE10");
  ASSERT_EQ(choice.columns[1].remarks.size(), 1u);
  EXPECT_EQ(choice.columns[1].remarks[0].kind, ColumnRemark::kDayOrMonth);
  choice = Choose({{"31/12/2019", "01/02/2020"}, {"03/11/1935", "11/11/1976"}});
  EXPECT_TRUE(choice.columns[1].remarks.empty());
}

TEST(TypeChoice, DatesWithSlashesDoNotTurnThoseWithPoints) {
  const TypeChoice choice = Choose({{"12/31/2019", "02/01/2020"}, {"03.11.1935", "11.11.1976"}});
  EXPECT_EQ(Name(choice.columns[0].format), "ADATE10");
  EXPECT_EQ(Name(choice.columns[1].format), "EDATE10");
}

TEST(TypeChoice, GroupsOrDecimalsOfPercentagesAreSaidToBeOpen) {
  const std::vector<ColumnRemark> remarks = Remarks({"4,595%", "7,572%"});
  ASSERT_EQ(remarks.size(), 1u);
  EXPECT_EQ(remarks[0].kind, ColumnRemark::kDecimalOrGroup);
  EXPECT_EQ(remarks[0].values.text, "4,595%");
  EXPECT_FALSE(remarks[0].other.has_value()) << "only the decimal character reads it otherwise";
  EXPECT_TRUE(Remarks({"4,595%", "7,5%"}).empty());
}

TEST(TypeChoice, GroupsOrDecimalsAreSaidToBeOpen) {
  EXPECT_EQ(Type({"1,234", "5,678"}), "COMMA5");
  const std::vector<ColumnRemark> remarks = Remarks({"1,234", "5,678"});
  ASSERT_EQ(remarks.size(), 1u);
  EXPECT_EQ(remarks[0].kind, ColumnRemark::kDecimalOrGroup);
  EXPECT_EQ(remarks[0].values.text, "1,234");
  EXPECT_EQ(Name(*remarks[0].other), "DOT5.3");
  EXPECT_TRUE(Remarks({"1,234", "1,234,567"}).empty()) << "two commas only group";
  EXPECT_TRUE(Remarks({"1.5"}).empty());
}

TEST(TypeChoice, DayOrMonthFirst) {
  EXPECT_EQ(Type({"01/02/2020", "03/04/2020"}), "ADATE10") << "the month, where nothing says it";
  const std::vector<ColumnRemark> remarks = Remarks({"01/02/2020", "03/04/2020"});
  ASSERT_EQ(remarks.size(), 1u);
  EXPECT_EQ(remarks[0].kind, ColumnRemark::kDayOrMonth);
  EXPECT_EQ(Name(*remarks[0].other), "EDATE10");
  EXPECT_EQ(Type({"01.02.2020"}), "EDATE10") << "points are written where the day is first";
  // Another column says it.
  const TypeChoice choice = Choose({{"01/02/2020"}, {"31/12/2019"}});
  EXPECT_EQ(Name(choice.columns[0].format), "EDATE10");
  EXPECT_TRUE(choice.columns[0].remarks.empty());
  EXPECT_EQ(Name(Choose({{"01.02.2020"}, {"12.31.2019"}}).columns[0].format), "ADATE10");
}

TEST(TypeChoice, ADateTimeThatMayBeginWithTheMonthStaysAText) {
  EXPECT_EQ(Type({"01/02/2020 10:30", "03/04/2020 11:00"}), "A16");
  EXPECT_EQ(Type({"01/02/2020 10:30", "31/12/2019 11:00"}), "DATETIME17");
  EXPECT_EQ(Type({"01.02.2020 10:30"}), "DATETIME17");
  EXPECT_EQ(Type({"12/31/2019 10:30"}), "A16") << "no format reads it";
  EXPECT_EQ(Name(Choose({{"01/02/2020 10:30"}, {"31/12/2019"}}).columns[0].format), "DATETIME17");
}

TEST(TypeChoice, WholeNumbersAreKnown) {
  EXPECT_TRUE(Choose({{"1", "-22"}}).columns[0].wholeNumbers);
  EXPECT_TRUE(Choose({{"1,234,567"}}).columns[0].wholeNumbers);
  EXPECT_FALSE(Choose({{"1", "2.5"}}).columns[0].wholeNumbers);
  EXPECT_FALSE(Choose({{"1e5"}}).columns[0].wholeNumbers);
  EXPECT_FALSE(Choose({{"2020-01-02"}}).columns[0].wholeNumbers);
  EXPECT_FALSE(Choose({{"a"}}).columns[0].wholeNumbers);
}

TEST(TypeChoice, AFixedColumnIsNotCut) {
  EXPECT_EQ(Type({"2020-01-02"}, {.columnWidths = {12}}), "SDATE12");
  EXPECT_EQ(Type({"5"}, {.columnWidths = {3}}), "F3");
  EXPECT_EQ(Type({"ab"}, {.columnWidths = {20}}), "A20");
  EXPECT_EQ(Type({"5"}, {.columnWidths = {41}}), "A41") << "no number is as wide";
}

TEST(TypeChoice, ATextMayBeTooLong) {
  const std::vector<ColumnRemark> remarks = Remarks({std::string(40000, 'x')});
  ASSERT_EQ(remarks.size(), 1u);
  EXPECT_EQ(remarks[0].kind, ColumnRemark::kTooLong);
  EXPECT_EQ(Type({std::string(40000, 'x')}), "A32767");
}

// The command language takes every width that is chosen.
TEST(TypeChoice, WidthsKeepTheFormatsMinimum) {
  const struct {
    Column column;
    std::uint32_t around;
  } cases[] = {{{".5"}, 1},
               {{"0.1234567890123456789"}, 1},
               {{"$.5"}, 2},
               {{"5.25%"}, 2},
               {{"1.5e-7"}, 7},
               {{"10:30:15.123456"}, 9},
               {{"75:30.5"}, 4},
               {{"3 10:30:15.25"}, 13},
               {{"31-Jan-2020 10:30:15.25"}, 21},
               {{"2020-01-02 03:04:05.123456789"}, 15}};
  for (const auto& entry : cases) {
    const ColumnEvidence evidence = EvidenceOf(entry.column);
    std::uint32_t code = 0;
    for (std::size_t i = 0; i < kReadings; ++i) {
      const auto reading = static_cast<Reading>(i);
      if (evidence.Read(reading) > 0 && code == 0) code = FormatOf(reading);
    }
    if (entry.around == 7) code = textwizard::kFormatE;
    const ChosenFormat format = FitFormat(code, evidence, DecimalCharacter::kPoint);
    EXPECT_GE(format.width, format.decimals + entry.around) << entry.column[0];
    EXPECT_LE(format.width, textwizard::kMaxNumberWidth) << entry.column[0];
    EXPECT_LE(format.decimals, textwizard::kMaxDecimals) << entry.column[0];
    EXPECT_GT(format.decimals, 0u) << entry.column[0];
  }
}

}  // namespace
}  // namespace library
