// Rules for every file of the tree: no left-overs in the code, no file that has outgrown its seam.

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/rules/TreeRoot.h"

namespace {

namespace fs = std::filesystem;

// What is built, fetched or the version control's.
bool IsForeign(const fs::path& folder) {
  const std::string name = folder.filename();
  return name.starts_with('.') || name == "build" || name == "node_modules" ||
         name == "__pycache__";
}

void AddSources(const fs::path& folder, std::vector<fs::path>& found) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string extension = entry.path().extension();
    if (entry.is_directory()) {
      if (!IsForeign(entry.path())) AddSources(entry.path(), found);
    } else if (extension == ".cpp" || extension == ".h" || extension == ".py" ||
               extension == ".js" || extension == ".mjs" || extension == ".R") {
      found.push_back(entry.path());
    }
  }
}

std::vector<fs::path> Sources() {
  std::vector<fs::path> found;
  AddSources(rules::TreeRoot(), found);
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
