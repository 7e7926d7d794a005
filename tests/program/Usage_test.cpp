// Help, version and wrong usage.

#include <gmock/gmock.h>

#include "TextWizardVersion.h"
#include "tests/program/Program.h"

namespace program {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Usage : public ProgramTest {};

TEST_F(Usage, HelpShowsAnExampleOnEveryLevel) {
  const Ended program = Run({"--help"});
  EXPECT_EQ(program.status, 0);
  EXPECT_THAT(program.out, HasSubstr("textwizard run import.sps"));
  const Ended run = Run({"run", "--help"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.out, HasSubstr("Examples:\n  textwizard run import.sps\n"));
  EXPECT_THAT(run.out, HasSubstr("GET DATA /TYPE=TXT"));
  const Ended preview = Run({"preview", "--help"});
  EXPECT_EQ(preview.status, 0);
  EXPECT_THAT(preview.out, HasSubstr("Examples:\n  textwizard preview survey.csv\n"));
}

TEST_F(Usage, HelpThatCannotBeWrittenIsSaid) {
  for (const char* question : {"--help", "--version"}) {
    const Ended ended = Shell(std::string(question) + " >/dev/full");
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.err, HasSubstr("cannot write standard output"));
  }
}

TEST_F(Usage, ACountIsAWholeNumber) {
  for (const char* count : {"-1", "1.5", "ten", ""}) {
    const Ended ended = Run({"run", "c.sps", "--show", count});
    EXPECT_EQ(ended.status, 2) << count;
    EXPECT_THAT(ended.err, HasSubstr("not in range 0 to 9223372036854775807")) << count;
  }
}

TEST_F(Usage, HelpNamesEveryOption) {
  const std::string help = Run({"run", "--help"}).out;
  for (const char* option : {"--cases", "--format", "--values", "--dictionary", "--messages",
                             "--decimal", "--code-page", "--locale-code-page", "--workers",
                             "--show", "--stats", "--quiet", "--no-progress", "--seed"}) {
    EXPECT_THAT(help, HasSubstr(std::string("  ") + option));
  }
}

TEST_F(Usage, TheVersionIsTold) {
  const Ended ended = Run({"--version"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, "textwizard " TEXTWIZARD_VERSION "\n");
}

TEST_F(Usage, TheExampleOfTheHelpWorks) {
  folder_.Write("survey.csv",
                "id,visited,town,income\n1,02/29/2020,\"Bern, West\",52000\n2,,Chur,48000.5\n");
  const std::string help = Run({"run", "--help"}).out;
  const std::size_t begin = help.find("  GET DATA /TYPE=TXT");
  ASSERT_NE(begin, std::string::npos);
  folder_.Write("import.sps", help.substr(begin, help.find("\n\n", begin) - begin));
  const Ended ended = Run({"run", "import.sps", "--cases", "-"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out,
            "id,visited,town,income\n1,2020-02-29,\"Bern, West\",52000\n2,,Chur,48000.5\n");
}

TEST_F(Usage, WrongUsageIsStatusTwoAndPointsToTheHelp) {
  folder_.Write("c.sps", "");
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"frobnicate"},
      {"run"},
      {"run", "c.sps", "extra"},
      {"run", "c.sps", "--unknown"},
      {"run", "c.sps", "--cases"},
      {"run", "c.sps", "--cases", "x.csv", "--format", "xml"},
      {"run", "c.sps", "--values", "pretty"},
      {"run", "c.sps", "--decimal", "dot"},
      {"run", "c.sps", "--show", "-1"},
      {"run", "c.sps", "--show", "ten"},
      {"run", "c.sps", "--seed", "x"},
  };
  for (const auto& arguments : wrong) {
    const Ended ended = Run(arguments);
    EXPECT_EQ(ended.status, 2) << testing::PrintToString(arguments);
    EXPECT_THAT(ended.err, StartsWith("error: ")) << testing::PrintToString(arguments);
    EXPECT_THAT(ended.err, HasSubstr("--help'.\n")) << testing::PrintToString(arguments);
    EXPECT_THAT(ended.out, IsEmpty()) << testing::PrintToString(arguments);
  }
}

TEST_F(Usage, AnUnknownSubcommandIsNamed) {
  EXPECT_EQ(Run({"rum", "import.sps"}).err,
            "error: unknown subcommand: rum\nTry 'textwizard --help'.\n");
}

TEST_F(Usage, OptionsThatDoNotGoTogetherAreSaidBeforeAnythingRuns) {
  WriteTowns();
  const std::vector<std::vector<std::string>> wrong = {
      {"--cases", "cases.txt"},
      {"--cases", "cases"},
      {"--format", "csv"},
      {"--cases", "-", "--dictionary", "-"},
      {"--cases", "-", "--messages", "-"},
      {"--cases", "same.csv", "--dictionary", "./same.csv"},
      {"--cases", "c%d.csv", "--messages", "command.sps"},
  };
  for (const auto& arguments : wrong) {
    const Ended ended = Quiet(Towns("/MAP"), arguments);
    EXPECT_EQ(ended.status, 2) << testing::PrintToString(arguments);
    EXPECT_THAT(ended.err, StartsWith("error: --")) << testing::PrintToString(arguments);
    EXPECT_THAT(ended.out, IsEmpty()) << testing::PrintToString(arguments);
    EXPECT_EQ(folder_.Count(), 1U) << testing::PrintToString(arguments);
  }
}

}  // namespace
}  // namespace program
