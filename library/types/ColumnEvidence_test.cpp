#include "library/types/ColumnEvidence.h"

#include <random>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/types/ColumnCounters.h"
#include "library/types/testing/Evidence.h"

namespace library {
namespace {

using testing_support::EvidenceOf;

std::string Show(const Witness& witness) {
  return std::to_string(witness.count) + " in line " + std::to_string(witness.line) + " '" +
         witness.text + "'; ";
}
std::string Show(const NumberEvidence& numbers) {
  return std::to_string(numbers.whole) + "." + std::to_string(numbers.fraction) + " " +
         std::to_string(numbers.fractions) + " " + std::to_string(numbers.exponents) + " grouped " +
         Show(numbers.grouped);
}
// All of it, for messages.
std::string Show(const ColumnEvidence& column) {
  std::string text = "values " + std::to_string(column.values()) + " empty " +
                     std::to_string(column.empties()) + " null " + Show(column.nulls());
  for (const ColumnEvidence::Group& group : column.groups()) {
    text += "\n  " + std::to_string(group.readings.bits()) + ": " + Show(group.values);
  }
  return text + "\n  point " + Show(column.point()) + "comma " + Show(column.comma()) + "zeros " +
         Show(column.leadingZeros()) + "digits " + Show(column.lostDigits()) + "either " +
         Show(column.eitherOrder()) + "longest " + Show(column.longest()) +
         std::to_string(column.longestRead()) + " " + std::to_string(column.namedMonths()) + " " +
         std::to_string(column.shortYears()) + " " + std::to_string(column.slashed()) + " " +
         std::to_string(column.dotted()) + " " + std::to_string(column.dashed()) + " " +
         std::to_string(column.secondFraction()) + (column.hasSeconds() ? " seconds\n" : "\n");
}
std::string Show(const std::vector<ColumnEvidence>& columns) {
  std::string text;
  for (const ColumnEvidence& column : columns) text += Show(column);
  return text;
}

class ColumnEvidenceTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
};

TEST_F(ColumnEvidenceTest, EmptyAndNullTextsCountAsNothing) {
  const ColumnEvidence column = EvidenceOf({"1", "", "  ", "NA", " nan ", ".", "-", "N/A", "2"});
  EXPECT_EQ(column.values(), 2);
  EXPECT_EQ(column.empties(), 2);
  EXPECT_EQ(column.nulls().count, 5);
  EXPECT_EQ(column.nulls().line, 5);
  EXPECT_EQ(column.nulls().text, "NA");
  EXPECT_EQ(column.Read(Reading::kPoint), 2);
}

TEST_F(ColumnEvidenceTest, ANullTextMayBeANumber) {
  const ColumnEvidence column = EvidenceOf({"1", "-99", "2", "-9"}, 2, {"-99"});
  EXPECT_EQ(column.values(), 3);
  EXPECT_EQ(column.nulls().count, 1);
}

TEST_F(ColumnEvidenceTest, ReadingsAreCountedWithTheFirstValueThatLacksOne) {
  const ColumnEvidence column =
      EvidenceOf({"31/12/2019", "01/02/2020", "02/03/2020", "12/31/2019", "x", "30/01/2020"});
  EXPECT_EQ(column.Read(Reading::kDayMonthYear), 4);
  EXPECT_EQ(column.Read(Reading::kMonthDayYear), 3);
  EXPECT_EQ(column.Unread(Reading::kDayMonthYear).count, 2);
  EXPECT_EQ(column.Unread(Reading::kDayMonthYear).line, 5);
  EXPECT_EQ(column.Unread(Reading::kDayMonthYear).text, "12/31/2019");
  EXPECT_EQ(column.Only(Reading::kDayMonthYear, Reading::kMonthDayYear).count, 2);
  EXPECT_EQ(column.Only(Reading::kDayMonthYear, Reading::kMonthDayYear).line, 2);
  EXPECT_EQ(column.Both(Reading::kDayMonthYear, Reading::kMonthDayYear).count, 2);
  EXPECT_EQ(column.Both(Reading::kDayMonthYear, Reading::kMonthDayYear).text, "01/02/2020");
  EXPECT_EQ(column.slashed(), 5);
}

TEST_F(ColumnEvidenceTest, PlainNumbersNeedWhatTheyShow) {
  const ColumnEvidence column = EvidenceOf({"-12", "3.25", "+100.5", "0.125", "7."});
  EXPECT_EQ(column.point().whole, 4);
  EXPECT_EQ(column.point().fraction, 3);
  EXPECT_EQ(column.point().fractions, 3);
  EXPECT_EQ(column.Read(Reading::kPoint), 5);
  // Three digits behind the point may be a group of them.
  EXPECT_EQ(column.Read(Reading::kComma), 2);
  EXPECT_EQ(column.comma().grouped.text, "0.125");
}

TEST_F(ColumnEvidenceTest, ZerosDigitsAndLengths) {
  const ColumnEvidence column =
      EvidenceOf({"12", "007", "012", "12345678901234567891", "a longer text  "});
  EXPECT_EQ(column.leadingZeros().count, 2);
  EXPECT_EQ(column.leadingZeros().line, 3);
  EXPECT_EQ(column.lostDigits().count, 1);
  EXPECT_EQ(column.lostDigits().line, 5);
  EXPECT_EQ(column.longest().count, 20);
  EXPECT_EQ(column.longest().line, 5) << "the first of them";
  EXPECT_EQ(EvidenceOf({"ab", "abcdef   "}).longest().count, 9) << "blanks count";
  EXPECT_EQ(column.longestRead(), 20);
}

TEST_F(ColumnEvidenceTest, AWitnessIsCutAtACharacter) {
  std::string text = "x";
  while (text.size() < 300) text += "\xC3\xA9";
  const ColumnEvidence column = EvidenceOf({text});
  EXPECT_EQ(column.longest().text.size(), 199u);
  EXPECT_EQ(column.longest().count, static_cast<std::int64_t>(text.size()));
}

// Evidence does not depend on where a file is cut, nor on the order in which the pieces meet.
TEST_F(ColumnEvidenceTest, StretchesJoinToTheWholeInAnyGrouping) {
  const std::vector<std::string> pool = {"1",
                                         "1.5",
                                         "1,5",
                                         "1.234",
                                         "1,234",
                                         "007",
                                         "NA",
                                         "",
                                         "$5",
                                         "5%",
                                         "2020-01-02",
                                         "31/12/2019",
                                         "1/2/2020",
                                         "Monday",
                                         "12:30",
                                         "abc",
                                         "Mar",
                                         "1e5",
                                         "03.04.19",
                                         "75:30.5",
                                         "1Q2020",
                                         "  ",
                                         "Jan 2020",
                                         "-",
                                         "1.1.1",
                                         "99999999999999999999",
                                         "01/02/2020 10:30",
                                         "a text that is longer than others"};
  std::mt19937_64 random(3);
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> values;
    for (std::size_t count = random() % 60; count > 0; --count) {
      values.push_back(pool[random() % pool.size()]);
    }
    const ColumnEvidence whole = EvidenceOf(values, 1);
    // Three stretches, joined from the left and from the right.
    std::size_t cuts[2] = {random() % (values.size() + 1), random() % (values.size() + 1)};
    if (cuts[0] > cuts[1]) std::swap(cuts[0], cuts[1]);
    const auto stretch = [&](std::size_t begin, std::size_t end) {
      return EvidenceOf({values.begin() + static_cast<std::ptrdiff_t>(begin),
                         values.begin() + static_cast<std::ptrdiff_t>(end)},
                        1);
    };
    const ColumnEvidence a = stretch(0, cuts[0]);
    const ColumnEvidence b = stretch(cuts[0], cuts[1]);
    const ColumnEvidence c = stretch(cuts[1], values.size());
    const auto lines = [](std::size_t count) { return static_cast<std::int64_t>(count); };
    ColumnEvidence left = a;
    left.Append(b, lines(cuts[0]));
    left.Append(c, lines(cuts[1]));
    ColumnEvidence rest = b;
    rest.Append(c, lines(cuts[1] - cuts[0]));
    ColumnEvidence right = a;
    right.Append(rest, lines(cuts[0]));
    ASSERT_EQ(left, whole) << testing::PrintToString(values);
    ASSERT_EQ(right, whole) << testing::PrintToString(values);
  }
}

// The quick way counts the same, whatever came before.
TEST_F(ColumnEvidenceTest, CountersCountAsEvidenceDoes) {
  const std::vector<std::string> pieces = {
      "0",     "1",   "12",     "123", "007",      "99999", ".",          ",",      "-",
      "+",     "/",   ":",      " ",   "e",        "E",     "d",          "$",      "%",
      "Jan",   "may", "Monday", "abc", "Q",        "T",     "2020",       "-01-02", "12/31/2019",
      "10:30", "\t",  "NA",     "x",   "\xC3\xA9", "-99",   "31-DEC-1999"};
  std::mt19937_64 random(17);
  const textwizard::NullTexts nulls({"NA", "-99", "-", "."});
  for (int round = 0; round < 3000; ++round) {
    ColumnCounters counters(2, nulls);
    std::vector<ColumnEvidence> expected(2);
    std::string field;
    for (std::int64_t line = 1; line <= 30; ++line) {
      for (std::size_t column = 0; column < 2; ++column) {
        // Often the same shape again, with other digits.
        if (random() % 3 == 0) {
          for (char& byte : field) {
            if (byte >= '0' && byte <= '9') byte = static_cast<char>('0' + random() % 10);
          }
        } else {
          field.clear();
          for (std::size_t count = random() % 5; count > 0; --count) {
            field += pieces[random() % pieces.size()];
          }
        }
        counters.Count(column, field, line);
        expected[column].Count(field, line, nulls);
      }
    }
    const std::vector<ColumnEvidence> counted = counters.Take();
    ASSERT_EQ(Show(counted), Show(expected));
    ASSERT_EQ(counted, expected);
    ASSERT_EQ(counters.Take(), std::vector<ColumnEvidence>(2));
  }
}

}  // namespace
}  // namespace library
