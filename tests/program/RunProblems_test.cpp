// Problems, rejects and strictness as a person sees them from outside: every kind with its place.

#include <sstream>

#include <gmock/gmock.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class RunProblems : public ProgramTest {
 protected:
  // The problems of a command over d.txt with these bytes.
  std::vector<json> Problems(const std::string& bytes, const std::string& command,
                             std::vector<std::string> arguments = {}) const {
    folder_.Write("d.txt", bytes);
    arguments.insert(arguments.end(), {"--problems", "p.jsonl"});
    last_ = Quiet("GET DATA /TYPE=TXT /FILE='d.txt' " + command + ".", arguments);
    EXPECT_EQ(last_.status, 0) << last_.err;
    std::vector<json> rows;
    std::istringstream lines(folder_.Text("p.jsonl"));
    for (std::string line; std::getline(lines, line);) rows.push_back(json::parse(line));
    return rows;
  }
  // One row without its sentence.
  static json Row(const char* kind, int number, int line, int byte, const json& variable,
                  const json& format, const char* text) {
    return {{"kind", kind},         {"case", number},   {"line", line}, {"byte", byte},
            {"variable", variable}, {"format", format}, {"text", text}};
  }
  static std::vector<json> WithoutDetail(std::vector<json> rows) {
    for (json& row : rows) {
      EXPECT_FALSE(row["detail"].get<std::string>().empty());
      row.erase("detail");
    }
    return rows;
  }
  std::vector<json> Places(const std::string& bytes, const std::string& command,
                           std::vector<std::string> arguments = {}) const {
    return WithoutDetail(Problems(bytes, command, std::move(arguments)));
  }

  const std::string lines_ = "/DELCASE=LINE /DELIMITERS=',' /QUALIFIER='\"' ";
  mutable Ended last_;
};

TEST_F(RunProblems, UnreadableNumbers) {
  EXPECT_THAT(Places("1,x\n,none\n3,4\n", lines_ + "/VARIABLES=a F4.0 b F8.2"),
              ElementsAre(Row("unreadable", 1, 1, 2, "b", "F8.2", "x"),
                          Row("unreadable", 2, 2, 5, "b", "F8.2", "none")));
}

TEST_F(RunProblems, BlankEmptyAndNullTextsAreNone) {
  EXPECT_THAT(Places("1,\n2, \n3,NA\n4,N/A\n5,NULL\n6,null\n7,NaN\n8,nan\n9,.\n10,-\n",
                     lines_ + "/VARIABLES=a F4.0 b F8.2"),
              IsEmpty());
  const auto rows =
      Places("1,NA\n2,-99\n", lines_ + "/VARIABLES=a F4.0 b F8.2", {"--null", "-99,none"});
  EXPECT_THAT(rows, ElementsAre(Row("unreadable", 1, 1, 2, "b", "F8.2", "NA")));
}

TEST_F(RunProblems, ANullTextIsMissingAlsoWhereAFormatReadsIt) {
  folder_.Write("d.txt", "1,-99\n");
  const Ended ended =
      Quiet("GET DATA /TYPE=TXT /FILE='d.txt' " + lines_ + "/VARIABLES=a F4.0 b F8.2.",
            {"--null", "-99", "--cases", "c.csv"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(folder_.Text("c.csv"), "a,b\n1,\n");
}

TEST_F(RunProblems, RoundedNumbers) {
  EXPECT_THAT(Places("1234567890123456789\n9007199254740992\n123456789012345\n0.1\n",
                     lines_ + "/VARIABLES=a F20.0"),
              ElementsAre(Row("rounded", 1, 1, 0, "a", "F20", "1234567890123456789")));
}

TEST_F(RunProblems, CutStrings) {
  EXPECT_THAT(Places("Graubuenden\nBern\n", lines_ + "/VARIABLES=a A4"),
              ElementsAre(Row("cut", 1, 1, 0, "a", "A4", "Graubuenden")));
}

TEST_F(RunProblems, UndecodableBytes) {
  EXPECT_THAT(Places("1,a\xFFz\n", "/ENCODING='UTF8' " + lines_ + "/VARIABLES=a F4.0 b A8"),
              ElementsAre(Row("undecodable", 1, 1, 2, "b", "A8", "a\xEF\xBF\xBDz")));
}

TEST_F(RunProblems, FewFields) {
  const auto rows = Problems("1,2,3\n1\n", lines_ + "/VARIABLES=a F4.0 b F4.0 c F4.0");
  EXPECT_THAT(WithoutDetail(rows), ElementsAre(Row("few-fields", 2, 2, 6, nullptr, nullptr, "1")));
  EXPECT_THAT(rows[0]["detail"].get<std::string>(), HasSubstr("2 fields are missing"));
}

TEST_F(RunProblems, Surplus) {
  EXPECT_THAT(Places("1,2\n1,2,x,y\n1,2,, \n", lines_ + "/VARIABLES=a F4.0 b F4.0"),
              ElementsAre(Row("surplus", 2, 2, 4, nullptr, nullptr, "x,y")));
}

TEST_F(RunProblems, OpenQuotes) {
  const auto rows = Places("1,\"two\nlines\"\n", lines_ + "/VARIABLES=a F4.0 b A20");
  ASSERT_FALSE(rows.empty());
  EXPECT_EQ(rows[0], Row("open-quote", 1, 1, 2, "b", "A20", "two"));
}

TEST_F(RunProblems, StrayQuotes) {
  EXPECT_THAT(Places("1,5\" pipe\n", lines_ + "/VARIABLES=a F4.0 b A20"),
              ElementsAre(testing::ResultOf([](const json& row) { return row["kind"]; },
                                            json("stray-quote"))));
  EXPECT_THAT(
      Places("1,5\" pipe\n", lines_ + "/VARIABLES=a F4.0 b A20", {"--keep-stray-qualifiers"}),
      IsEmpty());
}

TEST_F(RunProblems, ShortRecords) {
  EXPECT_THAT(Places("12345678\n123\n", "/ARRANGEMENT=FIXED /VARIABLES=/1 a 0-3 F4.0 b 4-7 F4.0"),
              ElementsAre(Row("short-record", 2, 2, 9, "b", "F4", "123")));
}

TEST_F(RunProblems, IncompleteCases) {
  const auto rows =
      Problems("1 2 3 4 5\n", "/DELCASE=VARIABLES 2 /DELIMITERS=' ' /VARIABLES=a F4.0 b F4.0");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0]["kind"], "incomplete-case");
  EXPECT_EQ(rows[0]["line"], 1);
}

TEST_F(RunProblems, NulBytes) {
  const auto rows = Problems(std::string("1,a\0\0b\n2,c\n", 11), lines_ + "/VARIABLES=a F4.0 b A8");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0]["kind"], "nul");
  EXPECT_EQ(rows[0]["line"], 1);
  EXPECT_THAT(rows[0]["detail"].get<std::string>(), StartsWith("2 NUL bytes were dropped"));
}

TEST_F(RunProblems, LinesAndBytesAreThoseOfTheFile) {
  // A mark, a title line, an empty line; then CR LF.
  EXPECT_THAT(Places("\xEF\xBB\xBFtitle\r\n\r\n1,2\r\n1,x\r\n",
                     "/ENCODING='UTF8' /FIRSTCASE=2 " + lines_ + "/VARIABLES=a F4.0 b F4.0"),
              ElementsAre(Row("unreadable", 2, 4, 19, "b", "F4", "x")));
  // UTF-16 counts two bytes a character.
  using std::string_literals::operator""s;
  EXPECT_THAT(Places("\xFF\xFE"
                     "1\0,\0"
                     "2\0\n\0"
                     "1\0,\0x\0\n\0"s,
                     "/ENCODING='UTF16' " + lines_ + "/VARIABLES=a F4.0 b F4.0"),
              ElementsAre(Row("unreadable", 2, 2, 14, "b", "F4", "x")));
}

TEST_F(RunProblems, TheTextHasAtMostTwoHundredCharactersAndNoControlCharacter) {
  const auto rows =
      Problems("1,a\tb" + std::string(500, 'x') + "\n", lines_ + "/VARIABLES=a F4.0 b F8.2");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0]["text"].get<std::string>(), "a\\tb" + std::string(196, 'x'));
}

TEST_F(RunProblems, RowsAreLimitedAndCountsAreExact) {
  std::string bytes;
  for (int line = 0; line < 5000; ++line) bytes += "x\n";
  EXPECT_EQ(Places(bytes, lines_ + "/VARIABLES=a F4.0", {"--problem-limit", "7"}).size(), 7U);
  EXPECT_THAT(Places(bytes, lines_ + "/VARIABLES=a F4.0", {"--problem-limit", "0"}), IsEmpty());
  folder_.Write("command.sps", "GET DATA /TYPE=TXT /FILE='d.txt' " + lines_ + "/VARIABLES=a F4.0.");
  const Ended ended = Run({"run", "command.sps", "--problems", "p.csv", "--problem-limit", "7"});
  EXPECT_THAT(ended.out, HasSubstr("\n5000 problems\n"));
}

TEST_F(RunProblems, AreTheSameForAnyNumberOfWorkers) {
  std::string bytes;
  for (int line = 0; line < 60000; ++line) {
    bytes += std::to_string(line) + (line % 7 == 0 ? ",x\n" : line % 11 == 0 ? "\n" : ",3\n");
  }
  folder_.Write("d.txt", bytes);
  std::string first;
  for (const char* workers : {"1", "2", "5"}) {
    Quiet("GET DATA /TYPE=TXT /FILE='d.txt' " + lines_ + "/VARIABLES=a F8.0 b F4.0.",
          {"--problems", "p.csv", "--workers", workers});
    if (first.empty()) first = folder_.Text("p.csv");
    EXPECT_EQ(folder_.Text("p.csv"), first) << workers;
  }
  // The header, and 8572 unreadable values and 4675 records without a second field.
  EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 1 + 8572 + 4675);
}

TEST_F(RunProblems, AsCsvTheyHaveAHeader) {
  folder_.Write("d.txt", "1,\"a,b\"\n");
  Quiet("GET DATA /TYPE=TXT /FILE='d.txt' " + lines_ + "/VARIABLES=a F4.0 b F8.2.",
        {"--problems", "p.csv"});
  EXPECT_THAT(folder_.Text("p.csv"),
              StartsWith("kind,case,line,byte,variable,format,text,detail\n"
                         "unreadable,1,1,2,b,F8.2,\"a,b\",\"F8.2 cannot read this text,"));
}

TEST_F(RunProblems, GoToStandardOutputWhole) {
  WriteTowns();
  folder_.Write("command.sps", Towns());
  const Ended ended = Run({"run", "command.sps", "--problems", "-"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.out, StartsWith("kind,case,line,byte,variable,format,text,detail\n"
                                    "unreadable,3,4,"));
  EXPECT_EQ(std::count(ended.out.begin(), ended.out.end(), '\n'), 2);
}

TEST_F(RunProblems, AnUnknownEndingIsWrongUsage) {
  WriteTowns();
  EXPECT_EQ(Quiet(Towns(), {"--problems", "p.txt"}).status, 2);
  EXPECT_EQ(Quiet(Towns(), {"--problems-format", "csv"}).status, 2);
  EXPECT_EQ(Quiet(Towns(), {"--problems", "p.txt", "--problems-format", "csv"}).status, 0);
}

TEST_F(RunProblems, OutputsOverwriteNothing) {
  WriteTowns();
  const std::string before = folder_.Text("town.csv");
  for (const char* option : {"--problems", "--rejects"}) {
    EXPECT_THAT(Quiet(Towns(), {option, "town.csv"}).err,
                HasSubstr("would overwrite the data file"));
    EXPECT_THAT(Quiet(Towns(), {option, "c.csv", "--cases", "c.csv"}).err, HasSubstr("are both"));
    EXPECT_THAT(Quiet(Towns() + Towns(), {option, "p.csv"}).err, HasSubstr("%d"));
    EXPECT_EQ(Quiet(Towns() + Towns(), {option, "p%d.csv"}).status, 0);
    EXPECT_TRUE(folder_.Holds("p1.csv") && folder_.Holds("p2.csv"));
  }
  EXPECT_EQ(folder_.Text("town.csv"), before);
}

TEST_F(RunProblems, RejectsAreImportedByTheSameCommand) {
  WriteTowns();
  EXPECT_EQ(Quiet(Towns(), {"--rejects", "r.csv"}).status, 0);
  EXPECT_EQ(folder_.Text("r.csv"), "id,town,founded,fee\n3,Olten,01/31/2020,none\n");
}

TEST_F(RunProblems, WithoutAProblemRejectsAreTheHead) {
  folder_.Write("d.txt", "\xEF\xBB\xBFtitle\n1\n");
  EXPECT_EQ(Quiet("GET DATA /TYPE=TXT /FILE='d.txt' /FIRSTCASE=2 " + lines_ + "/VARIABLES=a F4.0.",
                  {"--rejects", "r.txt"})
                .status,
            0);
  EXPECT_EQ(folder_.Text("r.txt"), "\xEF\xBB\xBFtitle\n");
}

TEST_F(RunProblems, StrictFailsWithProblemsAndRejectsWritten) {
  WriteTowns();
  const Ended ended = Quiet(Towns(), {"--strict", "--cases", "c.csv", "--dictionary", "d.json",
                                      "--problems", "p.csv", "--rejects", "r.csv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, StartsWith("error: --strict: 1 problem, the first in line 4"));
  EXPECT_FALSE(folder_.Holds("c.csv"));
  EXPECT_FALSE(folder_.Holds("d.json"));
  EXPECT_THAT(folder_.Text("p.csv"), HasSubstr("unreadable,3,4,"));
  EXPECT_THAT(folder_.Text("r.csv"), HasSubstr("3,Olten"));
}

TEST_F(RunProblems, StrictIsContentWithoutAProblem) {
  folder_.Write("d.txt", "1\n");
  const Ended ended = Quiet("GET DATA /TYPE=TXT /FILE='d.txt' " + lines_ + "/VARIABLES=a F4.0.",
                            {"--strict", "--cases", "c.csv"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(folder_.Text("c.csv"), "a\n1\n");
}

TEST_F(RunProblems, ACommandThatFailsWritesNone) {
  const Ended ended = Quiet("GET DATA /TYPE=TXT /FILE='none' " + lines_ + "/VARIABLES=a F4.0.",
                            {"--problems", "p.csv", "--rejects", "r.csv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(folder_.Count(), 0U);
}

TEST_F(RunProblems, AreThoseOfTheCasesThatAreDelivered) {
  EXPECT_THAT(Places("1\nx\ny\n", "/IMPORTCASE=FIRST 2 " + lines_ + "/VARIABLES=a F4.0"),
              ElementsAre(Row("unreadable", 2, 2, 2, "a", "F4", "x")));
}

TEST_F(RunProblems, OfASampleAreThoseOfTheKeptCases) {
  std::string bytes;
  for (int line = 0; line < 2000; ++line) bytes += "x\n";
  const auto rows = Problems(bytes, "/IMPORTCASE=PERCENT 10 " + lines_ + "/VARIABLES=a F4.0",
                             {"--seed", "1", "--dictionary", "d.json", "--cases", "c.csv"});
  const json dictionary = Json("d.json");
  EXPECT_EQ(static_cast<long long>(rows.size()), dictionary["cases"].get<long long>());
  ASSERT_GT(rows.size(), 50U);
  ASSERT_LT(rows.size(), 500U);
  for (std::size_t index = 0; index < rows.size(); ++index)
    EXPECT_EQ(rows[index]["case"], index + 1);
  EXPECT_EQ(dictionary["ledger"]["unreadable"], rows.size());
  EXPECT_EQ(dictionary["ledger"]["records_read"], 2000);
}

}  // namespace
}  // namespace program
