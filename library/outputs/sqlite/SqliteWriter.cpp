#include "library/outputs/sqlite/SqliteWriter.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>
#include <sqlite3.h>
#include <unicode/unistr.h>

#include "library/columns/NumberCells.h"
#include "library/outputs/ValueText.h"

namespace library {
namespace {

constexpr char kCasesTable[] = "cases";

// A name as SQL writes it.
std::string Quoted(std::string_view name) {
  std::string out = "\"";
  for (const char c : name) {
    // The language has no way to write NUL in a name.
    if (c == '\0') continue;
    if (c == '"') out += '"';
    out += c;
  }
  return out + '"';
}

// What names are compared by: the database knows ASCII letters' case only, other tools more.
std::string Folded(const std::string& name) {
  std::string out;
  icu::UnicodeString::fromUTF8(name).foldCase().toUTF8String(out);
  return out;
}

std::vector<std::string> UniqueNames(const std::vector<ColumnField>& fields) {
  std::set<std::string> taken;
  std::vector<std::string> names;
  names.reserve(fields.size());
  for (const ColumnField& field : fields) {
    std::string name = field.name;
    for (int number = 2; !taken.insert(Folded(name)).second; ++number) {
      name = fmt::format("{}_{}", field.name, number);
    }
    names.push_back(std::move(name));
  }
  return names;
}

ValueKind KindOf(ColumnType type) {
  switch (type) {
    case ColumnType::kDate32:
      return ValueKind::kDate;
    case ColumnType::kTimestampMicros:
      return ValueKind::kDateTime;
    case ColumnType::kDurationMicros:
      return ValueKind::kTime;
    default:
      return ValueKind::kNumber;
  }
}

bool IsTime(ColumnType type) { return KindOf(type) != ValueKind::kNumber; }

const char* SqlType(ColumnType type, SqliteTimes times) {
  if (IsText(type) || (IsTime(type) && times == SqliteTimes::kText)) return "TEXT";
  return type == ColumnType::kInt64 || type == ColumnType::kInt8 ? "INTEGER" : "REAL";
}

// The host's number of a date's or time's value.
double HostNumber(const Column& column, ColumnType type, std::size_t row) {
  if (type == ColumnType::kDate32) {
    return static_cast<double>(column.values.As<std::int32_t>()[row] + kEpochDay) * 86400.0;
  }
  const auto micros = static_cast<long double>(column.values.As<std::int64_t>()[row]) / 1e6L;
  return static_cast<double>(type == ColumnType::kTimestampMicros ? micros + kEpochSeconds
                                                                  : micros);
}

void BindText(sqlite3_stmt* statement, int place, std::string_view text) {
  sqlite3_bind_text64(statement, place, text.empty() ? "" : text.data(), text.size(),
                      SQLITE_TRANSIENT, SQLITE_UTF8);
}

}  // namespace

void SqliteWriter::Close::operator()(sqlite3* database) const { sqlite3_close_v2(database); }
void SqliteWriter::Finalize::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

SqliteWriter::SqliteWriter(const std::string& path, std::vector<ColumnField> fields,
                           SqliteTimes times, bool severalFiles)
    : fields_(std::move(fields)), times_(times), severalFiles_(severalFiles) {
  sqlite3* database = nullptr;
  const int opened =
      sqlite3_open_v2(path.c_str(), &database,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXRESCODE, nullptr);
  database_.reset(database);
  if (opened != SQLITE_OK) Fail();
  // Nobody else sees the file before it is complete.
  Run("PRAGMA journal_mode=OFF");
  Run("PRAGMA synchronous=OFF");
  Run("PRAGMA locking_mode=EXCLUSIVE");
  const int most = sqlite3_limit(database_.get(), SQLITE_LIMIT_COLUMN, -1);
  if (fields_.size() > static_cast<std::size_t>(most)) {
    throw std::runtime_error(
        fmt::format("SQLite holds at most {} columns in a table, and there are {}: write .parquet, "
                    ".arrow or .csv instead",
                    most, fields_.size()));
  }
  Run("BEGIN");
  MakeTables();
}

SqliteWriter::~SqliteWriter() = default;

void SqliteWriter::Fail() const {
  switch (sqlite3_errcode(database_.get()) & 0xFF) {
    case SQLITE_FULL:
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
      throw SqliteDiskError(sqlite3_errmsg(database_.get()));
    default:
      break;
  }
  throw std::runtime_error(
      fmt::format("SQLite: {}", database_ ? sqlite3_errmsg(database_.get()) : "no memory"));
}

void SqliteWriter::Run(const std::string& sql) {
  if (sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail();
}

SqliteWriter::Statement SqliteWriter::Prepare(const std::string& sql) const {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(database_.get(), sql.c_str(), static_cast<int>(sql.size()), &statement,
                         nullptr) != SQLITE_OK) {
    Fail();
  }
  return Statement(statement);
}

void SqliteWriter::Step(sqlite3_stmt* statement) const {
  if (sqlite3_step(statement) != SQLITE_DONE) Fail();
  sqlite3_reset(statement);
}

void SqliteWriter::MakeTables() {
  const std::vector<std::string> names = UniqueNames(fields_);
  std::string columns;
  std::string places;
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (i != 0) columns += ", ", places += ", ";
    columns += Quoted(names[i]) + " " + SqlType(fields_[i].type, times_);
    places += "?";
  }
  Run(fmt::format("CREATE TABLE {} ({}) STRICT", kCasesTable, columns));
  Run("CREATE TABLE variables (position INTEGER PRIMARY KEY, column_name TEXT, variable TEXT, "
      "label TEXT, format TEXT, width INTEGER) STRICT");
  Run(fmt::format(
      "CREATE TABLE problems ({}kind TEXT, \"case\" INTEGER, line INTEGER, byte INTEGER, "
      "variable TEXT, format TEXT, text TEXT, detail TEXT) STRICT",
      severalFiles_ ? "file TEXT, " : ""));
  Run("CREATE TABLE about (key TEXT PRIMARY KEY, value TEXT) STRICT");
  const Statement variable = Prepare("INSERT INTO variables VALUES (?, ?, ?, ?, ?, ?)");
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    sqlite3_bind_int64(variable.get(), 1, static_cast<sqlite3_int64>(i + 1));
    BindText(variable.get(), 2, names[i]);
    BindText(variable.get(), 3, fields_[i].variable);
    BindText(variable.get(), 4, fields_[i].label);
    BindText(variable.get(), 5, fields_[i].format);
    sqlite3_bind_int(variable.get(), 6, fields_[i].width);
    Step(variable.get());
  }
  insertCase_ = Prepare(fmt::format("INSERT INTO {} VALUES ({})", kCasesTable, places));
  insertProblem_ = Prepare(fmt::format("INSERT INTO problems VALUES ({}?, ?, ?, ?, ?, ?, ?, ?)",
                                       severalFiles_ ? "?, " : ""));
}

void SqliteWriter::BindCell(const ColumnBatch& batch, std::size_t column, std::size_t row) const {
  sqlite3_stmt* const statement = insertCase_.get();
  const auto place = static_cast<int>(column + 1);
  if (batch.IsMissing(column, row)) {
    sqlite3_bind_null(statement, place);
    return;
  }
  const Column& values = batch.columns[column];
  const ColumnType type = fields_[column].type;
  switch (type) {
    case ColumnType::kFloat64:
      sqlite3_bind_double(statement, place, values.values.As<double>()[row]);
      return;
    case ColumnType::kInt64:
      sqlite3_bind_int64(statement, place, values.values.As<std::int64_t>()[row]);
      return;
    case ColumnType::kInt8:
      sqlite3_bind_int(statement, place, values.values.As<std::int8_t>()[row]);
      return;
    case ColumnType::kUtf8:
    case ColumnType::kLargeUtf8:
      BindText(statement, place, batch.TextAt(column, type, row));
      return;
    case ColumnType::kDate32:
    case ColumnType::kTimestampMicros:
    case ColumnType::kDurationMicros:
      break;
  }
  const double number = HostNumber(values, type, row);
  if (times_ == SqliteTimes::kNumbers) {
    sqlite3_bind_double(statement, place, number);
    return;
  }
  char text[kValueTextRoom];
  const char* const end = WriteValue(text, number, KindOf(type));
  BindText(statement, place, {text, static_cast<std::size_t>(end - text)});
}

void SqliteWriter::Write(ColumnPieces batch) {
  for (const ColumnBatch& piece : batch) {
    for (std::size_t row = 0; row < piece.cases; ++row) {
      for (std::size_t column = 0; column < fields_.size(); ++column) BindCell(piece, column, row);
      Step(insertCase_.get());
    }
  }
}

void SqliteWriter::AddProblem(const ProblemRow& problem) {
  sqlite3_stmt* const statement = insertProblem_.get();
  const auto bindNumber = [statement](int at, std::int64_t number, bool present) {
    if (present) {
      sqlite3_bind_int64(statement, at, number);
    } else {
      sqlite3_bind_null(statement, at);
    }
  };
  int place = 1;
  if (severalFiles_) BindText(statement, place++, problem.file);
  BindText(statement, place++, problem.kind);
  bindNumber(place++, problem.caseNumber, problem.caseNumber > 0);
  bindNumber(place++, problem.line, problem.line > 0);
  bindNumber(place++, problem.byte, problem.byte >= 0);
  for (const std::string_view text :
       {problem.variable, problem.format, problem.text, problem.detail}) {
    BindText(statement, place++, text);
  }
  Step(statement);
}

void SqliteWriter::Finish(const std::vector<std::pair<std::string, std::string>>& metadata) {
  Statement about = Prepare("INSERT OR REPLACE INTO about VALUES (?, ?)");
  for (const auto& [key, value] : metadata) {
    BindText(about.get(), 1, key);
    BindText(about.get(), 2, value);
    Step(about.get());
  }
  Run("COMMIT");
  about.reset();
  insertCase_.reset();
  insertProblem_.reset();
  database_.reset();
}

}  // namespace library
