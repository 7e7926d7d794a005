// The ledger, the digest and the second reading as a person sees them from outside.

#include <gmock/gmock.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

class RunLedger : public ProgramTest {
 protected:
  void SetUp() override { WriteTowns(); }
  json Ledger(const std::string& bytes, const std::string& command,
              std::vector<std::string> arguments = {}) const {
    folder_.Write("d.txt", bytes);
    arguments.insert(arguments.end(), {"--dictionary", "d.json"});
    const Ended ended = Quiet("GET DATA /TYPE=TXT /FILE='d.txt' " + command + ".", arguments);
    EXPECT_EQ(ended.status, 0) << ended.err;
    return Json("d.json")["ledger"];
  }
  static void ExpectSums(const json& ledger) {
    const auto of = [&ledger](const char* key) { return ledger[key].get<long long>(); };
    EXPECT_EQ(of("bytes"), of("mark") + of("skipped") + of("records") + of("line_ends") +
                               of("dropped") + of("unread"));
    EXPECT_EQ(of("records_read"), of("records_in_cases") + of("records_without_case"));
    EXPECT_EQ(of("cases") * of("variables"),
              of("read") + of("empty") + of("null") + of("unreadable") + of("absent"));
  }
};

TEST_F(RunLedger, AccountsForEveryByteRecordAndCell) {
  EXPECT_EQ(Quiet(Towns(), {"--dictionary", "d.json"}).status, 0);
  const json dictionary = Json("d.json");
  EXPECT_EQ(dictionary["cases"], 3);
  const long long bytes = static_cast<long long>(folder_.Text("town.csv").size());
  const json expected = {{"bytes", bytes},
                         {"mark", 0},
                         {"skipped", 20},
                         {"records", bytes - 20 - 3},
                         {"line_ends", 3},
                         {"dropped", 0},
                         {"unread", 0},
                         {"records_read", 3},
                         {"records_in_cases", 3},
                         {"records_without_case", 0},
                         {"cases", 3},
                         {"variables", 4},
                         {"cells", 12},
                         {"read", 10},
                         {"empty", 1},
                         {"null", 0},
                         {"unreadable", 1},
                         {"absent", 0}};
  EXPECT_EQ(dictionary["ledger"], expected);
}

TEST_F(RunLedger, KnowsMarksEmptyLinesNulsAndWhatALimitLeft) {
  const std::string lines = "/DELCASE=LINE /DELIMITERS=',' ";
  const std::string bytes("\xEF\xBB\xBFtitle\r\n\r\n1,NA\r\n\r\n2\0,x\r\n3,4\r\n", 31);
  const json ledger = Ledger(bytes, "/ENCODING='UTF8' /FIRSTCASE=2 /IMPORTCASE=FIRST 2 " + lines +
                                        "/VARIABLES=a F4.0 b F4.0");
  ExpectSums(ledger);
  EXPECT_EQ(ledger["bytes"], 31);
  EXPECT_EQ(ledger["mark"], 3);
  EXPECT_EQ(ledger["skipped"], 7 + 2 + 2);
  EXPECT_EQ(ledger["records"], 4 + 3);
  EXPECT_EQ(ledger["line_ends"], 4);
  EXPECT_EQ(ledger["dropped"], 1);
  EXPECT_EQ(ledger["unread"], 5);
  EXPECT_EQ(ledger["null"], 1);
  EXPECT_EQ(ledger["unreadable"], 1);
}

TEST_F(RunLedger, CountsAbsentCells) {
  const json ledger =
      Ledger("1,2\n3\n", "/DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F4.0 b F4.0 c A3");
  ExpectSums(ledger);
  EXPECT_EQ(ledger["absent"], 1 + 2);
}

TEST_F(RunLedger, BalancesForEveryArrangementAndEncoding) {
  using std::string_literals::operator""s;
  ExpectSums(
      Ledger("1 2 3\n4\n5 6 7\n", "/DELCASE=VARIABLES 2 /DELIMITERS=' ' /VARIABLES=a F4.0 b F4.0"));
  ExpectSums(
      Ledger("12\n\n34", "/ARRANGEMENT=FIXED /FIXCASE=2 /VARIABLES=/1 a 0-1 F2.0 /2 b 0-1 A2"));
  ExpectSums(
      Ledger("\xFF\xFE"
             "1\0\r\0\n\0\n\0"
             "2\0\0\0x\0\n\0"
             "3"s,
             "/ENCODING='UTF16' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F4.0"));
  ExpectSums(Ledger("", "/DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F4.0"));
}

TEST_F(RunLedger, OfStandardInputIsThatOfWhatWasReadFromIt) {
  folder_.Write("command.sps",
                "GET DATA /TYPE=TXT /FILE='-' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F4.0.");
  EXPECT_EQ(Run({"run", "--quiet", "command.sps", "--dictionary", "d.json", "--rejects", "r.txt"},
                "1\nx\n")
                .status,
            0);
  EXPECT_EQ(Json("d.json")["ledger"]["bytes"], 4);
  EXPECT_EQ(folder_.Text("r.txt"), "x\n");
}

TEST_F(RunLedger, TheTerminalTellsProblemsAndLedger) {
  folder_.Write("d.txt", "zip,fee\n90501,1\n90502,\n10001,x\n");
  const Ended ended = Shown(
      "GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=',' /FIRSTCASE=2"
      " /VARIABLES=zip F5.0 fee F4.0.",
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
               "ledger: 31 bytes = 8 skipped + 20 records + 3 line ends; 3 records; 6 cells "
               "= 4 read + 1 empty + 1 unreadable\n"));
}

TEST_F(RunLedger, ACleanImportSaysZeroProblems) {
  folder_.Write("d.txt", "1\n");
  EXPECT_THAT(
      Shown("GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F4.0.",
            {"--show", "0"})
          .out,
      EndsWith("1 case, 1 variable\n0 problems\n"
               "ledger: 2 bytes = 1 records + 1 line ends; 1 record; 1 cell = 1 read\n"));
}

TEST_F(RunLedger, TheDigestIsALine) {
  const Ended ended = Quiet(Towns(), {"--digest"});
  EXPECT_THAT(ended.out, MatchesRegex("digest: [0-9a-f]{32}\n"));
  EXPECT_THAT(ended.err, IsEmpty());
  EXPECT_EQ(Quiet(Towns(), {"--digest", "--workers", "3"}).out, ended.out);
  EXPECT_NE(Quiet(Towns("/IMPORTCASE=FIRST 2"), {"--digest"}).out, ended.out);
}

TEST_F(RunLedger, TheDigestOfAnImportWithoutCasesIsZero) {
  folder_.Write("d.txt", "");
  EXPECT_EQ(
      Quiet("GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F4.0.",
            {"--digest"})
          .out,
      "digest: 00000000000000000000000000000000\n");
}

TEST_F(RunLedger, TheDigestLeavesAnOutputOnStandardOutputWhole) {
  const Ended ended = Quiet(Towns(), {"--digest", "--cases", "-"});
  EXPECT_THAT(ended.out, Not(HasSubstr("digest")));
  EXPECT_THAT(ended.err, MatchesRegex("digest: [0-9a-f]{32}\n"));
}

TEST_F(RunLedger, EveryCommandHasItsDigest) {
  const Ended ended = Quiet(Towns() + Towns(), {"--digest"});
  EXPECT_THAT(ended.out, MatchesRegex("digest: ([0-9a-f]{32})\ndigest: ([0-9a-f]{32})\n"));
}

TEST_F(RunLedger, AFailedCommandHasNone) {
  EXPECT_THAT(
      Quiet("GET DATA /TYPE=TXT /FILE='none' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F4.0.",
            {"--digest"})
          .out,
      IsEmpty());
}

TEST_F(RunLedger, ASecondReadingOnTheOtherEngineAgrees) {
  std::string bytes;
  for (int line = 0; line < 30000; ++line) {
    bytes += std::to_string(line) + (line % 9 == 0 ? ",x\n" : ",3\n");
  }
  folder_.Write("d.txt", bytes);
  for (const char* command :
       {"/DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F8.0 b F4.0",
        "/DELCASE=VARIABLES 2 /DELIMITERS=',' /VARIABLES=a F8.0 b F4.0",
        "/ARRANGEMENT=FIXED /VARIABLES=/1 a 0-3 F4.0 b 4-7 A4",
        "/IMPORTCASE=PERCENT 20 /DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F8.0 b F4.0"}) {
    const Ended ended = Quiet("GET DATA /TYPE=TXT /FILE='d.txt' " + std::string(command) + ".",
                              {"--verify", "--cases", "c.csv"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_THAT(ended.err, IsEmpty());
    EXPECT_TRUE(folder_.Holds("c.csv"));
  }
}

TEST_F(RunLedger, ASecondReadingIsTold) {
  EXPECT_THAT(
      Shown(Towns(), {"--verify"}).out,
      HasSubstr("verified: a second reading on one thread gave the same cases, problems and "
                "ledger\n"));
  EXPECT_THAT(Shown("GET DATA /TYPE=TXT /FILE='town.csv' /ARRANGEMENT=FIXED /FIXCASE=2000 "
                    "/VARIABLES=/1 a 0-3 A4.",
                    {"--verify"})
                  .out,
              HasSubstr("verified: a second reading in blocks of another size gave the same cases, "
                        "problems and ledger\n"));
  // Where standard output is data, on the other stream.
  const Ended piped = Shown(Towns(), {"--verify", "--cases", "-"});
  EXPECT_THAT(piped.out, Not(HasSubstr("verified")));
  EXPECT_THAT(piped.err, HasSubstr("verified: a second reading on one thread"));
}

TEST_F(RunLedger, TheMapIsNotShownTwiceBySecondReadings) {
  const Ended ended = Shown(Towns("/MAP"), {"--verify"});
  const std::size_t first = ended.out.find("Data written to the working file.");
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(ended.out.find("Data written to the working file.", first + 1), std::string::npos);
}

}  // namespace
}  // namespace program
