// Whole dictionaries: a file in memory, a plan executed over it, the variables that come of it.

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "model/FormatCode.h"
#include "plan/TxtWzDlmCount.h"
#include "plan/TxtWzDlmLines.h"
#include "plan/TxtWzFixedLines.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {
namespace {

constexpr const char* kPath = "data.txt";

std::vector<std::string>& Progress() {
  static std::vector<std::string> texts;
  return texts;
}

void KeepProgress(const char* text, int kind) {
  if (kind == kMessageProgress) Progress().push_back(text);
}

// Which engine looks at a file with one case per line.
class Engine {
 public:
  explicit Engine(bool oneThread) {
    setenv("DISABLE_MULTI_THREAD_AUTO", oneThread ? "YES" : "NO", 1);
  }
  ~Engine() { unsetenv("DISABLE_MULTI_THREAD_AUTO"); }
};

// An import of a file in memory.
template <class Plan>
class Import {
 public:
  explicit Import(std::string file, std::shared_ptr<embedded::StreamFaults> faults = nullptr)
      : files_(kPath, std::move(file), std::move(faults)), source_(kPath, 2, 0, nullptr) {
    Progress().clear();
    plan.settings.delimiters = ",";
    plan.settings.importMode = kImportAll;
    plan.errorMonitorHandle = &KeepProgress;
  }

  Import& Add(std::uint32_t type, std::uint32_t width = 1, std::int32_t decimals = 0,
              std::uint32_t startColumn = 0) {
    auto variable = std::make_unique<TxtWzVar>();
    const std::string name = "v" + std::to_string(plan.variableCount() + 1);
    variable->SetVarName(name.c_str());
    variable->formatType = type;
    variable->width = variable->maxStringLength = width;
    variable->decimals = decimals;
    variable->startColumn = startColumn;
    variable->recordNumber = 1;
    plan.AddVariable(std::move(variable));
    return *this;
  }
  Import& Auto(int count = 1) {
    for (int i = 0; i < count; ++i) Add(kFormatAuto);
    return *this;
  }
  Import& AutoColumns(std::uint32_t startColumn, std::uint32_t width) {
    return Add(kFormatAuto, width, 0, startColumn);
  }

  int SetDictionary() {
    plan.SetVarCount(plan.variableCount());
    source_.SetSettings(plan.settings);
    return plan.SetDictionary(&source_);
  }
  // The formats of the host's variables, such as "5:8.2" for F8.2, one blank between.
  std::string Formats() {
    if (SetDictionary() != 1) return "interrupted";
    std::string text;
    for (std::size_t i = 0; i < source_.GetNVariables(); ++i) {
      const QANT_Format& format = source_.GetVariable(i)->GetFormat();
      if (i > 0) text += " ";
      text += std::to_string(format.type) + ":" + std::to_string(format.width) + "." +
              std::to_string(format.decimals);
    }
    return text;
  }
  const TxtWzVar& variable(std::size_t i) const { return *plan.slots()[i]; }
  QANT_TextWizardSrc& source() { return source_; }

  Plan plan;

 private:
  embedded::ScopedMemoryFiles files_;
  QANT_TextWizardSrc source_;
};

using Lines = Import<TxtWzDlmLines>;

std::string Repeat(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// Both engines make the same of these.
class BothEngines : public testing::TestWithParam<bool> {
 protected:
  Engine engine_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(, BothEngines, testing::Values(true, false),
                         [](const auto& engine) { return engine.param ? "OneThread" : "Workers"; });

TEST_P(BothEngines, EveryTypeOfColumn) {
  // Widths are those of the longest value, or of the layout; decimals those of the longest
  // fraction.
  const std::string file =
      "12.5,$10.25,5%,abc,2020/01/31,12:30\n"
      "3,$7,12.5%,defghi,2020/02/28,01:05\n";
  EXPECT_EQ(Lines(file).Auto(6).Formats(), "5:4.1 4:6.2 31:5.2 1:6.0 39:10.0 21:5.0");
}

TEST_P(BothEngines, GroupedNumbers) {
  Lines import("1,234.5;1.234,50\n12,345;12.345,25\n");
  import.plan.settings.delimiters = ";";
  // "12,345" is a number by itself and counts three decimals, so neither class of the first column
  // has its share; one decimal and a length of 7 become three decimals and 9.
  import.plan.settings.dataTypeMinPercentage = 51;
  EXPECT_EQ(import.Auto(2).Formats(), "1:9.0 32:9.2");
}

TEST_P(BothEngines, ExponentsMakeEOnlyAboveFiftyPercent) {
  const std::string file = "1.5E3\n2.25E10\n";
  Lines above(file);
  above.plan.settings.dataTypeMinPercentage = 51;
  // 7 wide leaves no room for decimals; the host raises E's width to its minimum of 8.
  EXPECT_EQ(above.Auto().Formats(), "17:8.0");
  EXPECT_EQ(above.variable(0).decimals, 0);
  Lines upTo(file);
  upTo.plan.settings.dataTypeMinPercentage = 50;
  EXPECT_EQ(upTo.Auto().Formats(), "5:7.5");
}

TEST_P(BothEngines, TheThresholdDecides) {
  EXPECT_EQ(Lines(Repeat("x\n", 4) + Repeat("123\n", 96)).Auto().Formats(), "5:3.0");
  EXPECT_EQ(Lines(Repeat("longest\n", 6) + Repeat("123\n", 94)).Auto().Formats(), "1:7.0");
}

TEST_P(BothEngines, MonthFirstDates) {
  EXPECT_EQ(Lines("01/02/2020\n12/31/1999\n").Auto().Formats(), "23:10.0");
}

TEST_P(BothEngines, ShortMonthNamesStay) {
  EXPECT_EQ(Lines("feb\nmay\njan\n").Auto().Formats(), "27:3.0");
}

TEST_P(BothEngines, TimesWithFractions) {
  EXPECT_EQ(Lines("12:30:45.5\n01:02:03.25\n").Auto().Formats(), "21:11.2");
}

TEST_P(BothEngines, EmptyColumnsAreStringsOfTheirWidth) {
  EXPECT_EQ(Lines("1,,3\n4,,6\n").Auto(3).Formats(), "5:1.0 1:1.0 5:1.0");
  EXPECT_EQ(Lines("").Auto().Formats(), "1:1.0");
}

TEST_P(BothEngines, BlankFieldsAreNumbers) {
  Lines import("  ,x\n 5 ,x\n");
  EXPECT_EQ(import.Auto(2).Formats(), "5:1.0 1:1.0");
  EXPECT_EQ(import.variable(0).numericCount, 2u);
}

TEST_P(BothEngines, DeclaredAndSkippedFieldsAreCutButNotCounted) {
  Lines import("abc,1,2,x\n");
  import.Add(kFormatF, 8, 2).Add(kFormatSkip).Auto().Add(kFormatA, 4);
  EXPECT_EQ(import.Formats(), "5:8.2 5:1.0 1:4.0");
  EXPECT_EQ(import.variable(0).stringCount, 0u);
  EXPECT_EQ(import.variable(1).numericCount, 0u);
}

TEST_P(BothEngines, ShortRecordsLeaveTheirLastVariablesAlone) {
  Lines import("1\n2,x\n3,y,z\n");
  EXPECT_EQ(import.Auto(3).Formats(), "5:1.0 1:1.0 1:1.0");
  EXPECT_EQ(import.variable(1).stringCount, 2u);
  EXPECT_EQ(import.variable(2).stringCount, 1u);
}

TEST_P(BothEngines, ReadingStartsBehindTheMarkAtTheFirstCase) {
  Lines import("\xEF\xBB\xBFname,when\n\n1,2020/01/31\n2,2020/02/28\n");
  import.plan.settings.firstCase = 2;
  EXPECT_EQ(import.Auto(2).Formats(), "5:1.0 39:10.0");
  EXPECT_EQ(Lines("\xEF\xBB\xBF"
                  "1\n2\n")
                .Auto()
                .Formats(),
            "5:1.0");
}

TEST_P(BothEngines, AValueBeyondTheLongestStringIsCut) {
  Lines import("ab\n" + std::string(40'000, 'x') + "\n");
  EXPECT_EQ(import.Auto().Formats(), "1:32767.0");
}

// The flags of a variable speak of conversion, which comes later; its counters keep what was found.
TEST_P(BothEngines, WhatDetectionFlaggedIsClearedWhenTheTypeIsSettled) {
  Lines import("a,x\nlonger,y\n");
  EXPECT_EQ(import.Auto(2).Formats(), "1:6.0 1:1.0");
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_FALSE(import.variable(i).stringTruncated) << i;
    EXPECT_FALSE(import.variable(i).missingStored) << i;
    EXPECT_EQ(import.variable(i).stringCount, 2u) << i;
  }
  EXPECT_EQ(import.variable(0).maxStringLength, 6u);
}

TEST_P(BothEngines, AReadErrorThrowsItsNumber) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  Lines import(Repeat("1,2\n", 100'000), faults);
  import.Auto(2);
  faults->failAt = 200'000;
  try {
    import.SetDictionary();
    ADD_FAILURE() << "no exception";
  } catch (int number) {
    EXPECT_EQ(number, 2269);
  }
  EXPECT_EQ(import.source().GetNVariables(), 0u);
}

TEST(Dictionary, AStringColumnKeepsTheLatestLengthBeyondItsWidthOnOneThread) {
  const Engine engine(true);
  EXPECT_EQ(Lines("aaaaaaaaaa\nbbbbb\n").Auto().Formats(), "1:5.0");
  const Engine workers(false);
  EXPECT_EQ(Lines("aaaaaaaaaa\nbbbbb\n").Auto().Formats(), "1:10.0");
}

TEST(Dictionary, DeclaredFormatsAloneReadNothing) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  faults->failAt = 0;
  Lines import("1,2\n", faults);
  import.Add(kFormatN, 8, 5).Add(kFormatDate, 6).Add(kFormatAHex, 4).Add(kFormatSkip);
  EXPECT_EQ(import.Formats(), "16:8.0 20:9.0 5:8.2");
  // What was normalised is what the variables carry.
  EXPECT_EQ(import.variable(0).decimals, 0);
  EXPECT_EQ(import.variable(1).width, 9u);
  EXPECT_EQ(import.variable(2).formatType, kFormatF);
  EXPECT_TRUE(Progress().empty());
}

TEST(Dictionary, WithoutVariablesThereIsNothingToDo) {
  Lines import("1,2\n");
  EXPECT_EQ(import.SetDictionary(), 1);
  EXPECT_EQ(import.source().GetNVariables(), 0u);
}

class OtherSource : public QANT_DataSource {
 public:
  OtherSource() : QANT_DataSource(nullptr) {}
  QANT_InputCaseIterator* MakeIterator(OBS*) const override { return nullptr; }
};

TEST(Dictionary, ASourceThatCannotBeSampledGivesStrings) {
  Lines import("1,2\n");
  import.Add(kFormatAuto, 7);
  import.plan.SetVarCount(1);
  OtherSource other;
  EXPECT_EQ(import.plan.SetDictionary(&other), 1);
  EXPECT_EQ(other.GetVariable(0)->GetType(), 7);
}

TEST(Dictionary, AUtf16StringIsWidenedInItsFormatOnly) {
  Lines import("");
  import.plan.settings.encoding = kEncodingUtf16LittleEndian;
  EXPECT_EQ(import.Add(kFormatA, 20).Formats(), "1:60.0");
  EXPECT_EQ(import.source().GetVariable(0)->GetType(), 20);
  EXPECT_EQ(import.variable(0).maxStringLength, 60u);
}

TEST(Dictionary, FirstTenSamplesExactlyTenRecords) {
  const Engine engine(true);
  Lines import(Repeat("1\n", 10) + Repeat("text\n", 1000));
  import.plan.settings.importMode = kImportFirst;
  import.plan.settings.caseLimit = 10;
  EXPECT_EQ(import.Auto().Formats(), "5:1.0");
  EXPECT_EQ(import.variable(0).numericCount, 10u);
}

TEST(Dictionary, APercentageOfTheCasesSamplesThemAll) {
  const Engine engine(true);
  Lines import(Repeat("1\n", 500));
  import.plan.settings.importMode = kImportPercent;
  import.plan.settings.sampleFraction = 0.01;
  import.Auto().Formats();
  EXPECT_EQ(import.variable(0).numericCount, 500u);
}

TEST(Dictionary, ATextLikeTheEndOfDataEndsTheSample) {
  const Engine engine(true);
  Lines import("1\n%_%_EOF_%_%\ntext\n");
  EXPECT_EQ(import.Auto().Formats(), "5:1.0");
}

TEST(Dictionary, ProgressComesEveryThousandRecordsAndEnds) {
  const Engine engine(true);
  Lines few(Repeat("1\n", 998));
  few.Auto().Formats();
  EXPECT_EQ(Progress(), (std::vector<std::string>{"-1"}));
  // The count is that of the record to come.
  Lines thousand(Repeat("1\n", 999));
  thousand.Auto().Formats();
  EXPECT_EQ(Progress(), (std::vector<std::string>{"1000", "-1"}));
  Lines many(Repeat("1\n", 2500));
  many.Auto().Formats();
  EXPECT_EQ(Progress(), (std::vector<std::string>{"1000", "2000", "-1"}));
}

TEST(Dictionary, AnInterruptedSampleDefinesNothing) {
  const Engine engine(true);
  Lines import(Repeat("1\n", 5000));
  embedded::RequestAttention();
  EXPECT_EQ(import.Auto().Formats(), "interrupted");
  embedded::ClearAttention();
  EXPECT_EQ(import.source().GetNVariables(), 0u);
  EXPECT_EQ(import.variable(0).numericCount, 999u);
  EXPECT_EQ(Progress(), (std::vector<std::string>{"1000", "-1"}));
}

TEST(Dictionary, RunsOfBlanksThatSeparateTakeNoVariable) {
  const Engine engine(true);
  Lines import("1   abc\n2 def\n");
  import.plan.settings.delimiters = " ";
  EXPECT_EQ(import.Auto(2).Formats(), "5:1.0 1:3.0");
  // Before a declared variable an empty field is that variable's.
  Lines declared("1  abc\n");
  declared.plan.settings.delimiters = " ";
  EXPECT_EQ(declared.Auto().Add(kFormatA, 4).Auto().Formats(), "5:1.0 1:4.0 1:3.0");
}

TEST(Dictionary, CountersAddUpOverExecutions) {
  const Engine engine(true);
  Lines import("1\n2\n");
  import.Auto().Formats();
  OtherSource other;
  import.plan.SetDictionary(&other);
  EXPECT_EQ(import.variable(0).numericCount, 2u);
}

// A fixed number of values per case: the sample is cut from records and fields side by side.
TEST(DictionaryOfCounts, TheSampleIsCutFromRecordsAndFieldsSideBySide) {
  Import<TxtWzDlmCount> import("1,2\n3,4\n");
  // First case: the fields 1 and 2 of the record that is there. Second: the record used up, the new
  // one and its fields stand side by side, "1,2" "3,4" "3," "4,", and give 1 | 23 | 43 | 4.
  EXPECT_EQ(import.Auto(2).Formats(), "5:1.0 5:2.0");
  EXPECT_EQ(import.variable(0).numericCount, 2u);
  EXPECT_EQ(import.variable(1).numericCount, 2u);
}

TEST(DictionaryOfCounts, ReadingStartsAtTheFirstCase) {
  Import<TxtWzDlmCount> import("name\n5\n");
  import.plan.settings.firstCase = 2;
  EXPECT_EQ(import.Auto().Formats(), "5:1.0");
}

TEST(DictionaryOfCounts, DatesAreTrimmed) {
  Import<TxtWzDlmCount> import(" 2020/01/31 ; 2020/01/31 \n");
  import.plan.settings.firstCase = 0;
  import.plan.settings.delimiters = ";";
  // Twelve bytes each: the record's first value is a date, its second one runs into the first
  // field.
  EXPECT_EQ(import.Auto(2).Formats(), "39:10.0 1:24.0");
}

using Columns = Import<TxtWzFixedLines>;

TEST(DictionaryOfColumns, EveryTypeOfColumn) {
  Columns import("  5 abc 2020/01/31\n 12 de  1999/12/31\n");
  import.AutoColumns(0, 3).AutoColumns(4, 3).AutoColumns(8, 10);
  EXPECT_EQ(import.Formats(), "5:3.0 1:3.0 39:10.0");
}

TEST(DictionaryOfColumns, AllLinesOfACaseAreOneText) {
  Columns import("12\nab\n34\ncd\n");
  import.plan.settings.recordsPerCase = 2;
  // The joined text is "12ab".
  import.AutoColumns(0, 2).AutoColumns(2, 2);
  EXPECT_EQ(import.Formats(), "5:2.0 1:2.0");
}

TEST(DictionaryOfColumns, AShortValueNarrowsTheNextCutButNotTheField) {
  // "7" at the end of a line leaves a width of 1, and so the next value is cut to "1".
  Columns import("ab7\ncd12345\n");
  import.AutoColumns(2, 5);
  EXPECT_EQ(import.Formats(), "5:1.0");
  EXPECT_EQ(import.variable(0).numericCount, 2u);
  // Cases are read by the command's columns all the same.
  EXPECT_EQ(import.variable(0).width, 5u);
}

TEST(DictionaryOfColumns, ADateWidensTheNextCutButNotTheField) {
  // A date of eight columns in a row that is ten wide: the second cut takes two columns more.
  Columns import("1/2/2020zz\n3/4/1999yy\n");
  import.AutoColumns(0, 8);
  import.SetDictionary();
  EXPECT_EQ(import.variable(0).dateCount, 1u);
  EXPECT_EQ(import.variable(0).stringCount, 1u);
  EXPECT_EQ(import.source().GetVariable(0)->GetFormat(), (QANT_Format{1, 8, 0}));
  EXPECT_EQ(import.variable(0).width, 8u);
  EXPECT_EQ(import.variable(0).maxStringLength, 8u);
}

TEST(DictionaryOfColumns, ADeclaredDateReadsItsColumnsAndShowsItsFormat) {
  Columns import("310120\n");
  import.Add(kFormatDate, 6);
  EXPECT_EQ(import.Formats(), "20:9.0");
  EXPECT_EQ(import.variable(0).width, 6u);
}

TEST(DictionaryOfColumns, ARecordThatEndsBeforeAColumnEndsTheSampleOfIt) {
  Columns import("1\n2 x\n");
  import.AutoColumns(0, 1).AutoColumns(2, 1);
  EXPECT_EQ(import.Formats(), "5:1.0 1:1.0");
  EXPECT_EQ(import.variable(1).stringCount, 1u);
}

TEST(DictionaryOfColumns, AnEmptyFieldHasItsPlaceEvenWhereBlanksSeparate) {
  Columns import("1\n2x\n");
  import.plan.settings.delimiters = " ";
  import.AutoColumns(0, 1).AutoColumns(1, 1);
  EXPECT_EQ(import.Formats(), "5:1.0 1:1.0");
}

}  // namespace
}  // namespace textwizard
