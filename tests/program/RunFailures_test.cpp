// Exit statuses, and what a run that fails leaves behind.

#include <gmock/gmock.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class RunFailures : public ProgramTest {
 protected:
  void SetUp() override { WriteTowns(); }
  const std::string noFile_ =
      "GET DATA /TYPE=TXT /FILE='none.csv' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=n F4.0.\n";
};

TEST_F(RunFailures, AFailedCommandLeavesNoCasesAndNoDictionary) {
  folder_.Write("c.csv", "as it was");
  const Ended ended = Quiet(noFile_, {"--cases", "c.csv", "--dictionary", "d.json"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(folder_.Text("c.csv"), "as it was");
  EXPECT_EQ(folder_.Count(), 2U);  // and the data
}

TEST_F(RunFailures, TheCommandsAfterAFailedOneStillRun) {
  const Ended ended = Quiet(noFile_ + Towns(), {"--cases", "c%d.csv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_FALSE(folder_.Holds("c1.csv"));
  EXPECT_THAT(folder_.Text("c2.csv"), StartsWith("id,town,founded,fee\n1,Bern"));
}

TEST_F(RunFailures, AnotherCommandIsAnErrorWithItsPlace) {
  const Ended ended = Quiet("LIST.\n" + Towns() + "\n  FREQUENCIES x.\n", {"--cases", "c%d.csv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, StartsWith("error: command.sps, line 1, column 1: "));
  EXPECT_THAT(ended.err, HasSubstr("\nerror: command.sps, line 5, column 3: "));
  EXPECT_TRUE(folder_.Holds("c2.csv"));
}

TEST_F(RunFailures, ALiteralThatIsNeverClosedIsAnErrorWithItsPlace) {
  const Ended ended =
      Quiet("GET DATA /TYPE=TXT\n /FILE='town.csv /DELCASE=LINE.\n", {"--messages", "m.jsonl"});
  EXPECT_EQ(ended.status, 1);
  const auto message = Json("m.jsonl");
  EXPECT_EQ(message["kind"], "error");
  EXPECT_THAT(message["text"].get<std::string>(), StartsWith("command.sps, line 2, column 8: "));
}

TEST_F(RunFailures, AMissingCommandFileIsNamed) {
  const Ended ended = Run({"run", "none.sps"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.err, "error: cannot read none.sps: No such file or directory\n");
  EXPECT_THAT(ended.out, IsEmpty());
}

TEST_F(RunFailures, ACommandFileThatIsAFolderIsNamed) {
  const Ended ended = Run({"run", "."});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.err, "error: cannot read .: Is a directory\n");
}

TEST_F(RunFailures, AFileWithoutCommandsIsToldAndNoFailure) {
  const Ended ended = Quiet(" \n/* nothing */\n");
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.err, "warning: command.sps holds no command\n");
}

TEST_F(RunFailures, ASecondCommandThatWouldOverwriteIsSaidBeforeAnythingRuns) {
  for (const auto& outputs : {std::vector<std::string>{"--cases", "c.csv"},
                              std::vector<std::string>{"--dictionary", "d.json"}}) {
    std::vector<std::string> arguments = outputs;
    arguments.insert(arguments.end(), {"--messages", "m.jsonl"});
    const Ended ended = Quiet(Towns("/MAP") + Towns(), arguments);
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.err, StartsWith("error: " + outputs[0]));
    EXPECT_THAT(ended.err, HasSubstr("%d"));
    EXPECT_THAT(ended.out, IsEmpty());
    EXPECT_EQ(folder_.Count(), 1U);
  }
}

TEST_F(RunFailures, NoCommandOverwritesWhatAnotherOneReads) {
  folder_.Write("out1.csv", "4\n5\n");
  const Ended ended =
      Quiet(Towns() + "GET DATA /TYPE=TXT /FILE='out1.csv' /DELIMITERS=',' /VARIABLES=n F4.0.\n",
            {"--cases", "out%d.csv"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.err, "error: --cases out1.csv would overwrite the data file of command 2\n");
  EXPECT_EQ(folder_.Text("out1.csv"), "4\n5\n");
  EXPECT_EQ(folder_.Count(), 2U);
}

TEST_F(RunFailures, ACommandThatCannotRunOverwritesNothing) {
  const Ended ended = Quiet(Towns() + "LIST.\n", {"--cases", "c.csv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_TRUE(folder_.Holds("c.csv"));
}

TEST_F(RunFailures, AFullDiskIsSaidAndLeavesNoHalfFile) {
  for (const char* output : {"--cases", "--dictionary", "--messages"}) {
    std::vector<std::string> arguments{output, "/dev/full"};
    if (std::string(output) == "--cases") arguments.insert(arguments.end(), {"--format", "csv"});
    const Ended ended = Quiet(Towns("/MAP"), arguments);
    EXPECT_EQ(ended.status, 2) << output;
    EXPECT_EQ(ended.err, "error: cannot write /dev/full: No space left on device\n") << output;
    EXPECT_EQ(folder_.Count(), 1U);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
  }
}

TEST_F(RunFailures, CasesThatCannotBeWrittenLeaveNoDictionary) {
  const Ended ended =
      Quiet(Towns(), {"--cases", "/dev/full", "--format", "csv", "--dictionary", "d.json"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(folder_.Count(), 1U);
}

TEST_F(RunFailures, ADictionaryThatCannotBeWrittenLeavesNoCases) {
  const Ended ended = Quiet(Towns(), {"--cases", "c.csv", "--dictionary", "/dev/full"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(folder_.Count(), 1U);
}

TEST_F(RunFailures, AFullDiskIsNoticedWhileReading) {
  std::string rows;
  for (int number = 0; number < 200000; ++number) rows += std::to_string(number) + "\n";
  folder_.Write("many.csv", rows);
  const Ended ended =
      Quiet("GET DATA /TYPE=TXT /FILE='many.csv' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=n F8.0.",
            {"--cases", "/dev/full", "--format", "csv", "--stats"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_THAT(ended.err, StartsWith("error: cannot write /dev/full"));
}

TEST_F(RunFailures, StandardOutputOnAFullDiskIsSaid) {
  folder_.Write("command.sps", Towns());
  const Ended ended = Shell("run command.sps >/dev/full");
  EXPECT_EQ(ended.status, 2);
  EXPECT_THAT(ended.err, HasSubstr("error: cannot write standard output"));
}

TEST_F(RunFailures, NothingThatIsForAClosedStreamGoesIntoAFile) {
  folder_.Write("command.sps", Towns() + "LIST.\n");
  EXPECT_EQ(Shell("run --quiet command.sps --cases right.csv").status, 1);
  const std::string cases = folder_.Text("right.csv");
  for (const char* closed : {">&-", "2>&-", "<&-", ">&- 2>&-", ">&- 2>&- <&-"}) {
    const int status = Shell(std::string("run command.sps --cases c.csv ") + closed).status;
    EXPECT_EQ(status, std::string(closed).substr(0, 3) == ">&-" ? 2 : 1) << closed;
    EXPECT_EQ(folder_.Text("c.csv"), cases) << closed;
  }
}

TEST_F(RunFailures, AFolderThatCannotBeWrittenIsSaid) {
  for (const char* target : {"/proc/c.csv", "none/c.csv"}) {
    const Ended ended = Quiet(Towns(), {"--cases", target});
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.err, StartsWith(std::string("error: cannot write ") + target + ": "));
    EXPECT_EQ(folder_.Count(), 1U);
  }
}

TEST_F(RunFailures, AnOutputThatIsAFolderIsSaid) {
  std::filesystem::create_directory(folder_ / "c.csv");
  const Ended ended = Quiet(Towns(), {"--cases", "c.csv"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.err, "error: cannot write c.csv: Is a directory\n");
}

TEST_F(RunFailures, TheDataFileIsNotOverwritten) {
  const std::string before = folder_.Text("town.csv");
  const std::string named = folder_ / "named.csv";
  std::filesystem::create_symlink("town.csv", named);
  for (const char* option : {"--cases", "--dictionary", "--messages"}) {
    for (const char* name : {"town.csv", "./town.csv", "named.csv"}) {
      // Also not by the messages of a command that fails.
      for (const std::string& command : {Towns(), Towns("/NONSENSE=1")}) {
        const Ended ended = Quiet(command, {option, name});
        EXPECT_EQ(ended.status, 2) << option << " " << name;
        EXPECT_THAT(ended.err, HasSubstr("would overwrite the data file"));
        EXPECT_EQ(folder_.Text("town.csv"), before);
      }
    }
  }
}

TEST_F(RunFailures, StandardInputThatWouldBeReadTwiceIsWrongUsage) {
  const Ended ended = Run({"run", "-", "--cases", "-"},
                          "GET DATA /TYPE=TXT /FILE='-' /DELCASE=LINE /DELIMITERS=','"
                          " /VARIABLES=n F4.0.\n");
  EXPECT_EQ(ended.status, 2);
  EXPECT_THAT(ended.err, HasSubstr("standard input can be read only once"));
  EXPECT_THAT(ended.out, IsEmpty());
}

TEST_F(RunFailures, ADataFileThatIsAFolderFailsTheCommand) {
  const Ended ended = Quiet(
      "GET DATA /TYPE=TXT /FILE='.' /DELCASE=LINE /DELIMITERS=','"
      " /VARIABLES=n F4.0.");
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, StartsWith("error: [2269]"));
}

}  // namespace
}  // namespace program
