#include "detection/DetectionCounters.h"

#include <initializer_list>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "detection/NumericRule.h"
#include "detection/VariableWidening.h"
#include "detection/testing/TestLocale.h"
#include "model/FormatCode.h"

namespace textwizard {
namespace {

DetectionRules Sampling(Arrangement arrangement = kDelimitedLines) {
  DetectionRules rules;
  rules.arrangement = arrangement;
  return rules;
}

DetectionRules Worker() {
  DetectionRules rules;
  rules.pass = DetectionPass::kWorker;
  return rules;
}

// A variable after `values` were counted into it.
TxtWzVar Counted(const DetectionRules& rules, std::initializer_list<std::string> values,
                 TxtWzVar variable = {}) {
  const RegExMappings table;
  DetectionCounters counters(table, rules);
  for (const std::string& value : values) counters.Count(value, variable);
  return variable;
}

TxtWzVar WithWidth(std::uint32_t width) {
  TxtWzVar variable;
  variable.width = width;
  variable.maxStringLength = width;
  return variable;
}

std::uint64_t Total(const TxtWzVar& v) {
  return v.stringCount + v.numericCount + v.dateCount + v.percentCount + v.dollarCount +
         v.commaCount + v.dotCount;
}

TEST(DetectionCounters, EveryClassHasItsCounter) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    const TxtWzVar v =
        Counted(rules, {"12.5", "1,5", "abc", "2020/01/31", "$5.00", "50%", "1,234.5", "1.234,5"});
    EXPECT_EQ(v.numericCount, 2u);
    EXPECT_EQ(v.stringCount, 1u);
    EXPECT_EQ(v.dateCount, 1u);
    EXPECT_EQ(v.dollarCount, 1u);
    EXPECT_EQ(v.percentCount, 1u);
    EXPECT_EQ(v.commaCount, 1u);
    EXPECT_EQ(v.dotCount, 1u);
    EXPECT_EQ(Total(v), 8u);
  }
}

TEST(DetectionCounters, AFieldWithCommaAndPointIsNotParsedAsANumber) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    // strtod and the comma rule would take both of these.
    const TxtWzVar v = Counted(rules, {"1,234.5", "1,22,3.5"});
    EXPECT_EQ(v.numericCount, 0u);
    EXPECT_EQ(v.commaCount, 1u);
    EXPECT_EQ(v.stringCount, 1u);
  }
}

TEST(DetectionCounters, AnExponentIsRemembered) {
  EXPECT_TRUE(Counted(Sampling(), {"1.5E3"}).hasExponent);
  EXPECT_TRUE(Counted(Sampling(), {"1", "2e5", "3"}).hasExponent);
  EXPECT_FALSE(Counted(Sampling(), {"1", "abc e"}).hasExponent);
  // Any E in a number, a hexadecimal digit too.
  EXPECT_TRUE(Counted(Sampling(), {"0xE"}).hasExponent);
}

TEST(DetectionCounters, NumberFormsCountFractionsByTheirOwnDecimalCharacter) {
  EXPECT_EQ(Counted(Sampling(), {"$1,234.50"}).decimals, 2);
  EXPECT_EQ(Counted(Sampling(), {"$1,234"}).decimals, 0);
  EXPECT_EQ(Counted(Sampling(), {"12.25%"}).decimals, 3);
  EXPECT_EQ(Counted(Sampling(), {"1,234.567"}).decimals, 3);
  EXPECT_EQ(Counted(Sampling(), {"1.234,5"}).decimals, 1);
  EXPECT_EQ(Counted(Sampling(), {"$1,234.50"}).width, 9u);
  // Groups are no fraction.
  EXPECT_EQ(Counted(Sampling(), {"1.234.567"}).dotCount, 1u);
  EXPECT_EQ(Counted(Sampling(), {"1.234.567"}).decimals, 0);
  DetectionRules swapping = Worker();
  swapping.swapDecimal = true;
  swapping.decimalCharacter = ',';
  EXPECT_EQ(Counted(swapping, {"1,234,567"}).commaCount, 1u);
  EXPECT_EQ(Counted(swapping, {"1,234,567"}).decimals, 0);
}

TEST(DetectionCounters, OneMoreDecimalWidensANumberThatIsNoLonger) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    TxtWzVar before = WithWidth(8);
    before.decimals = 2;
    const TxtWzVar v = Counted(rules, {"123.45", "123.456"}, before);
    EXPECT_EQ(v.decimals, 3);
    EXPECT_EQ(v.width, 9u);
  }
}

TEST(DetectionCounters, BlanksAloneAreANumber) {
  DetectionRules swapping = Worker();
  swapping.swapDecimal = true;
  swapping.decimalCharacter = ',';
  for (const DetectionRules& rules : {Sampling(), Worker(), swapping}) {
    const TxtWzVar v = Counted(rules, {"   "});
    EXPECT_EQ(v.numericCount, 1u);
    EXPECT_EQ(v.stringCount, 0u);
    EXPECT_EQ(v.width, 0u);
  }
}

TEST(DetectionCounters, SpaceOptionsTrimBeforeDatesAndForms) {
  DetectionRules rules = Sampling();
  EXPECT_EQ(Counted(rules, {" 2020/01/31"}).stringCount, 1u);
  rules.leadingSpaces = true;
  EXPECT_EQ(Counted(rules, {" 2020/01/31"}).dateCount, 1u);
  EXPECT_EQ(Counted(rules, {"2020/01/31 "}).stringCount, 1u);
  rules.multipleSpaces = true;
  EXPECT_EQ(Counted(rules, {" 2020/01/31 "}).dateCount, 1u);
  EXPECT_EQ(Counted(rules, {"  abc  "}, WithWidth(1)).maxStringLength, 3u);
}

TEST(DetectionCounters, AShortTextIsNoDate) {
  // German names of days have two letters, and the table would take them.
  const TestLocale names(LC_TIME, "de_DE.UTF-8");
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    EXPECT_EQ(Counted(rules, {"Mo"}).stringCount, 1u);
    EXPECT_EQ(Counted(rules, {"5 5"}).dateCount, 1u);
  }
}

TEST(DetectionCounters, TimesSetWidthAndDecimals) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    TxtWzVar v = Counted(rules, {"12:30:45.5"});
    EXPECT_EQ(v.dateKey, 1020);
    EXPECT_EQ(v.width, 11u);
    EXPECT_EQ(v.decimals, 2);
    v = Counted(rules, {"12:30"});
    EXPECT_EQ(v.dateKey, 1018);
    EXPECT_EQ(v.width, 5u);
    EXPECT_EQ(v.decimals, 0);
    v = Counted(rules, {"1234:30:45"});
    EXPECT_EQ(v.dateKey, 1019);
    EXPECT_EQ(v.width, 10u);
    // A shorter time than the row's format takes the row's width.
    EXPECT_EQ(Counted(rules, {"1:3"}).width, 5u);
  }
}

TEST(DetectionCounters, ATimeForgetsEarlierDecimals) {
  TxtWzVar before = WithWidth(30);
  before.decimals = 4;
  const TxtWzVar v = Counted(Sampling(), {"12:30"}, before);
  EXPECT_EQ(v.width, 5u);
  EXPECT_EQ(v.decimals, 0);
}

TEST(DetectionCounters, YearFirstTimesWithFractionsTakeTheirLength) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    TxtWzVar v = Counted(rules, {"2020-01-31 23:59:30.12345"});
    EXPECT_EQ(v.dateKey, 1115);
    EXPECT_EQ(v.width, 25u);
    EXPECT_EQ(v.decimals, 5);
    // The last of the three characters that may stand before a fraction.
    EXPECT_EQ(Counted(rules, {"2020-01-31 23:59:30:123"}).decimals, 3);
    // Never below the row's own.
    v = Counted(rules, {"20-01-31 23:59:30,1"});
    EXPECT_EQ(v.width, 22u);
    EXPECT_EQ(v.decimals, 2);
  }
}

TEST(DetectionCounters, MinutesAndSecondsWithFractionAreEightWide) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    const TxtWzVar v = Counted(rules, {"100:59,9999"});
    EXPECT_EQ(v.dateKey, 1117);
    EXPECT_EQ(v.width, 8u);
    EXPECT_EQ(v.decimals, 2);
  }
}

TEST(DetectionCounters, OtherDatesRaiseToTheirRow) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    TxtWzVar v = Counted(rules, {"01/02/2020"});
    EXPECT_EQ(v.dateKey, 1002);
    EXPECT_EQ(v.width, 10u);
    EXPECT_EQ(v.decimals, 0);
    v = Counted(rules, {"01-jan-2020 12:30:45.5"}, WithWidth(30));
    EXPECT_EQ(v.dateKey, 1024);
    EXPECT_EQ(v.width, 30u);
    EXPECT_EQ(v.decimals, 2);
  }
}

TEST(DetectionCounters, AShortMonthNameSetsThreeColumns) {
  const TxtWzVar v = Counted(Sampling(), {"feb"}, WithWidth(20));
  EXPECT_EQ(v.dateKey, 1103);
  EXPECT_EQ(v.width, 3u);
}

TEST(DetectionCounters, AShortFullNameDoesNotReplaceShortNames) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    // "may" is a full name first, but among short names it is one of them.
    EXPECT_EQ(Counted(rules, {"feb", "may"}).dateKey, 1103);
    EXPECT_EQ(Counted(rules, {"may"}).dateKey, 1017);
    EXPECT_EQ(Counted(rules, {"feb", "march"}).dateKey, 1017);
    EXPECT_EQ(Counted(rules, {"feb", "march"}).width, 9u);
  }
}

TEST(DetectionCounters, SamplingTriesTheAdoptedRowFirstAndThenLeavesTheSizes) {
  TxtWzVar adopted = WithWidth(3);
  adopted.dateKey = 1116;
  // This row would be 1018 in the table's order.
  const TxtWzVar sampled = Counted(Sampling(), {"10:30"}, adopted);
  EXPECT_EQ(sampled.dateCount, 1u);
  EXPECT_EQ(sampled.dateKey, 1116);
  EXPECT_EQ(sampled.width, 3u);
  // A worker asks the table every time.
  const TxtWzVar worked = Counted(Worker(), {"10:30"}, adopted);
  EXPECT_EQ(worked.dateKey, 1018);
  EXPECT_EQ(worked.width, 5u);
}

TEST(DetectionCounters, SamplingKeepsMinutesAndSecondsAgainstTimes) {
  TxtWzVar adopted;
  adopted.dateKey = 1117;
  adopted.width = 8;
  adopted.decimals = 2;
  // What is no text of the adopted row sets the sizes all the same; they are raised to the kept
  // row's.
  TxtWzVar sampled = Counted(Sampling(), {"1:30"}, adopted);
  EXPECT_EQ(sampled.dateKey, 1117);
  EXPECT_EQ(sampled.width, 7u);
  EXPECT_EQ(sampled.decimals, 1);
  EXPECT_EQ(Counted(Worker(), {"1:30"}, adopted).dateKey, 1018);
  adopted.dateKey = 1116;
  sampled = Counted(Sampling(), {"10:30:45"}, adopted);
  EXPECT_EQ(sampled.dateKey, 1116);
  EXPECT_EQ(sampled.width, 8u);
  EXPECT_EQ(sampled.decimals, 0);
  EXPECT_EQ(Counted(Sampling(), {"10:30:45.5"}, adopted).dateKey, 1116);
  EXPECT_EQ(Counted(Sampling(), {"10:30:45.5"}, adopted).width, 11u);
  EXPECT_EQ(Counted(Worker(), {"10:30:45"}, adopted).dateKey, 1019);
  // The row before those two gives way.
  adopted.dateKey = 1115;
  EXPECT_EQ(Counted(Sampling(), {"10:30:45"}, adopted).dateKey, 1019);
}

TEST(DetectionCounters, TheAdoptedRowIsTriedWithoutTrimming) {
  TxtWzVar adopted = WithWidth(12);
  adopted.dateKey = 1002;
  const TxtWzVar v = Counted(Sampling(kFixedColumns), {" 01/02/2020 "}, adopted);
  EXPECT_EQ(v.dateCount, 1u);
  EXPECT_EQ(v.dateKey, 1002);
}

TEST(DetectionCounters, ALaterRowReplacesAnEarlierOne) {
  EXPECT_EQ(Counted(Sampling(), {"01/02/2020", "31.12.1999"}).dateKey, 1004);
  EXPECT_EQ(Counted(Sampling(), {"31.12.1999", "01/02/2020"}).dateKey, 1002);
}

TEST(DetectionCounters, SamplingKeepsTheLengthOfTheLatestStringBeyondTheWidth) {
  TxtWzVar v = Counted(Sampling(), {"aaaaaaaaaa", "bbbbb"}, WithWidth(1));
  EXPECT_EQ(v.stringCount, 2u);
  EXPECT_EQ(v.maxStringLength, 5u);
  EXPECT_FALSE(v.stringTruncated);
  // Not longer than the width: nothing is kept.
  v = Counted(Sampling(), {"aaaaa", "bbb"}, WithWidth(4));
  EXPECT_EQ(v.maxStringLength, 5u);
}

TEST(DetectionCounters, WorkersKeepTheLongestStringAndNoteThatLengthsVary) {
  TxtWzVar v = Counted(Worker(), {"aaaaa", "bbb", "ccccc"});
  EXPECT_EQ(v.maxStringLength, 5u);
  EXPECT_FALSE(v.stringTruncated);
  v = Counted(Worker(), {"bbb", "aaaaa"});
  EXPECT_EQ(v.maxStringLength, 5u);
  EXPECT_TRUE(v.stringTruncated);
}

TEST(DetectionCounters, AStringLengthIsCappedAt32767) {
  for (const DetectionRules& rules : {Sampling(), Worker()}) {
    EXPECT_EQ(Counted(rules, {std::string(32767, 'x')}).maxStringLength, 32767u);
    EXPECT_EQ(Counted(rules, {std::string(32768, 'x')}).maxStringLength, 32767u);
    EXPECT_EQ(Counted(rules, {std::string(100'000, 'x')}, WithWidth(40'000)).maxStringLength,
              32767u);
  }
}

TEST(DetectionCounters, AWorkerReadsTheFilesDecimalCharacter) {
  DetectionRules rules = Worker();
  EXPECT_EQ(Counted(rules, {"1,5x", "1,5,5"}).numericCount, 1u);
  rules.swapDecimal = true;
  rules.decimalCharacter = ',';
  // "1.5.5" is no number.
  EXPECT_EQ(Counted(rules, {"1,5,5"}).numericCount, 0u);
  EXPECT_EQ(Counted(rules, {"1,5"}).numericCount, 1u);
  EXPECT_EQ(Counted(rules, {"1,5"}).decimals, 1);
}

TEST(DetectionCounters, MergingAddsCountsAndTakesTheLargerSizes) {
  TxtWzVar into, from;
  into.width = 5;
  into.decimals = 3;
  into.maxStringLength = 10;
  from.width = 8;
  from.decimals = 1;
  from.maxStringLength = 32767;
  into.stringCount = 1;
  from.stringCount = 2;
  into.numericCount = 3;
  from.numericCount = 4;
  from.dateCount = 5;
  from.percentCount = 6;
  from.dollarCount = 7;
  from.commaCount = 8;
  from.dotCount = 9;
  from.missingStored = true;
  into.stringTruncated = true;
  DetectionCounters::Merge(from, into);
  EXPECT_EQ(into.width, 8u);
  EXPECT_EQ(into.decimals, 3);
  EXPECT_EQ(into.maxStringLength, 32767u);
  EXPECT_EQ(into.stringCount, 3u);
  EXPECT_EQ(into.numericCount, 7u);
  EXPECT_EQ(into.dateCount, 5u);
  EXPECT_EQ(into.percentCount, 6u);
  EXPECT_EQ(into.dollarCount, 7u);
  EXPECT_EQ(into.commaCount, 8u);
  EXPECT_EQ(into.dotCount, 9u);
  EXPECT_TRUE(into.missingStored);
  EXPECT_TRUE(into.stringTruncated);
  EXPECT_FALSE(into.hasExponent);
  from.hasExponent = true;
  DetectionCounters::Merge(from, into);
  EXPECT_TRUE(into.hasExponent);
}

// What is a number by its rule is counted by how the whole text widens its variable, blanks and
// all.
TEST(DetectionCounters, NumbersBetweenBlanksAreCountedByTheRuleOfNumbers) {
  const RegExMappings table;
  NumericRule rule;
  std::mt19937 random(25);
  int numbers = 0;
  for (const Arrangement arrangement : {kDelimitedLines, kDelimitedCount, kFixedColumns}) {
    for (const bool worker : {false, true}) {
      DetectionRules rules = worker ? Worker() : Sampling();
      rules.arrangement = arrangement;
      DetectionCounters counters(table, rules);
      TxtWzVar found = WithWidth(3), expected = WithWidth(3);
      for (int round = 0; round < 4000; ++round) {
        std::string text(random() % 5, ' ');
        for (std::size_t size = random() % 8; size > 0; --size)
          text += "0123456789.-+,E "[random() % 16];
        text += std::string(random() % 4, ' ');
        const bool both =
            text.find(',') != std::string::npos && text.find('.') != std::string::npos;
        if (text.empty() || !rule.Accepts(text) || both) continue;
        ++numbers;
        ++expected.numericCount;
        if (text.find('E') != std::string::npos) expected.hasExponent = true;
        UpdateVarSizes(expected, text, ".,", arrangement);
        const CountedAs as = counters.Count(text, found);
        EXPECT_TRUE(as == CountedAs::kNumber || as == CountedAs::kPlainNumber) << text;
        ASSERT_EQ(found.numericCount, expected.numericCount) << text;
        ASSERT_EQ(found.width, expected.width) << "[" << text << "]";
        ASSERT_EQ(found.decimals, expected.decimals) << "[" << text << "]";
        ASSERT_EQ(found.hasExponent, expected.hasExponent) << text;
        if (round % 50 == 0) found = expected = WithWidth(static_cast<std::uint32_t>(random() % 9));
      }
    }
  }
  EXPECT_GT(numbers, 3000);
}

TEST(DetectionCounters, MergingKeepsTheSmallestKeyInWhateverOrder) {
  const auto merged = [](std::initializer_list<int> keys) {
    TxtWzVar into;
    for (const int key : keys) {
      TxtWzVar from;
      from.dateKey = key;
      DetectionCounters::Merge(from, into);
    }
    return into.dateKey;
  };
  EXPECT_EQ(merged({1018, 1002, 0}), 1002);
  EXPECT_EQ(merged({0, 1002, 1018}), 1002);
  EXPECT_EQ(merged({1002, 0, 1018}), 1002);
  EXPECT_EQ(merged({0, 0}), 0);
}

}  // namespace
}  // namespace textwizard
