#include <gtest/gtest.h>

#include "command/testing/CommandTesting.h"
#include "model/FormatCode.h"
#include "plan/TxtWzDlmCount.h"
#include "plan/TxtWzDlmLines.h"
#include "plan/TxtWzFixedLines.h"

namespace textwizard {
namespace {

TEST(CompactHeader, OneCaseALine) {
  PathAdapter adapter;
  TxtWzParser parser("DL\n2 3 0\n,;\nfile='my data.txt'\nrest", &adapter);
  const std::unique_ptr<TxtWzExecFile> plan = parser.ParseFileType();
  ASSERT_TRUE(dynamic_cast<TxtWzDlmLines*>(plan.get()));
  EXPECT_EQ(plan->settings.firstCase, 2);
  EXPECT_EQ(parser.variableCounter(), 3u);
  EXPECT_EQ(plan->settings.importMode, kImportAll);
  EXPECT_EQ(plan->settings.delimiters, ",;");
  EXPECT_EQ(plan->fileName(), "quoted:my data.txt");
  EXPECT_STREQ(parser.GetFile(), "quoted:my data.txt");
  EXPECT_STREQ(parser.scanner().cursor(), "rest");
}

TEST(CompactHeader, CasesByVariableCountAndTheFirstCases) {
  PathAdapter adapter;
  TxtWzParser parser("dc 1 4 1 100\n\t\nFILE=data.txt\n", &adapter);
  const std::unique_ptr<TxtWzExecFile> plan = parser.ParseFileType();
  ASSERT_TRUE(dynamic_cast<TxtWzDlmCount*>(plan.get()));
  EXPECT_EQ(plan->settings.importMode, kImportFirst);
  EXPECT_EQ(plan->settings.caseLimit, 100);
  EXPECT_EQ(plan->settings.delimiters, "\t");
  EXPECT_EQ(plan->fileName(), "plain:data.txt");
}

TEST(CompactHeader, FixedColumnsAndASample) {
  TxtWzParser parser("FL 1 4 2 0.25 3 data file.txt\r\n", nullptr);
  const std::unique_ptr<TxtWzExecFile> plan = parser.ParseFileType();
  ASSERT_TRUE(dynamic_cast<TxtWzFixedLines*>(plan.get()));
  EXPECT_EQ(plan->settings.importMode, kImportPercent);
  EXPECT_EQ(plan->settings.sampleFraction, 0.25);
  EXPECT_EQ(plan->settings.recordsPerCase, 3u);
  EXPECT_EQ(plan->fileName(), "data file.txt");
}

TEST(CompactHeader, AnotherTypeWordHasNoPlan) {
  for (const char* text : {"XX 1 2 0", "", "DLX 1"}) {
    TxtWzParser parser(text, nullptr);
    EXPECT_EQ(parser.ParseFileType(), nullptr) << text;
    EXPECT_EQ(parser.GetErrorMesToken(), nullptr);
  }
}

TEST(CompactHeader, AHeaderCutShortReadsNothingPastItsEnd) {
  const std::string text = "DC 1 4 1 100\n,\nfile='data.txt'\n";
  for (std::size_t length = 3; length < text.size(); ++length) {
    TxtWzParser parser(text.substr(0, length).c_str(), nullptr);
    EXPECT_TRUE(parser.ParseFileType());
    EXPECT_EQ(*parser.scanner().cursor(), '\0');
  }
}

TEST(CompactVariable, NameTypeAndLength) {
  TxtWzParser parser("my name\nDate 11 next", nullptr);
  TxtWzVar variable;
  parser.ParseVarName(&variable);
  parser.ParseDataType(&variable);
  parser.ParseVarLength(&variable);
  EXPECT_EQ(variable.name, "my name");
  EXPECT_EQ(variable.upperName, "MY NAME");
  EXPECT_EQ(variable.formatType, kFormatDate);
  EXPECT_EQ(variable.width, 11u);
  EXPECT_EQ(variable.maxStringLength, 11u);
  EXPECT_STREQ(parser.scanner().cursor(), "next");
}

TEST(CompactVariable, AnUnknownTypeWordLeavesTheTypeAlone) {
  TxtWzParser parser("mtime", nullptr);
  TxtWzVar variable;
  parser.ParseDataType(&variable);
  EXPECT_EQ(variable.formatType, 0u);
}

TEST(CompactVariable, ALongNameIsCutTo1023Bytes) {
  const std::string text = std::string(5000, 'n') + "\nnext";
  TxtWzParser parser(text.c_str(), nullptr);
  TxtWzVar variable;
  parser.ParseVarName(&variable);
  EXPECT_EQ(variable.name, std::string(1023, 'n'));
  EXPECT_STREQ(parser.scanner().cursor(), "next");
}

}  // namespace
}  // namespace textwizard
