// Every output read back by readers that others wrote: each cell is what --values raw says.

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "TreePaths.h"
#include "tests/differential/RandomImport.h"
#include "tests/program/Program.h"

namespace {

// Random imports for each of the differential test's hundred thousand.
constexpr int kShare = 50;
constexpr int kAll = 2000;
// Commands of one file.
constexpr int kCommands = 100;

int Imports() {
  const char* const cases = std::getenv("TEXTWIZARD_DIFFERENTIAL_CASES");
  return cases == nullptr ? kAll / 20 : std::clamp(std::atoi(cases) / kShare, 1, kAll);
}

class ForeignReaders : public program::ProgramTest {
 protected:
  // Runs a script of tests/readers over the list of what was written.
  int Compare(const std::string& interpreter, const std::string& script) const {
    const std::string command = interpreter + " '" TEXTWIZARD_SOURCE_DIR "/tests/readers/" +
                                script + "' '" + (folder_ / "list") + "' 2>&1";
    return std::system(command.c_str());
  }
};

TEST_F(ForeignReaders, SeeEveryCellOfEveryOutput) {
  std::ofstream list(folder_ / "list");
  int stood = 0;
  for (int first = 0; first < Imports(); first += kCommands) {
    const int count = std::min(kCommands, Imports() - first);
    std::string commands;
    for (int i = 0; i < count; ++i) {
      const std::string data = folder_ / ("data" + std::to_string(first + i));
      const naive::RandomImport import =
          naive::MakeRandomImport(static_cast<std::uint64_t>(first + i) + 20261, data);
      std::ofstream(data, std::ios::binary) << import.bytes;
      commands += import.command + "\n";
    }
    folder_.Write("commands.sps", commands);
    const std::string at = std::to_string(first) + "-%d";
    std::vector<std::string> arguments = {
        "run",    "--quiet",    "commands.sps",     "--values",
        "raw",    "--messages", "m" + at,           "--dictionary",
        "d" + at, "--cases",    "c" + at + ".jsonl"};
    for (const char* ending : {".csv", ".tsv", ".arrow", ".parquet", ".sqlite"}) {
      arguments.insert(arguments.end(), {"-o", "c" + at + ending});
    }
    if (first % (2 * kCommands) != 0)
      arguments.insert(arguments.end(), {"--arrow-compression", "lz4"});
    const program::Ended ended = Run(arguments);
    ASSERT_TRUE(ended.status == 0 || ended.status == 1) << ended.status << ended.err;
    for (int i = 1; i <= count; ++i) {
      const std::string number = std::to_string(first) + "-" + std::to_string(i);
      if (!std::filesystem::exists(folder_ / ("d" + number))) continue;
      nlohmann::json entry = {{"cases", folder_ / ("c" + number + ".jsonl")},
                              {"dictionary", folder_ / ("d" + number)},
                              {"files", nlohmann::json::array()}};
      for (const char* ending : {".csv", ".tsv", ".arrow", ".parquet", ".sqlite"}) {
        entry["files"].push_back(folder_ / ("c" + number + ending));
      }
      list << entry.dump() << "\n";
      ++stood;
    }
  }
  list.close();
  EXPECT_GT(stood, Imports() / 2) << "most imports stand";
  EXPECT_EQ(Compare("node", "compare.mjs"), 0);
  EXPECT_EQ(Compare("/usr/bin/python3", "compare.py"), 0);
}

}  // namespace
