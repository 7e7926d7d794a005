#include "cli/RunOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cli {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

RunOptions WithCases(const std::string& name) {
  RunOptions options;
  options.commandFile = "import.sps";
  options.cases = name;
  return options;
}

TEST(RunOptions, TheEndingNamesTheFormat) {
  EXPECT_EQ(CaseFormatOf(WithCases("a.csv")), CaseFormat::kCsv);
  EXPECT_EQ(CaseFormatOf(WithCases("a.b/c.TSV")), CaseFormat::kTsv);
  EXPECT_EQ(CaseFormatOf(WithCases("part-%d.jsonl")), CaseFormat::kJsonLines);
  EXPECT_EQ(CaseFormatOf(WithCases("-")), CaseFormat::kCsv);
  EXPECT_EQ(CaseFormatOf(WithCases("cases")), std::nullopt);
  EXPECT_EQ(CaseFormatOf(WithCases("a.csv/cases")), std::nullopt);
}

TEST(RunOptions, TheFormatThatWasAskedForWins) {
  RunOptions options = WithCases("a.csv");
  options.format = CaseFormat::kJsonLines;
  EXPECT_EQ(CaseFormatOf(options), CaseFormat::kJsonLines);
}

TEST(RunOptions, AnUnknownEndingIsWrong) {
  EXPECT_THAT(WhatIsWrong(WithCases("cases.txt"), false), HasSubstr("--format"));
  RunOptions named = WithCases("cases.txt");
  named.format = CaseFormat::kCsv;
  EXPECT_THAT(WhatIsWrong(named, false), IsEmpty());
}

TEST(RunOptions, AFormatWithoutCasesIsWrong) {
  RunOptions options = WithCases("");
  options.format = CaseFormat::kCsv;
  EXPECT_THAT(WhatIsWrong(options, false), HasSubstr("--cases"));
}

TEST(RunOptions, TheNumberOfTheCommandFillsEveryMark) {
  EXPECT_EQ(NameForCommand("a%d/b%d.csv", 12), "a12/b12.csv");
  EXPECT_EQ(NameForCommand("plain.csv", 3), "plain.csv");
  EXPECT_TRUE(IsPerCommand("x%d"));
  EXPECT_FALSE(IsPerCommand("x%s"));
}

TEST(RunOptions, SeveralCommandsNeedFilesOfTheirOwn) {
  EXPECT_THAT(WhatIsWrong(WithCases("a.csv"), true), HasSubstr("%d"));
  EXPECT_THAT(WhatIsWrong(WithCases("a%d.csv"), true), IsEmpty());
  EXPECT_THAT(WhatIsWrong(WithCases("-"), true), IsEmpty());
  RunOptions options = WithCases("");
  options.dictionary = "d.json";
  EXPECT_THAT(WhatIsWrong(options, true), HasSubstr("--dictionary d.json"));
  EXPECT_THAT(WhatIsWrong(options, false), IsEmpty());
  options.dictionary.clear();
  options.messages = "m.jsonl";
  EXPECT_THAT(WhatIsWrong(options, true), IsEmpty());
}

TEST(RunOptions, TwoOutputsAreNotTheSameFile) {
  RunOptions options = WithCases("a.csv");
  options.dictionary = "./a.csv";
  EXPECT_THAT(WhatIsWrong(options, false), HasSubstr("--cases and --dictionary"));
  options = WithCases("-");
  options.messages = "-";
  EXPECT_THAT(WhatIsWrong(options, false), HasSubstr("--cases and --messages"));
  options.messages = "m.jsonl";
  EXPECT_THAT(WhatIsWrong(options, false), IsEmpty());
}

TEST(RunOptions, TheCommandFileIsNoOutput) {
  EXPECT_THAT(WhatIsWrong(WithCases("./import.sps"), false), HasSubstr("ending"));
  RunOptions options = WithCases("");
  options.messages = "import.sps";
  EXPECT_THAT(WhatIsWrong(options, false), HasSubstr("overwrite the command file"));
}

}  // namespace
}  // namespace cli
