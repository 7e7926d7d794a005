// What files of columns hold besides the cases: problems, dictionary, ledger; and whole numbers.

#include <memory>
#include <sstream>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class RunTables : public ProgramTest {
 protected:
  void SetUp() override { WriteTowns(); }

  // The rows of a query of a database in the folder: cells separated by "|".
  std::vector<std::string> Query(const std::string& name, const std::string& sql) const {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open_v2((folder_ / name).c_str(), &opened, SQLITE_OPEN_READONLY, nullptr),
              SQLITE_OK);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, sqlite3_close);
    std::vector<std::string> rows;
    const auto collect = [](void* into, int count, char** cells, char**) {
      std::string row;
      for (int i = 0; i < count; ++i) {
        row += (i == 0 ? "" : "|") + std::string(cells[i] == nullptr ? "(null)" : cells[i]);
      }
      static_cast<std::vector<std::string>*>(into)->push_back(row);
      return 0;
    };
    EXPECT_EQ(sqlite3_exec(opened, sql.c_str(), collect, &rows, nullptr), SQLITE_OK)
        << sqlite3_errmsg(opened);
    return rows;
  }
};

constexpr char kWholeCommand[] =
    "GET DATA /TYPE=TXT /FILE='n.csv' /DELCASE=LINE /DELIMITERS=','"
    " /VARIABLES=id F8.0 fee F8.2.";

TEST_F(RunTables, ADatabaseHoldsTheProblems) {
  folder_.Write("n.csv", "1,2.5\nx,3\n4,y\n");
  ASSERT_EQ(Quiet(kWholeCommand, {"-o", "out.sqlite"}).status, 0);
  EXPECT_THAT(Query("out.sqlite",
                    "SELECT kind, \"case\", line, byte, variable, format, text FROM problems"),
              ElementsAre("unreadable|2|2|6|id|F8|x", "unreadable|3|3|12|fee|F8.2|y"));
  EXPECT_THAT(Query("out.sqlite", "SELECT detail FROM problems WHERE variable = 'id'"),
              ElementsAre(HasSubstr("so the value is missing")));
}

TEST_F(RunTables, ADatabaseHoldsNoMoreProblemsThanTheLimit) {
  folder_.Write("n.csv", "1,2.5\nx,3\n4,y\n");
  ASSERT_EQ(Quiet(kWholeCommand, {"-o", "out.sqlite", "--problem-limit", "1"}).status, 0);
  EXPECT_THAT(Query("out.sqlite", "SELECT variable FROM problems"), ElementsAre("id"));
}

TEST_F(RunTables, ADatabaseHoldsDictionaryAndLedger) {
  ASSERT_EQ(Quiet(Towns(), {"-o", "out.sqlite", "--dictionary", "d.json"}).status, 0);
  const auto about = Query("out.sqlite", "SELECT key, value FROM about ORDER BY key");
  ASSERT_THAT(about, SizeIs(2));
  const std::string first = "textwizard.dictionary|";
  const std::string second = "textwizard.ledger|";
  ASSERT_TRUE(about[0].starts_with(first)) << about[0];
  ASSERT_TRUE(about[1].starts_with(second)) << about[1];
  const auto dictionary = nlohmann::json::parse(about[0].substr(first.size()));
  EXPECT_EQ(dictionary, Json("d.json"));
  EXPECT_EQ(nlohmann::json::parse(about[1].substr(second.size())), dictionary["ledger"]);
}

TEST_F(RunTables, FilesOfColumnsHoldDictionaryAndLedger) {
  ASSERT_EQ(Quiet(Towns(), {"-o", "out.parquet", "-o", "out.arrow"}).status, 0);
  for (const char* name : {"out.parquet", "out.arrow"}) {
    const std::string bytes = folder_.Text(name);
    EXPECT_THAT(bytes, HasSubstr("textwizard.dictionary")) << name;
    EXPECT_THAT(bytes, HasSubstr("\"format_code\":23")) << name;
    EXPECT_THAT(bytes, HasSubstr("textwizard.ledger")) << name;
  }
}

TEST_F(RunTables, NumbersWithoutDecimalsAreWholeWhereTheyAreAskedFor) {
  folder_.Write("n.csv", "1,2.5\n,3\n");
  ASSERT_EQ(Quiet(kWholeCommand, {"-o", "plain.sqlite"}).status, 0);
  EXPECT_THAT(Query("plain.sqlite", "SELECT typeof(id), typeof(fee) FROM cases"),
              ElementsAre("real|real", "null|real"));
  ASSERT_EQ(Quiet(kWholeCommand, {"-o", "whole.sqlite", "--integers"}).status, 0);
  EXPECT_THAT(Query("whole.sqlite", "SELECT typeof(id), typeof(fee) FROM cases"),
              ElementsAre("integer|real", "null|real"));
}

TEST_F(RunTables, AValueThatItsColumnCannotHoldIsAProblem) {
  folder_.Write("n.csv", "1,2.5\n1.5,3\n2.5,4\n");
  folder_.Write("command.sps", kWholeCommand);
  const std::vector<std::string> arguments = {"run",        "command.sps", "-o",
                                              "out.sqlite", "-o",          "out.arrow",
                                              "--integers", "--problems",  "rows.jsonl"};
  const Ended ended = Run(arguments);
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("warning: the column of id holds whole numbers up to 2^53, and "
                                   "2 values are missing in it, the first 1.5 in case 2"));
  EXPECT_THAT(Query("out.sqlite", "SELECT id FROM cases"), ElementsAre("1", "(null)", "(null)"));
  EXPECT_THAT(
      Query("out.sqlite", "SELECT kind, \"case\", line, byte, variable, text FROM problems"),
      ElementsAre("misfit|2|(null)|(null)|id|1.5"));
  const auto row = nlohmann::json::parse(folder_.Text("rows.jsonl"));
  EXPECT_EQ(row["kind"], "misfit");
  EXPECT_EQ(row["case"], 2);
  EXPECT_FALSE(row.contains("line"));
}

TEST_F(RunTables, AValueThatItsColumnCannotHoldIsForbiddenByStrict) {
  folder_.Write("n.csv", "1,2.5\n1.5,3\n");
  const Ended ended =
      Quiet(kWholeCommand, {"-o", "out.arrow", "--integers", "--strict", "--problems", "p.csv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("--strict: the column of id holds whole numbers"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out.arrow"));
  EXPECT_THAT(folder_.Text("p.csv"), HasSubstr("\nmisfit,2,,,id,F8,1.5,"));
  EXPECT_THAT(Quiet(kWholeCommand, {"-o", "out.arrow", "--strict"}).err, IsEmpty());
}

TEST_F(RunTables, ADatabaseOnAFullDiskIsSaidAndLeavesNoHalfFile) {
  std::string rows;
  for (int i = 0; i < 50000; ++i) rows += std::to_string(i) + ",2.5\n";
  folder_.Write("n.csv", rows);
  folder_.Write("command.sps", kWholeCommand);
  // Files of at most 64 kilobytes, which the shell counts in blocks of 512 or 1024 bytes.
  const Ended ended = Shell("run --quiet command.sps -o out.sqlite -o out.csv", "ulimit -f 64; ");
  EXPECT_EQ(ended.status, 2) << ended.err;
  EXPECT_THAT(ended.err, testing::StartsWith("error: cannot write out."));
  // The data of both and the command.
  EXPECT_EQ(folder_.Count(), 3U);
}

}  // namespace
}  // namespace program
