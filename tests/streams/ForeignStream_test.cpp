// The C streams taken by a library that others wrote: DuckDB scans them, and every cell is the one
// of the Parquet file that the program writes (which other readers compare with the raw cases).
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "TreePaths.h"
#include "tests/differential/RandomImport.h"
#include "tests/program/Program.h"
#include "textwizard/textwizard.hpp"

#ifdef __SANITIZE_ADDRESS__
// DuckDB asks for the schema in two functions, and releases none of them: it clears the root's own
// release function. All else that it leaves is a leak of ours.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:FactoryGetSchema\nleak:duckdb_arrow_scan\n";
}
#endif

namespace {

constexpr char kDuckDb[] = TEXTWIZARD_SOURCE_DIR
    "/tests/readers/node_modules/@duckdb/node-bindings-linux-x64/libduckdb.so";

// Random imports for each of the differential test's hundred thousand.
constexpr int kShare = 50;
constexpr int kAll = 2000;
constexpr int kCommands = 100;

int Imports() {
  const char* const cases = std::getenv("TEXTWIZARD_DIFFERENTIAL_CASES");
  return cases == nullptr ? kAll / 20 : std::clamp(std::atoi(cases) / kShare, 1, kAll);
}

// What its C interface declares, as far as it is used here.
struct DuckDbResult {
  std::uint64_t columns;
  std::uint64_t rows;
  std::uint64_t changed;
  void* columnData;
  char* error;
  void* internal;
};

// A database in memory. Functions are looked up by name: the library comes with a package of
// JavaScript, without headers.
class DuckDb {
 public:
  explicit DuckDb(void* library) : library_(library) {
    EXPECT_EQ(Function<int(const char*, void**)>("duckdb_open")(nullptr, &database_), 0);
    EXPECT_EQ(Function<int(void*, void**)>("duckdb_connect")(database_, &connection_), 0);
  }
  ~DuckDb() {
    Function<void(void**)>("duckdb_disconnect")(&connection_);
    Function<void(void**)>("duckdb_close")(&database_);
  }

  // Gives the database a view of the stream, which stays the caller's.
  void Scan(const char* view, ArrowArrayStream* stream) {
    const auto scan = Function<int(void*, const char*, ArrowArrayStream*)>("duckdb_arrow_scan");
    EXPECT_EQ(scan(connection_, view, stream), 0);
  }
  // The number in the first cell; the error where there is one.
  std::string Query(const std::string& sql) {
    DuckDbResult result{};
    std::string answer;
    if (Function<int(void*, const char*, DuckDbResult*)>("duckdb_query")(connection_, sql.c_str(),
                                                                         &result) != 0) {
      answer = Function<const char*(DuckDbResult*)>("duckdb_result_error")(&result);
    } else if (Function<std::uint64_t(DuckDbResult*)>("duckdb_row_count")(&result) > 0) {
      answer = std::to_string(Function<std::int64_t(DuckDbResult*, std::uint64_t, std::uint64_t)>(
          "duckdb_value_int64")(&result, 0, 0));
    }
    Function<void(DuckDbResult*)>("duckdb_destroy_result")(&result);
    return answer;
  }

 private:
  template <class Signature>
  Signature* Function(const char* name) const {
    auto* const found = reinterpret_cast<Signature*>(dlsym(library_, name));
    if (found == nullptr) throw std::runtime_error(std::string("no function ") + name);
    return found;
  }

  void* const library_;
  void* database_ = nullptr;
  void* connection_ = nullptr;
};

class ForeignStream : public program::ProgramTest {
 protected:
  void SetUp() override {
    library_ = dlopen(kDuckDb, RTLD_NOW | RTLD_LOCAL);
    if (library_ == nullptr) GTEST_SKIP() << "tools/install-readers installs it: " << dlerror();
  }

  // The columns of the Parquet file as the stream has them: it stores durations as microseconds.
  static std::string Columns(textwizard::Schema& schema) {
    std::string columns;
    for (std::int64_t i = 0; i < schema.get().n_children; ++i) {
      const ArrowSchema& column = *schema.get().children[i];
      std::string name = "\"";
      for (const char* c = column.name; *c != '\0'; ++c) name += std::string(*c == '"' ? 2 : 1, *c);
      name += "\"";
      columns += (i == 0 ? "" : ", ");
      columns += std::string(column.format) == "tDu" ? "to_microseconds(" + name + ")" : name;
    }
    return columns;
  }

  void* library_ = nullptr;
};

TEST_F(ForeignStream, IsScannedCellByCell) {
  DuckDb database(library_);
  std::int64_t rows = 0;
  int compared = 0;
  for (int first = 0; first < Imports(); first += kCommands) {
    const int count = std::min(kCommands, Imports() - first);
    std::vector<std::string> commands;
    std::string all;
    for (int i = 0; i < count; ++i) {
      const std::string data = folder_ / ("data" + std::to_string(i));
      const naive::RandomImport import =
          naive::MakeRandomImport(static_cast<std::uint64_t>(first + i) + 77261, data);
      std::ofstream(data, std::ios::binary) << import.bytes;
      commands.push_back(import.command);
      all += import.command + "\n";
    }
    folder_.Write("commands.sps", all);
    ASSERT_LE(Run({"run", "--quiet", "commands.sps", "-o", "c%d.parquet"}).status, 1);
    for (int i = 0; i < count; ++i) {
      const std::string file = folder_ / ("c" + std::to_string(i + 1) + ".parquet");
      auto import = textwizard::Import::OpenCommand(commands[static_cast<std::size_t>(i)]);
      ASSERT_EQ(import.has_value(), std::filesystem::exists(file))
          << commands[static_cast<std::size_t>(i)];
      if (!import) continue;
      auto schema = import->ReadSchema();
      // The database knows no table without a column.
      if (schema->get().n_children == 0) continue;
      auto cases = import->Cases();
      database.Scan("stream", &cases->get());
      // It says how many rows the table has.
      ASSERT_EQ(database.Query("CREATE OR REPLACE TABLE scanned AS SELECT * FROM stream"),
                database.Query("SELECT count(*) FROM '" + file + "'"))
          << commands[static_cast<std::size_t>(i)];
      const std::string stored = "SELECT " + Columns(*schema) + " FROM '" + file + "'";
      EXPECT_EQ(database.Query("SELECT count(*) FROM ((SELECT * FROM scanned EXCEPT ALL " + stored +
                               ") UNION ALL (" + stored + " EXCEPT ALL SELECT * FROM scanned))"),
                "0")
          << commands[static_cast<std::size_t>(i)];
      rows += std::atoll(database.Query("SELECT count(*) FROM scanned").c_str());
      std::filesystem::remove(file);
      ++compared;
    }
  }
  EXPECT_GT(compared, Imports() / 2) << "most imports stand";
  EXPECT_GT(rows, Imports());
}

}  // namespace
