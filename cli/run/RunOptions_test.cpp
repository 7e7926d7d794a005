#include "cli/run/RunOptions.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/Threads.h"
#include "library/testing/TestFolder.h"

namespace cli {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const std::vector<ListedCommand> kOne = {{true, ""}};
const std::vector<ListedCommand> kTwo = {{true, ""}, {true, ""}};

RunOptions WithCases(const std::string& name) {
  RunOptions options;
  options.commandFile = "import.sps";
  options.cases = name;
  return options;
}

// The format of the only file of cases.
std::optional<library::CaseFormat> CaseFormatOf(const RunOptions& options) {
  const std::vector<CasesTarget> targets = CasesTargets(options);
  return targets.size() == 1 ? targets[0].format : std::nullopt;
}

TEST(RunOptions, WritingCasesHasTwoMoreWorkersUnlessTheirNumberIsGiven) {
  EXPECT_EQ(WorkersOf(RunOptions{}), 0);
  EXPECT_EQ(WorkersOf(WithCases("a.csv")), getLogicalCPUCount() + 2);
  RunOptions options = WithCases("a.parquet");
  options.workers = 3;
  EXPECT_EQ(WorkersOf(options), 3);
}

TEST(RunOptions, TheEndingNamesTheFormat) {
  EXPECT_EQ(CaseFormatOf(WithCases("a.csv")), library::CaseFormat::kCsv);
  EXPECT_EQ(CaseFormatOf(WithCases("a.b/c.TSV")), library::CaseFormat::kTsv);
  EXPECT_EQ(CaseFormatOf(WithCases("part-%d.jsonl")), library::CaseFormat::kJsonLines);
  EXPECT_EQ(CaseFormatOf(WithCases("a.arrow")), library::CaseFormat::kArrow);
  EXPECT_EQ(CaseFormatOf(WithCases("a.parquet")), library::CaseFormat::kParquet);
  EXPECT_EQ(CaseFormatOf(WithCases("a.sqlite")), library::CaseFormat::kSqlite);
  EXPECT_EQ(CaseFormatOf(WithCases("-")), library::CaseFormat::kCsv);
  EXPECT_EQ(CaseFormatOf(WithCases("cases")), std::nullopt);
  EXPECT_EQ(CaseFormatOf(WithCases("a.csv/cases")), std::nullopt);
}

TEST(RunOptions, TheFormatThatWasAskedForWins) {
  RunOptions options = WithCases("a.csv");
  options.format = library::CaseFormat::kJsonLines;
  EXPECT_EQ(CaseFormatOf(options), library::CaseFormat::kJsonLines);
}

TEST(RunOptions, AnUnknownEndingIsWrong) {
  EXPECT_THAT(WhatIsWrong(WithCases("cases.txt"), kOne), HasSubstr("--format"));
  RunOptions named = WithCases("cases.txt");
  named.format = library::CaseFormat::kCsv;
  EXPECT_THAT(WhatIsWrong(named, kOne), IsEmpty());
}

TEST(RunOptions, CasesMayGoToSeveralFilesByTheirEndings) {
  RunOptions options = WithCases("a.csv");
  options.outputs = {"b.parquet", "c.sqlite"};
  EXPECT_THAT(WhatIsWrong(options, kOne), IsEmpty());
  const std::vector<CasesTarget> targets = CasesTargets(options);
  ASSERT_EQ(targets.size(), 3U);
  EXPECT_EQ(targets[1].format, library::CaseFormat::kParquet);
  EXPECT_EQ(targets[2].name, "c.sqlite");
  options.outputs = {"b.doc"};
  EXPECT_THAT(WhatIsWrong(options, kOne), HasSubstr("--output b.doc"));
  options.outputs = {"a.csv"};
  EXPECT_THAT(WhatIsWrong(options, kOne), HasSubstr("are both"));
  options.outputs = {"b.csv"};
  EXPECT_THAT(WhatIsWrong(options, kTwo), HasSubstr("%d"));
}

TEST(RunOptions, AFormatWithoutCasesIsWrong) {
  RunOptions options = WithCases("");
  options.format = library::CaseFormat::kCsv;
  EXPECT_THAT(WhatIsWrong(options, kOne), HasSubstr("--cases"));
}

TEST(RunOptions, TheNumberOfTheCommandFillsEveryMark) {
  EXPECT_EQ(NameForCommand("a%d/b%d.csv", 12), "a12/b12.csv");
  EXPECT_EQ(NameForCommand("plain.csv", 3), "plain.csv");
  EXPECT_TRUE(IsPerCommand("x%d"));
  EXPECT_FALSE(IsPerCommand("x%s"));
}

TEST(RunOptions, SeveralCommandsNeedFilesOfTheirOwn) {
  EXPECT_THAT(WhatIsWrong(WithCases("a.csv"), kTwo), HasSubstr("%d"));
  EXPECT_THAT(WhatIsWrong(WithCases("a%d.csv"), kTwo), IsEmpty());
  EXPECT_THAT(WhatIsWrong(WithCases("-"), kTwo), IsEmpty());
  RunOptions options = WithCases("");
  options.dictionary = "d.json";
  EXPECT_THAT(WhatIsWrong(options, kTwo), HasSubstr("--dictionary d.json"));
  EXPECT_THAT(WhatIsWrong(options, kOne), IsEmpty());
  options.dictionary.clear();
  options.messages = "m.jsonl";
  EXPECT_THAT(WhatIsWrong(options, kTwo), IsEmpty());
}

TEST(RunOptions, TwoOutputsAreNotTheSameFile) {
  RunOptions options = WithCases("a.csv");
  options.dictionary = "./a.csv";
  EXPECT_THAT(WhatIsWrong(options, kOne), HasSubstr("--cases and --dictionary"));
  options = WithCases("-");
  options.messages = "-";
  EXPECT_THAT(WhatIsWrong(options, kOne), HasSubstr("--cases and --messages"));
  options.messages = "m.jsonl";
  EXPECT_THAT(WhatIsWrong(options, kOne), IsEmpty());
}

TEST(RunOptions, NumbersMakeNoTwoOutputsTheSameFile) {
  RunOptions options = WithCases("out%d.csv");
  options.messages = "out2.csv";
  EXPECT_THAT(WhatIsWrong(options, kOne), IsEmpty());
  EXPECT_THAT(WhatIsWrong(options, kTwo), HasSubstr("--cases and --messages are both out2.csv"));
  options.messages = "./out%d.csv";
  EXPECT_THAT(WhatIsWrong(options, kOne), HasSubstr("--cases and --messages"));
}

TEST(RunOptions, OnlyCommandsThatRunCount) {
  EXPECT_FALSE(SeveralRun({}));
  EXPECT_FALSE(SeveralRun(kOne));
  EXPECT_FALSE(SeveralRun({{true, ""}, {false, ""}}));
  EXPECT_TRUE(SeveralRun({{true, ""}, {false, ""}, {true, ""}}));
}

TEST(RunOptions, NoOutputIsTheDataFileOfItsCommand) {
  const library::TestFolder folder;
  const std::string data = folder.Write("data2.csv", "1\n");
  const std::vector<ListedCommand> commands = {{false, ""}, {true, data}};
  EXPECT_THAT(WhatIsWrong(WithCases(data), commands), HasSubstr("overwrite the data file"));
  EXPECT_THAT(WhatIsWrong(WithCases(folder / "data%d.csv"), commands),
              HasSubstr("overwrite the data file"));
  EXPECT_THAT(WhatIsWrong(WithCases(folder / "other%d.csv"), commands), IsEmpty());
  RunOptions options = WithCases("");
  options.dictionary = data;
  EXPECT_THAT(WhatIsWrong(options, commands), HasSubstr("--dictionary"));
  options.dictionary.clear();
  options.messages = data;
  EXPECT_THAT(WhatIsWrong(options, commands), HasSubstr("--messages"));
}

TEST(RunOptions, NoOutputIsTheDataFileOfAnotherCommand) {
  const library::TestFolder folder;
  const std::string first = folder.Write("in.csv", "1\n");
  const std::string second = folder.Write("out1.csv", "2\n");
  // What the first command writes is what the second one reads, under whatever name.
  std::filesystem::create_hard_link(second, folder / "linked1.csv");
  for (const char* name : {"out%d.csv", "linked%d.csv", "none/../out%d.csv"}) {
    EXPECT_THAT(WhatIsWrong(WithCases(folder / name), {{true, first}, {true, second}}),
                HasSubstr("would overwrite the data file of command 2"))
        << name;
  }
  // Also where the file is not there yet.
  EXPECT_THAT(
      WhatIsWrong(WithCases(folder / "new%d.csv"), {{true, first}, {true, folder / "new1.csv"}}),
      HasSubstr("would overwrite the data file of command 2"));
}

TEST(RunOptions, NoNumberedOutputIsTheCommandFile) {
  const library::TestFolder folder;
  RunOptions options = WithCases(folder / "import%d.csv");
  options.commandFile = folder.Write("import2.csv", "");
  EXPECT_THAT(WhatIsWrong(options, kTwo), HasSubstr("would overwrite the command file"));
  EXPECT_THAT(WhatIsWrong(options, kOne), IsEmpty());
}

TEST(RunOptions, NoOutputOfOneCommandIsAnOutputOfAnother) {
  RunOptions options = WithCases("a%d.csv");
  options.dictionary = "a1%d.csv";
  const std::vector<ListedCommand> eleven(11, {true, ""});
  EXPECT_THAT(WhatIsWrong(options, eleven), HasSubstr("--cases and --dictionary are both a11.csv"));
  EXPECT_THAT(WhatIsWrong(options, {eleven.begin(), eleven.end() - 1}), IsEmpty());
}

TEST(RunOptions, StandardInputIsReadOnce) {
  RunOptions options = WithCases("");
  const std::vector<ListedCommand> one = {{true, "a.csv"}, {true, "-"}};
  EXPECT_THAT(WhatIsWrong(options, one), IsEmpty());
  EXPECT_THAT(WhatIsWrong(options, {{true, "-"}, {true, "-"}}), HasSubstr("only once"));
  options.commandFile = "-";
  EXPECT_THAT(WhatIsWrong(options, kTwo), IsEmpty());
  EXPECT_THAT(WhatIsWrong(options, one), HasSubstr("only once"));
}

TEST(RunOptions, ADeviceIsNotOverwritten) {
  RunOptions options = WithCases("/dev/null");
  options.format = library::CaseFormat::kCsv;
  EXPECT_THAT(WhatIsWrong(options, {{true, "/dev/null"}}), IsEmpty());
}

TEST(RunOptions, TheCommandFileIsNoOutput) {
  EXPECT_THAT(WhatIsWrong(WithCases("./import.sps"), kOne), HasSubstr("ending"));
  RunOptions options = WithCases("");
  options.messages = "import.sps";
  EXPECT_THAT(WhatIsWrong(options, kOne), HasSubstr("overwrite the command file"));
}

}  // namespace
}  // namespace cli
