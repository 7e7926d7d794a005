// What detection saw, and the warnings that come of it, as a person sees them from outside.

#include <sstream>
#include <string>
#include <vector>

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
               "first \"00501\" in line 2: declare the variable as A5 to keep them\n"
               "ledger: 31 bytes = 8 skipped + 20 records + 3 line ends; 3 records; 6 cells "
               "= 4 read + 1 empty + 1 unreadable\n"));
}

// One column of AUTO values, cut by semicolons, and the program's warnings of it.
class RunEvidenceWarnings : public RunEvidence {
 protected:
  std::string Warnings(const std::string& bytes, std::vector<std::string> arguments = {},
                       const std::string& subcommands = "") const {
    folder_.Write("d.txt", bytes);
    arguments.insert(arguments.end(), {"--show", "0"});
    const Ended ended = Shown("GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=';'" +
                                  subcommands + " /VARIABLES=v AUTO.",
                              arguments);
    EXPECT_EQ(ended.status, 0) << ended.err;
    std::string warnings;
    std::istringstream lines(ended.out);
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("warning: ")) warnings += line + "\n";
    }
    return warnings;
  }
};

TEST_F(RunEvidenceWarnings, OfDatesOfWhichManyBecameMissing) {
  std::string bytes;
  for (int day = 13; day < 31; ++day) bytes += "12/" + std::to_string(day) + "/2020\n";
  EXPECT_EQ(Warnings(bytes), "");
  // The layout of the last date decides.
  EXPECT_EQ(
      Warnings(bytes + "31.12.2020\n"),
      "warning: v: 95 % of its values (18 of 19) are missing: AUTO chose EDATE10, which cannot "
      "read them, the first \"12/13/2020\" in line 1; ADATE10 reads that one: declare it in "
      "place of AUTO\n"
      "warning: v: some of its dates are day first (the first \"31.12.2020\" in line 19), "
      "others month first (the first \"12/13/2020\" in line 1); all were read day first "
      "(EDATE10)\n");
}

TEST_F(RunEvidenceWarnings, OfMoreThanOneInAHundredOnly) {
  std::string bytes = "x\n";
  for (int i = 0; i < 98; ++i) bytes += "1\n";
  const std::string most = " /DATATYPEMIN PERCENTAGE=90";
  EXPECT_EQ(
      Warnings(bytes, {}, most),
      "warning: v: 1.0 % of its values (1 of 99) are missing: AUTO chose F1, which cannot read "
      "them, the first \"x\" in line 1; no format reads that one: declare the variable as A1 "
      "to keep it\n");
  EXPECT_EQ(Warnings(bytes + "2\n", {}, most), "");
}

TEST_F(RunEvidenceWarnings, OfDatesThatCanBeReadInTwoWays) {
  EXPECT_EQ(
      Warnings("01/02/2020\n03/04/2020\n"),
      "warning: v: all of its dates can be day first or month first, the first \"01/02/2020\" "
      "in line 1; they were read month first (ADATE10): declare EDATE10 if they are the "
      "other\n");
  EXPECT_EQ(Warnings("01/02/2020\n12/31/2020\n"), "");
  EXPECT_EQ(Warnings("12/31/2020\n31/12/2020\n"),
            "warning: v: some of its dates are day first (the first \"31/12/2020\" in line 2), "
            "others month first (the first \"12/31/2020\" in line 1); it stays text (A10)\n");
}

TEST_F(RunEvidenceWarnings, OfCommasThatCanBeReadInTwoWays) {
  EXPECT_EQ(Warnings("1,234\n5,678\n"),
            "warning: v: its commas can be decimal characters or group digits, the first \"1,234\" "
            "in line 1; they were read as grouping: --decimal comma reads them as the other\n");
  EXPECT_EQ(Warnings("1,234\n5,678\n", {"--decimal", "comma"}),
            "warning: v: its commas can be decimal characters or group digits, the first \"1,234\" "
            "in line 1; they were read as decimal characters: --decimal point reads them as the "
            "other\n");
  EXPECT_EQ(Warnings("1,234\n5,678,901\n"), "");
  EXPECT_EQ(Warnings("$1,234\n$5,678\n"), "");
}

TEST_F(RunEvidenceWarnings, OfTheOtherDecimalCharacter) {
  EXPECT_EQ(
      Warnings("1,5\n2,25\n"),
      "warning: v: 100 % of its values (2 of 2) are missing: AUTO chose F4.2, which cannot read "
      "them, the first \"1,5\" in line 1; --decimal comma reads that one\n");
  EXPECT_EQ(Warnings("1,5\n2,25\n", {"--decimal", "comma"}), "");
}

TEST_F(RunEvidenceWarnings, OfDigitsThatANumberDoesNotKeep) {
  EXPECT_EQ(Warnings("7\n0\n0.5\n0042\n"),
            "warning: v: 1 value begins with a zero that the number does not keep, the first "
            "\"0042\" in line 4: declare the variable as A4 to keep it\n");
  EXPECT_EQ(Warnings("1234567890123456789\n12345678901234567890\n"),
            "warning: v: 2 numbers have more digits than a double keeps, the first "
            "\"1234567890123456789\" in line 1: declare the variable as A20 to keep every digit\n");
}

TEST_F(RunEvidenceWarnings, StandOnStandardErrorWhereStandardOutputIsData) {
  folder_.Write("d.txt", "007\n");
  const std::string command =
      "GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=';' /VARIABLES=v AUTO.";
  const Ended ended = Shown(command, {"--cases", "-"});
  EXPECT_EQ(ended.out, "v\n7\n");
  EXPECT_EQ(ended.err,
            "warning: v: 1 value begins with a zero that the number does not keep, the first "
            "\"007\" in line 1: declare the variable as A3 to keep it\n");
  EXPECT_EQ(Shown(command, {"--cases", "-", "--quiet"}).err, "");
}

}  // namespace
}  // namespace program
