#include "library/command/CommandFault.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

// The fault of a command of three lines, of which `rest` begins the second.
CommandFault FaultOf(const std::string& rest) {
  const std::string text = "GET DATA /TYPE=TXT /FILE='a.csv'\n  " + rest + ".\n";
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  EXPECT_TRUE(reader.Next(command) && command.ok) << command.error;
  return FindFault(command.tokens, text, {command.line, command.column, "GET DATA"}, "look");
}

struct Expected {
  std::string rest;
  std::uint32_t message;
  int line;
  int column;
  std::string words;
  std::string variable;
  std::string wayOut;  // a part of it
};

void ExpectFault(const Expected& expected) {
  SCOPED_TRACE(expected.rest);
  const CommandFault fault = FaultOf(expected.rest);
  EXPECT_EQ(fault.message, expected.message);
  EXPECT_EQ(fault.place.line, expected.line);
  EXPECT_EQ(fault.place.column, expected.column);
  EXPECT_EQ(fault.place.words, expected.words);
  EXPECT_EQ(fault.variable, expected.variable);
  EXPECT_THAT(fault.wayOut, HasSubstr(expected.wayOut));
}

TEST(CommandFault, ASubcommandThatIsRefused) {
  const std::string list = " /VARIABLES=x F8";
  const Expected faults[] = {
      {"/IMPORTCASE=PERCENT 101" + list, 2262, 2, 4, "IMPORTCASE=PERCENT 101", "", "PERCENT 10"},
      {"/IMPORTCASE=FRIST 5" + list, 2262, 2, 4, "IMPORTCASE=FRIST 5", "", "did you mean FIRST?"},
      {"/MAP /FIRSTCASE = 0" + list, 2259, 2, 9, "FIRSTCASE = 0", "", "FIRSTCASE=2"},
      {"/DELCASE=VARIABLES\n x" + list, 2260, 2, 4, "DELCASE=VARIABLES\n x", "", "DELCASE=LINE"},
      {"/ENCODING='latin1'" + list, 2280, 2, 4, "ENCODING='latin1'", "",
       "--locale-code-page latin1"},
      {"/IMPORTCASES=ALL" + list, 2256, 2, 4, "IMPORTCASES=ALL", "", "did you mean IMPORTCASE?"},
      {"/QUALIFIER='x'", 2256, 2, 4, "QUALIFIER='x'", "", "another subcommand"},
      {"/DELIMITERS=',' /DELIMITERS=';'" + list, 2257, 2, 20, "DELIMITERS=';'", "", "take this"},
      {"/MAP x /DELIMITERS=','" + list, 2267, 2, 8, "x", "", "every subcommand"},
      {"/FIRSTCASE 3" + list, 2267, 2, 4, "FIRSTCASE 3", "", "equals sign"},
      {"/ /MAP" + list, 2254, 2, 3, "/", "", "take the slash out"},
      {"/ARRANGEMENT=FIXD" + list, 2258, 2, 4, "ARRANGEMENT=FIXD", "", "did you mean FIXED?"},
      {"/ARRANGEMENT=FIXED /MAP /VARIABLES=x 0-3 F4", 2292, 2, 23, "MAP", "",
       "/ARRANGEMENT=DELIMITED"},
      {"/LEADINGSPACES IGNORE=MAYBE" + list, 2284, 2, 4, "LEADINGSPACES IGNORE=MAYBE", "",
       "IGNORE=YES"},
      {"/DATATYPEMIN PERCENTAGE=10" + list, 2297, 2, 4, "DATATYPEMIN PERCENTAGE=10", "",
       "PERCENTAGE=95"},
  };
  for (const Expected& fault : faults) ExpectFault(fault);
}

TEST(CommandFault, SubcommandsThatDoNotFitTogether) {
  const Expected faults[] = {
      {"/MAP /VARIABLES=x F8", 2255, 1, 1, "GET DATA", "", "/DELIMITERS="},
      {"/DELIMITERS=','", 2256, 2, 4, "DELIMITERS=','", "", "another subcommand"},
      {"/DELIMITERS=',' /MAP", 2255, 1, 1, "GET DATA", "", "/VARIABLES="},
      {"/FIXCASE=2 /DELIMITERS=',' /VARIABLES=x F8", 2252, 2, 4, "FIXCASE=2", "", "FIXED"},
      {"/DELIMITERS=',' /ARRANGEMENT=FIXED /VARIABLES=x 0-3 F4", 2253, 2, 4, "DELIMITERS=','", "",
       "take DELIMITERS out"},
      {"/DELIMITERS=',' /QUALIFIER=',' /VARIABLES=x F8", 2275, 2, 20, "QUALIFIER=','", "",
       "qualifier"},
      {"/DELIMITERS=',' /DELCASE=VARIABLES 3 /VARIABLES=x F8 y F8", 2270, 2, 20,
       "DELCASE=VARIABLES 3", "", "write DELCASE=VARIABLES 2"},
  };
  for (const Expected& fault : faults) ExpectFault(fault);
}

TEST(CommandFault, AVariableOfAList) {
  std::string many = "/DELIMITERS=',' /VARIABLES=\n";
  for (int number = 1; number <= 39; ++number) many += "v" + std::to_string(number) + " F8.2\n";
  const std::string list = "/DELIMITERS=',' /VARIABLES=a F8 ";
  const Expected faults[] = {
      {many + "   wrong DOLAR8.2\n last A5", 2265, 42, 4, "wrong DOLAR8.2", "wrong",
       "did you mean DOLLAR?"},
      {list + "b F50", 2265, 2, 35, "b F50", "b", "the width of F is 1 to 40"},
      {list + "b F8.9", 2265, 2, 35, "b F8.9", "b", "the width of F with 9 decimals is 10 to 40"},
      {list + "b F40.17", 2265, 2, 35, "b F40.17", "b", "at most 16 decimals"},
      {list + "b E", 2265, 2, 35, "b E", "b", "E needs a width, such as E12"},
      {list + "b", 2265, 2, 35, "b", "b", "write a format behind b"},
      {list + "A F8", 2272, 2, 35, "A", "A", "write for example A_2"},
      {list + "and F8", 2277, 2, 35, "and", "and", "and_"},
      {list + "1st F8", 2278, 2, 35, "1st", "1st", "write for example v_1st"},
      {list + "b. F8", 2278, 2, 35, "b.", "b.", "ends with a point"},
  };
  for (const Expected& fault : faults) ExpectFault(fault);
}

TEST(CommandFault, AVariableOfFixedColumns) {
  const std::string list = "/ARRANGEMENT=FIXED /FIXCASE=2 /VARIABLES=/1 a 0-3 F4 ";
  const Expected faults[] = {
      {list + "b F8", 2265, 2, 56, "b F8", "b", "from-to, counted from 0"},
      {list + "b 7-4 F8", 2265, 2, 56, "b 7-4", "b", "end before they begin"},
      {list + "/2 b 0-3", 2265, 2, 56, "/2 b 0-3", "b", "write a format behind 0-3"},
      {list + "/2 b 0-3 F4 /1 c 0-3 F4", 2265, 2, 68, "/1", "", "lower"},
      {list + "/ b 0-3 FF4", 2265, 2, 56, "/ b 0-3 FF4", "b", "there is no format FF4"},
  };
  for (const Expected& fault : faults) ExpectFault(fault);
}

TEST(CommandFault, AnEmptyNumberIsSpokenOf) {
  EXPECT_EQ(FaultOf("/IMPORTCASE=FIRST /VARIABLES=x F8").completion, "FIRST alone");
  EXPECT_EQ(FaultOf("/DELCASE=VARIABLES /VARIABLES=x F8").completion, "VARIABLES alone");
  EXPECT_THAT(FaultOf("/IMPORTCASE=FIRST 0 /VARIABLES=x F8").completion, IsEmpty());
}

TEST(CommandFault, ACommandWithoutOneHasFailedForItsFile) {
  ExpectFault({"/DELIMITERS=',' /VARIABLES=x F8", 2269, 1, 21, "FILE='a.csv'", "", "look"});
}

}  // namespace
}  // namespace library
