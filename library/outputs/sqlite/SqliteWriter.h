// SQLite databases (.sqlite).
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "library/outputs/ColumnWriter.h"
#include "library/outputs/ProblemRow.h"

struct sqlite3;
struct sqlite3_stmt;

namespace library {

// Dates and times as ISO 8601 text, which the database's date functions read, or as the numbers
// behind them.
enum class SqliteTimes : std::uint8_t { kText, kNumbers };

// The system would not take what was written: a full disk, for one.
class SqliteDiskError : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

// Writes one database in one transaction: the STRICT table `cases`, a table `variables` of names,
// labels, formats and types, a table `problems`, and a table `about` of keys and texts. Numbers are
// REAL, whole numbers INTEGER, texts TEXT; missing is NULL. Column names that differ in letter case
// only get a number, since the database would take them for one.
class SqliteWriter : public ColumnWriter {
 public:
  // Makes the database `path`, which does not exist or is an empty file. `severalFiles`: problems
  // have a first column `file`. Throws std::runtime_error
  // with a sentence when it cannot, or when it cannot hold the columns; as the other operations,
  // SqliteDiskError where the system is why.
  SqliteWriter(const std::string& path, std::vector<ColumnField> fields, SqliteTimes times,
               bool severalFiles = false);
  ~SqliteWriter() override;

  void Write(ColumnPieces batch) override;
  void AddProblem(const ProblemRow& problem);
  void Finish(const std::vector<std::pair<std::string, std::string>>& metadata) override;

 private:
  struct Close {
    void operator()(sqlite3* database) const;
  };
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

  [[noreturn]] void Fail() const;
  void Run(const std::string& sql);
  Statement Prepare(const std::string& sql) const;
  void Step(sqlite3_stmt* statement) const;
  void MakeTables();
  void BindCell(const ColumnBatch& batch, std::size_t column, std::size_t row) const;

  const std::vector<ColumnField> fields_;
  const SqliteTimes times_;
  const bool severalFiles_;
  // Declared first, closed last.
  std::unique_ptr<sqlite3, Close> database_;
  Statement insertCase_;
  Statement insertProblem_;
};

}  // namespace library
