// What detection saw, and the warnings that come of it, as a person sees them from outside.

#include <gmock/gmock.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class RunEvidence : public ProgramTest {
 protected:
  void SetUp() override { WriteTowns(); }
  Ended Shown(const std::string& command, std::vector<std::string> arguments = {}) const {
    folder_.Write("command.sps", command);
    arguments.insert(arguments.begin(), {"run", "command.sps"});
    return Run(arguments);
  }
};

TEST_F(RunEvidence, EvidenceIsThatOfAutoVariables) {
  folder_.Write("d.txt", "a,b,c\n007,12/31/2019,x\n,01/02/2020,y\n12345,03/04/2020,z\n");
  const Ended ended = Quiet(
      "GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=',' /FIRSTCASE=2"
      " /VARIABLES=a AUTO b AUTO c A3.",
      {"--dictionary", "d.json"});
  EXPECT_EQ(ended.status, 0);
  const json variables = Json("d.json")["variables"];
  EXPECT_FALSE(variables[2].contains("evidence"));
  const json& number = variables[0]["evidence"];
  EXPECT_EQ(number["numbers"], 2);
  EXPECT_EQ(number["empties"], 1);
  EXPECT_EQ(number["share"], 1.0);
  EXPECT_EQ(number["leading_zeros"],
            (json{{"count", 1}, {"first_value", "007"}, {"first_line", 2}}));
  EXPECT_EQ(number["longest"], (json{{"bytes", 5}, {"line", 4}, {"value", "12345"}}));
  const json& date = variables[1]["evidence"];
  EXPECT_EQ(date["dates"], 3);
  EXPECT_EQ(date["date_layouts"][0]["layout"], "MM/dd/yyyy");
  EXPECT_EQ(date["day_month"]["verdict"], "decided");
  EXPECT_EQ(date["day_month"]["by_line"], 2);
}

TEST_F(RunEvidence, ExplainTellsWhatIsKnownOfAutoVariables) {
  folder_.Write("d.txt", "1\n2\nx\n");
  const std::string command =
      "GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=',' /DATATYPEMIN PERCENTAGE=60"
      " /VARIABLES=a AUTO.";
  EXPECT_THAT(
      Shown(command, {"--explain"}).out,
      HasSubstr("a: F1, 66.67 % numbers of 3 values; 1 string, the first \"x\" in line 3\n"));
  EXPECT_THAT(Shown(command).out, Not(HasSubstr("66.67 %")));
  // Also of a quiet run: it was asked for.
  EXPECT_THAT(Shown(command, {"--explain", "--quiet"}).out, HasSubstr("66.67 %"));
  EXPECT_THAT(Shown(Towns(), {"--explain"}).out, HasSubstr("no variable is AUTO"));
}

TEST_F(RunEvidence, TheTerminalTellsWarnings) {
  folder_.Write("d.txt", "zip,fee\n00501,1\n00502,\n10001,x\n");
  const Ended ended = Shown(
      "GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=',' /FIRSTCASE=2"
      " /VARIABLES=zip AUTO fee F4.0.",
      {"--show", "0"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(
      ended.out,
      EndsWith("3 cases, 2 variables\n"
               "\n"
               "1 problem\n"
               "Variable  Kind        Count  First line  First text\n"
               "fee       unreadable      1           4  x\n"
               "\n"
               "warning: zip: 2 values begin with a zero that the number does not keep, the "
               "first \"00501\" in line 2; declared as A5 they would\n"
               "ledger: 31 bytes = 8 skipped + 20 records + 3 line ends; 3 records; 6 cells "
               "= 4 read + 1 empty + 1 unreadable\n"));
}

}  // namespace
}  // namespace program
