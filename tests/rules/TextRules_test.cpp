// Rules for every file of the tree: no left-overs in the code, no file that has outgrown its seam.

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TreePaths.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> Sources() {
  std::vector<fs::path> found;
  for (const char* folder : {"HostFramework", "DataAccess", "cli", "tests", "bench", "fuzz"}) {
    for (const auto& entry :
         fs::recursive_directory_iterator(fs::path(TEXTWIZARD_SOURCE_DIR) / folder)) {
      if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h") {
        found.push_back(entry.path());
      }
    }
  }
  return found;
}

TEST(TextRules, NoLeftOversInTheCode) {
  // Split, so that this file does not match itself.
  const std::regex leftOver(std::string("\\b(TO") + "DO|FIX" + "ME|HA" + "CK)\\b|#if " + "0");
  ASSERT_FALSE(Sources().empty());
  for (const fs::path& path : Sources()) {
    std::ifstream text(path);
    int number = 0;
    for (std::string line; std::getline(text, line);) {
      ++number;
      EXPECT_FALSE(std::regex_search(line, leftOver)) << path << ":" << number << ": " << line;
    }
  }
}

TEST(TextRules, NoFileHasMoreThanSixHundredLines) {
  for (const fs::path& path : Sources()) {
    std::ifstream text(path);
    int lines = 0;
    for (std::string line; std::getline(text, line);) ++lines;
    EXPECT_LE(lines, 600) << path << " wants splitting";
  }
}

}  // namespace
