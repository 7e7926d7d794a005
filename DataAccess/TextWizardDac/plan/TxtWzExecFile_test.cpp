// The import plan: its variables, the rule of IMPORTCASE, and what it hands to the data source.
#include "plan/TxtWzExecFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "model/FormatCode.h"
#include "plan/TxtWzDlmCount.h"
#include "plan/TxtWzDlmLines.h"
#include "plan/TxtWzFixedLines.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {
namespace {

std::unique_ptr<TxtWzVar> Variable(const char* name, std::uint32_t code = kFormatF) {
  auto variable = std::make_unique<TxtWzVar>();
  variable->SetVarName(name);
  variable->formatType = code;
  variable->width = variable->maxStringLength = 8;
  return variable;
}

// A file of the test's own, removed with it.
class TestFile {
 public:
  explicit TestFile(const std::string& content) {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    path_ = testing::TempDir() + test->test_suite_name() + "_" + test->name() +
            std::to_string(getpid());
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~TestFile() { std::filesystem::remove(path_); }
  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

TEST(PlanVariables, AreFoundByTheirUpperCaseName) {
  TxtWzDlmLines plan;
  EXPECT_EQ(plan.SearchUpperVarName("A"), TxtWzExecFile::kNoVariable);
  EXPECT_EQ(plan.AddVariable(Variable("a")), 1);
  EXPECT_EQ(plan.AddVariable(Variable("Bee")), 1);
  EXPECT_EQ(plan.SearchUpperVarName("A"), 0u);
  EXPECT_EQ(plan.SearchUpperVarName("BEE"), 1u);
  EXPECT_EQ(plan.SearchUpperVarName("Bee"), 0xFFFFFFFFu);
  EXPECT_EQ(plan.SearchUpperVarName(""), 0xFFFFFFFFu);
  EXPECT_EQ(plan.variableCount(), 2u);
}

TEST(PlanVariables, OfTwoWithTheSameNameTheFirstIsFound) {
  TxtWzDlmLines plan;
  plan.AddVariable(Variable("x"));
  plan.AddVariable(Variable("same"));
  plan.AddVariable(Variable("SAME"));
  EXPECT_EQ(plan.SearchUpperVarName("SAME"), 1u);
  EXPECT_EQ(plan.variableCount(), 3u);
}

TEST(PlanVariables, TheFirstOnesBecomeSlots) {
  TxtWzDlmLines plan;
  plan.SetVarCount(3);
  EXPECT_TRUE(plan.slots().empty());
  for (const char* name : {"a", "b", "c"}) plan.AddVariable(Variable(name));
  plan.SetVarCount(0);
  EXPECT_TRUE(plan.slots().empty());
  plan.SetVarCount(2);
  ASSERT_EQ(plan.slots().size(), 2u);
  EXPECT_EQ(plan.slots()[0]->name, "a");
  EXPECT_EQ(plan.slots()[1]->name, "b");
  plan.SetVarCount(99);
  EXPECT_EQ(plan.slots().size(), 3u);
}

TEST(CaseSampling, FirstCountsUpToTheLimit) {
  TxtWzDlmLines plan;
  plan.settings.importMode = kImportFirst;
  plan.settings.caseLimit = 5;
  plan.StartSampling();
  for (int count = 1; count <= 4; ++count) EXPECT_TRUE(plan.MoreCases()) << count;
  for (int count = 5; count <= 7; ++count) EXPECT_FALSE(plan.MoreCases()) << count;
  plan.StartSampling();
  EXPECT_TRUE(plan.MoreCases());
  EXPECT_TRUE(plan.SampleCase());
}

TEST(CaseSampling, AllKeepsEveryCase) {
  TxtWzDlmLines plan;
  plan.settings.importMode = kImportAll;
  plan.settings.caseLimit = 1;
  plan.StartSampling();
  for (int i = 0; i < 10; ++i) {
    EXPECT_TRUE(plan.MoreCases());
    EXPECT_TRUE(plan.SampleCase());
  }
}

TEST(CaseSampling, PercentKeepsItsShare) {
  TxtWzDlmLines plan;
  plan.settings.importMode = kImportPercent;
  plan.settings.caseLimit = 1;
  plan.settings.sampleFraction = 1.0;
  plan.StartSampling();
  for (int i = 0; i < 10000; ++i) ASSERT_TRUE(plan.SampleCase());
  EXPECT_TRUE(plan.MoreCases());
  EXPECT_TRUE(plan.MoreCases());

  // The draw is the process's, so a seed of the test's own tells what must come.
  plan.settings.sampleFraction = 0.25;
  std::srand(7);
  std::vector<bool> expected;
  for (int i = 0; i < 1000; ++i) expected.push_back(std::rand() / 2147483647.0 <= 0.25);
  std::srand(7);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(plan.SampleCase(), expected[static_cast<size_t>(i)]);
}

TEST(CaseSampling, ZeroPercentKeepsACaseOnlyWhenTheDrawIsZero) {
  TxtWzDlmLines plan;
  plan.settings.importMode = kImportPercent;
  plan.settings.sampleFraction = 0.0;
  std::srand(11);
  std::vector<bool> expected;
  for (int i = 0; i < 1000; ++i) expected.push_back(std::rand() == 0);
  std::srand(11);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(plan.SampleCase(), expected[static_cast<size_t>(i)]);
}

TEST(NewPlan, HasItsDefaults) {
  TxtWzDlmLines plan;
  EXPECT_TRUE(plan.slots().empty());
  EXPECT_EQ(plan.variableCount(), 0u);
  EXPECT_EQ(plan.fileName(), "");
  EXPECT_EQ(plan.settings.firstCase, 1);
  EXPECT_FALSE(plan.settings.qualifierSet);
  EXPECT_EQ(plan.settings.qualifier, "");
  EXPECT_FALSE(plan.settings.leadingSpaces);
  EXPECT_FALSE(plan.settings.multipleSpaces);
  EXPECT_EQ(plan.settings.dataTypeMinPercentage, 95.0);
  EXPECT_FALSE(plan.settings.mapRequested);
  EXPECT_EQ(plan.settings.importMode, kImportFirst);
  EXPECT_EQ(plan.settings.caseLimit, 0);
  EXPECT_FALSE(plan.MoreCases()) << "the first cases, and none of them";
}

TEST(PlanKinds, CarryTheirArrangement) {
  EXPECT_EQ(TxtWzDlmLines().settings.arrangement, kDelimitedLines);
  EXPECT_EQ(TxtWzDlmCount().settings.arrangement, kDelimitedCount);
  EXPECT_EQ(TxtWzFixedLines().settings.arrangement, kFixedColumns);
}

TEST(Execute, GivesTheSourceSettingsAndCopiesOfTheVariables) {
  const TestFile file("1,x\n");
  QANT_TextWizardSrc source(file.path(), 0, 0, nullptr);
  {
    TxtWzDlmCount plan;
    plan.SetFileName(file.path());
    plan.SetDelimiters(",");
    plan.settings.firstCase = 1;
    plan.settings.importMode = kImportPercent;
    plan.settings.sampleFraction = 0.5;
    plan.settings.qualifierSet = true;
    plan.settings.qualifier = "'";
    plan.settings.leadingSpaces = plan.settings.multipleSpaces = true;
    plan.settings.dataTypeMinPercentage = 70;
    plan.settings.mapRequested = true;
    plan.settings.encoding = kEncodingUtf8;
    plan.AddVariable(Variable("a"));
    plan.AddVariable(Variable("b", kFormatA));
    plan.AddVariable(Variable("skipped", kFormatSkip));
    plan.SetVarCount(3);
    EXPECT_EQ(plan.Execute(&source, nullptr), 1);
    ASSERT_EQ(source.variables().size(), 3u);
    EXPECT_NE(source.variables()[0].get(), plan.slots()[0]);
  }
  const ImportSettings& settings = source.settings();
  EXPECT_EQ(settings.arrangement, kDelimitedCount);
  EXPECT_EQ(settings.delimiters, ",");
  EXPECT_EQ(settings.firstCase, 1);
  EXPECT_EQ(settings.importMode, kImportPercent);
  EXPECT_EQ(settings.sampleFraction, 0.5);
  EXPECT_TRUE(settings.qualifierSet);
  EXPECT_EQ(settings.qualifier, "'");
  EXPECT_TRUE(settings.leadingSpaces);
  EXPECT_TRUE(settings.multipleSpaces);
  EXPECT_EQ(settings.dataTypeMinPercentage, 70.0);
  EXPECT_TRUE(settings.mapRequested);
  EXPECT_EQ(settings.encoding, kEncodingUtf8);
  EXPECT_EQ(source.variables()[1]->name, "b");
  EXPECT_EQ(source.variables()[1]->upperName, "B");
  EXPECT_EQ(source.variables()[1]->formatType, kFormatA);
  EXPECT_EQ(source.variables()[1]->maxStringLength, 8u);
  EXPECT_EQ(source.GetNVariables(), 2u) << "a skipped field is no variable of the host's";
}

TEST(Execute, WithoutSlotsGivesTheSettingsOnly) {
  const TestFile file("1 2\n");
  QANT_TextWizardSrc source(file.path(), 0, 0, nullptr);
  TxtWzFixedLines plan;
  plan.settings.recordsPerCase = 3;
  EXPECT_EQ(plan.Execute(&source, nullptr), 1);
  EXPECT_EQ(source.settings().recordsPerCase, 3u);
  EXPECT_EQ(source.settings().arrangement, kFixedColumns);
  EXPECT_TRUE(source.variables().empty());
  EXPECT_EQ(source.GetNVariables(), 0u);
}

TEST(SetDataSource, GivesWhatOnlyTheArrangementHas) {
  const TestFile file("");
  QANT_TextWizardSrc source(file.path(), 0, 0, nullptr);
  TxtWzDlmLines delimited;
  EXPECT_EQ(delimited.SetDataSource(&source), 1);
  EXPECT_EQ(source.settings().delimiters, "");
  delimited.SetDelimiters(";\t");
  EXPECT_EQ(delimited.SetDataSource(&source), 1);
  EXPECT_EQ(source.settings().delimiters, ";\t");
  TxtWzFixedLines fixed;
  fixed.settings.recordsPerCase = 4;
  EXPECT_EQ(fixed.SetDataSource(&source), 1);
  EXPECT_EQ(source.settings().recordsPerCase, 4u);
  EXPECT_EQ(source.settings().delimiters, ";\t");
}

}  // namespace
}  // namespace textwizard
