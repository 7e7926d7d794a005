// What is written is read back by the database itself.
#include "library/outputs/sqlite/SqliteWriter.h"

#include <bit>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include "library/columns/ColumnBuilder.h"

namespace library {
namespace {

namespace fs = std::filesystem;

class SqliteWriterTest : public testing::Test {
 protected:
  void SetUp() override {
    path_ = (fs::temp_directory_path() / ("sqlite_writer_" + std::to_string(getpid()))).string();
    fs::remove(path_);
  }
  void TearDown() override { fs::remove(path_); }

  // The rows of a query: cells as "type:text", separated by "|".
  std::vector<std::string> Query(const std::string& sql) const {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open_v2(path_.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, sqlite3_close);
    sqlite3_stmt* prepared = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(opened, sql.c_str(), -1, &prepared, nullptr), SQLITE_OK)
        << sqlite3_errmsg(opened);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(prepared,
                                                                          sqlite3_finalize);
    std::vector<std::string> rows;
    while (sqlite3_step(prepared) == SQLITE_ROW) {
      std::string row;
      for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
        if (i != 0) row += "|";
        static constexpr const char* kTypes[] = {"", "int", "real", "text", "blob", "null"};
        const int type = sqlite3_column_type(prepared, i);
        row += std::string(kTypes[type]) + ":";
        if (type == SQLITE_NULL) continue;
        const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(prepared, i));
        row.append(text, static_cast<std::size_t>(sqlite3_column_bytes(prepared, i)));
      }
      rows.push_back(row);
    }
    return rows;
  }

  std::string path_;
};

ColumnField Field(const std::string& name, ColumnType type, std::size_t cell) {
  ColumnField field;
  field.name = name;
  field.variable = "v_" + name;
  field.format = "F8.2";
  field.width = 8;
  field.type = type;
  field.cell = cell;
  field.bytes = IsText(type) ? 8 : 0;
  return field;
}

OBS Text(const char (&eight)[9]) {
  OBS cell;
  std::memcpy(cell.bytes, eight, 8);
  return cell;
}

// A piece for each case.
ColumnPieces Batch(const std::vector<ColumnField>& fields, const std::vector<OBS>& cases) {
  ColumnMisfits misfits;
  ColumnPieces pieces;
  for (std::size_t at = 0; at < cases.size(); at += fields.size()) {
    pieces.Add(BuildColumns(fields, cases.data() + at, 1, fields.size(),
                            static_cast<std::int64_t>(pieces.size()), &misfits));
  }
  return pieces;
}

TEST_F(SqliteWriterTest, CasesAreRowsOfAStrictTable) {
  const std::vector<ColumnField> fields{Field("number", ColumnType::kFloat64, 0),
                                        Field("whole", ColumnType::kInt64, 1),
                                        Field("day", ColumnType::kDate32, 2),
                                        Field("moment", ColumnType::kTimestampMicros, 3),
                                        Field("time", ColumnType::kDurationMicros, 4),
                                        Field("text", ColumnType::kUtf8, 5)};
  const auto number = [](double value) { return std::bit_cast<OBS>(value); };
  SqliteWriter writer(path_, fields, SqliteTimes::kText);
  writer.Write(Batch(
      fields,
      {number(1.5), number(7), number(12219379200.0 + 86400), number(12219379200.0 + 1.25),
       number(3661), Text("it's    "), number(kSystemMissing), number(kSystemMissing),
       number(kSystemMissing), number(kSystemMissing), number(kSystemMissing), Text("        ")}));
  writer.Finish({{"ledger", "{}"}});
  EXPECT_EQ(Query("SELECT * FROM cases"),
            (std::vector<std::string>{"real:1.5|int:7|text:1970-01-02|text:1970-01-01T00:00:01.25|"
                                      "text:1:01:01|text:it's",
                                      "null:|null:|null:|null:|null:|text:"}));
  EXPECT_EQ(Query("SELECT column_name, variable, format, width FROM variables WHERE position = 2"),
            (std::vector<std::string>{"text:whole|text:v_whole|text:F8.2|int:8"}));
  EXPECT_EQ(Query("SELECT * FROM about"), (std::vector<std::string>{"text:ledger|text:{}"}));
  EXPECT_EQ(Query("PRAGMA integrity_check"), (std::vector<std::string>{"text:ok"}));
  EXPECT_EQ(Query("SELECT strict FROM pragma_table_list WHERE name = 'cases'"),
            (std::vector<std::string>{"int:1"}));
}

TEST_F(SqliteWriterTest, TimesMayBeTheNumbersBehindThem) {
  const std::vector<ColumnField> fields{Field("moment", ColumnType::kTimestampMicros, 0)};
  SqliteWriter writer(path_, fields, SqliteTimes::kNumbers);
  writer.Write(Batch(fields, {std::bit_cast<OBS>(13500000000.25)}));
  writer.Finish({});
  EXPECT_EQ(Query("SELECT * FROM cases"), (std::vector<std::string>{"real:13500000000.25"}));
}

TEST_F(SqliteWriterTest, NamesThatSqlFindsHardAreKeptAndThoseThatItTakesForOneGetANumber) {
  const std::vector<ColumnField> fields{
      Field("select", ColumnType::kInt8, 0), Field("a \"b\"", ColumnType::kInt8, 1),
      Field("Größe", ColumnType::kInt8, 2), Field("GRÖSSE", ColumnType::kInt8, 3),
      Field("", ColumnType::kInt8, 4)};
  SqliteWriter(path_, fields, SqliteTimes::kText).Finish({});
  EXPECT_EQ(Query("SELECT name FROM pragma_table_info('cases')"),
            (std::vector<std::string>{"text:select", "text:a \"b\"", "text:Größe", "text:GRÖSSE_2",
                                      "text:"}));
}

TEST_F(SqliteWriterTest, ProblemsHaveATable) {
  SqliteWriter writer(path_, {Field("a", ColumnType::kInt8, 0)}, SqliteTimes::kText);
  writer.AddProblem({"unreadable", 3, 4, 17, "a", "F8.2", "x", "not a number"});
  writer.AddProblem({"nul", 0, 9, -1, "", "", "", "dropped"});
  writer.Finish({});
  EXPECT_EQ(Query("SELECT kind, \"case\", line, byte, variable, text FROM problems"),
            (std::vector<std::string>{"text:unreadable|int:3|int:4|int:17|text:a|text:x",
                                      "text:nul|null:|int:9|null:|text:|text:"}));
}

TEST_F(SqliteWriterTest, MoreColumnsThanTheDatabaseHoldsAreRefusedWithAWayOut) {
  std::vector<ColumnField> fields;
  for (int i = 0; i < 40000; ++i)
    fields.push_back(Field("c" + std::to_string(i), ColumnType::kInt8, 0));
  try {
    const SqliteWriter writer(path_, fields, SqliteTimes::kText);
    FAIL() << "40,000 columns were taken";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("write .parquet"), std::string::npos) << error.what();
  }
}

TEST_F(SqliteWriterTest, ADatabaseThatCannotBeMadeSaysSo) {
  EXPECT_THROW(SqliteWriter("/nowhere/at/all.sqlite", {}, SqliteTimes::kText), std::runtime_error);
}

}  // namespace
}  // namespace library
