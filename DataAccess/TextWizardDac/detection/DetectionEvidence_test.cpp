#include "detection/DetectionEvidence.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "detection/testing/EvidenceText.h"
#include "model/TxtWzVar.h"

namespace textwizard {
namespace {

struct Value {
  std::int64_t line;
  std::string text;
};

// A variable's values, counted one after another.
class Counted {
 public:
  explicit Counted(DetectionPass pass = DetectionPass::kWorker) : pass_(pass) {
    variable_.ClearAllValues();
  }

  void Add(const std::vector<Value>& values) {
    DetectionRules rules;
    rules.pass = pass_;
    DetectionCounters counters(table_, rules);
    for (const Value& value : values) {
      if (value.text.empty()) {
        evidence_.AddEmpty();
      } else {
        const CountedAs as = counters.Count(value.text, variable_);
        if (!evidence_.Takes(value.text, as, counters)) {
          evidence_.Add(value.text, as, value.line, counters);
        }
      }
    }
  }
  void Merge(const Counted& batch, std::int64_t lines) {
    DetectionCounters::Merge(batch.variable_, variable_);
    evidence_.Merge(batch.evidence_, lines);
  }
  ImportEvidence Told() const { return evidence_.Told(variable_, table_); }

 private:
  DetectionPass pass_;
  RegExMappings table_;
  TxtWzVar variable_;
  DetectionEvidence evidence_;
};

ImportEvidence EvidenceOf(const std::vector<std::string>& texts) {
  std::vector<Value> values;
  for (const std::string& text : texts) {
    values.push_back({static_cast<std::int64_t>(values.size()) + 1, text});
  }
  Counted counted;
  counted.Add(values);
  return counted.Told();
}

const ImportWitness& Of(const ImportEvidence& evidence, ImportValueClass valueClass) {
  return evidence.classes[static_cast<std::size_t>(valueClass)];
}

TEST(DetectionEvidence, EveryClassHasItsCountAndItsFirstValue) {
  const ImportEvidence evidence = EvidenceOf({"abc", "12", "x", "31-Jan-2020", "$5", "5%",
                                              "1,234.5", "1.234,5", "-7.25", "$1,000", "12:30"});
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kString)), "2 line 1 'abc'");
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kNumber)), "2 line 2 '12'");
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kDate)), "2 line 4 '31-Jan-2020'");
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kDollar)), "2 line 5 '$5'");
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kPercent)), "1 line 6 '5%'");
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kComma)), "1 line 7 '1,234.5'");
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kDot)), "1 line 8 '1.234,5'");
}

TEST(DetectionEvidence, BlanksAreNumbersAndNoFirstOnes) {
  const ImportEvidence evidence = EvidenceOf({"  ", "", " ", "", "", "3"});
  EXPECT_EQ(evidence.blanks, 2);
  EXPECT_EQ(evidence.empties, 3);
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kNumber)), "3 line 6 '3'");
  EXPECT_EQ(Shown(evidence.longest), "1 line 6 '3'");
}

TEST(DetectionEvidence, ATextOfTabsIsBlankThoughItCountsAsAString) {
  const ImportEvidence evidence = EvidenceOf({"abc", "\t", "\t\t", "x"});
  EXPECT_EQ(evidence.blanks, 2);
  EXPECT_EQ(Of(evidence, ImportValueClass::kString).count, 4);
}

TEST(DetectionEvidence, OrdersAreToldWhateverBlanksStandAroundThem) {
  const ImportEvidence evidence =
      EvidenceOf({"a long text", "31/12/2020", "31/12/2021 ", " 31/12/2022", "31/13/2020 "});
  EXPECT_EQ(Shown(evidence.dayFirst), "3 line 2 '31/12/2020'");
}

TEST(DetectionEvidence, EveryLayoutOfDatesIsMet) {
  const ImportEvidence evidence =
      EvidenceOf({"12/31/1999", "31.12.1999", "1/2/2000", "12:30", "31.12.99", "10:20"});
  ASSERT_EQ(evidence.layouts.size(), 4U);
  EXPECT_EQ(evidence.layouts[0].pattern, "MM/dd/yyyy");
  EXPECT_EQ(evidence.layouts[0].format, "ADATE10");
  EXPECT_EQ(Shown(evidence.layouts[0].seen), "2 line 1 '12/31/1999'");
  EXPECT_EQ(evidence.layouts[1].format, "EDATE10");
  EXPECT_EQ(Shown(evidence.layouts[2].seen), "1 line 5 '31.12.99'");
  EXPECT_EQ(Shown(evidence.layouts[3].seen), "2 line 4 '12:30'");
}

TEST(DetectionEvidence, DayAndMonthAreToldApartWhateverTheClass) {
  const ImportEvidence evidence = EvidenceOf(
      {"01/02/2020", "31/12/2020", "12/31/2020", "13-01-20", "5 6 1999", "31.12.1999", "12.12.12",
       "32/01/2020", "13/13/2020", "00/01/2020", "1/2/3", "1/2/123", "2020/12/31", "1.2.345"});
  EXPECT_EQ(Shown(evidence.eitherOrder), "3 line 1 '01/02/2020'");
  EXPECT_EQ(Shown(evidence.dayFirst), "3 line 2 '31/12/2020'");
  EXPECT_EQ(Shown(evidence.monthFirst), "1 line 3 '12/31/2020'");
}

TEST(DetectionEvidence, CommasAreDecimalOrGroupingOrEither) {
  const ImportEvidence evidence =
      EvidenceOf({"1,234", "1,23", "1,234,567", "1,234.5", "1.234,5", "0,123", "-12,345", "+7,5",
                  "$1,234.00", "12", "a,b", "1,2,3"});
  EXPECT_EQ(Shown(evidence.eitherComma), "2 line 1 '1,234'");
  EXPECT_EQ(Shown(evidence.decimalComma), "4 line 2 '1,23'");
  EXPECT_EQ(Shown(evidence.groupingComma), "3 line 3 '1,234,567'");
}

TEST(DetectionEvidence, CommasOfDollarsAreShownWithTheirValue) {
  const ImportEvidence evidence = EvidenceOf({"$3", "$1,200.50", "$1,200", "$12"});
  EXPECT_EQ(Shown(evidence.groupingComma), "1 line 2 '$1,200.50'");
  EXPECT_EQ(Shown(evidence.eitherComma), "1 line 3 '$1,200'");
  EXPECT_EQ(Shown(evidence.decimalComma), "0 line 0 ''");
}

TEST(DetectionEvidence, PercentagesHaveNoCommas) {
  const ImportEvidence evidence = EvidenceOf({"12,5%", "1,200 %", "7%"});
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kString)), "2 line 1 '12,5%'");
  EXPECT_EQ(Shown(Of(evidence, ImportValueClass::kPercent)), "1 line 3 '7%'");
}

TEST(DetectionEvidence, LeadingZerosAreThoseOfNumbersThatOtherDigitsFollow) {
  const ImportEvidence evidence =
      EvidenceOf({"0", "0.5", "007", "00.5", "x07", "10", "0012345678"});
  EXPECT_EQ(Shown(evidence.leadingZeros), "3 line 3 '007'");
}

TEST(DetectionEvidence, TheLongestIsTheFirstOfItsLengthWithoutBlanks) {
  const ImportEvidence evidence = EvidenceOf({"ab", "abcd  ", "     x", "1234", "abc"});
  EXPECT_EQ(Shown(evidence.longest), "4 line 2 'abcd'");
}

TEST(DetectionEvidence, LongTextsAreCutAtAWholeCharacter) {
  std::string text = "x";
  while (text.size() < 2 * kImportTextBytes) text += "\xC3\xA9";
  const ImportEvidence evidence = EvidenceOf({text});
  EXPECT_EQ(evidence.longest.count, static_cast<std::int64_t>(text.size()));
  EXPECT_EQ(evidence.longest.text, text.substr(0, kImportTextBytes - 1));
}

// Random values in batches of random sizes, which are merged in any order.
TEST(DetectionEvidence, IsTheSameHoweverTheValuesAreSpreadOverBatches) {
  const std::vector<std::string> texts = {
      "",          " ",          "1",     "007",       "1,234",     "1,23",
      "abc",       "x",          "$5",    "5%",        "1.234,5",   "31.12.1999",
      "1/2/2000",  "31/12/2000", "12:30", "-5.5",      "12/31/99",  "a much longer text",
      "1e5",       "\t",         " 12",   "1/2/2000 ", "32/1/2000", "31.12.99 x",
      " 31/12/99", "0",          "0.5",   "$1,200",    "+1,5",      "\t1/2/2000"};
  std::mt19937 random(12);
  for (int round = 0; round < 200; ++round) {
    std::vector<Value> values;
    for (std::int64_t line = 1; line <= 60; ++line) {
      if (random() % 5 == 0) ++line;
      values.push_back({line, texts[random() % texts.size()]});
    }
    Counted whole;
    whole.Add(values);
    struct Batch {
      Counted counted;
      std::int64_t lines = 0;
    };
    std::vector<std::unique_ptr<Batch>> batches;
    for (std::size_t at = 0; at < values.size();) {
      const std::size_t size = std::min<std::size_t>(1 + random() % 20, values.size() - at);
      std::vector<Value> part(values.begin() + static_cast<std::ptrdiff_t>(at),
                              values.begin() + static_cast<std::ptrdiff_t>(at + size));
      auto batch = std::make_unique<Batch>();
      batch->lines = static_cast<std::int64_t>(random() % static_cast<unsigned>(part[0].line));
      for (Value& value : part) value.line -= batch->lines;
      batch->counted.Add(part);
      batches.push_back(std::move(batch));
      at += size;
    }
    std::shuffle(batches.begin(), batches.end(), random);
    Counted merged;
    for (const auto& batch : batches) merged.Merge(batch->counted, batch->lines);
    ASSERT_EQ(Shown(merged.Told()), Shown(whole.Told()));
  }
}

TEST(DetectionEvidence, AClearedOneIsLikeNew) {
  Counted counted;
  counted.Add({{5, "31.12.1999"}, {6, "1,5"}, {7, "abc"}});
  DetectionEvidence evidence;
  RegExMappings table;
  DetectionCounters counters(table, DetectionRules());
  TxtWzVar variable;
  variable.ClearAllValues();
  evidence.Add("31.12.1999", counters.Count("31.12.1999", variable), 1, counters);
  evidence.Clear();
  variable.ClearAllValues();
  EXPECT_EQ(Shown(evidence.Told(variable, table)), Shown(ImportEvidence()));
}

}  // namespace
}  // namespace textwizard
