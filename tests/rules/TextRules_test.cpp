// Rules for every file of the tree: no left-overs in the code, no file that has outgrown its seam,
// and headers that say what they hold, are taken once and leave names in their namespaces.

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "library/testing/TestFolder.h"
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

// What is wrong with the style of the header; empty when nothing is. Headers for C have its
// comments and its guard.
std::string StyleFault(const fs::path& header) {
  static const std::regex opens("^(using namespace|namespace *\\{)");
  std::ifstream text(header);
  std::string line;
  std::getline(text, line);
  const bool ofC = line.starts_with("/* ");
  if (!ofC && !line.starts_with("// ")) return "does not begin with what it holds";
  const std::string once = ofC ? "#ifndef TEXTWIZARD_" : "#pragma once";
  while ((ofC ? !line.starts_with("#") : line.starts_with("//")) && std::getline(text, line)) {
  }
  if (!line.starts_with(once)) return "has no " + once + " below that";
  while (std::getline(text, line)) {
    if (std::regex_search(line, opens)) return "gives whoever includes it: " + line;
  }
  return "";
}

TEST(TextRules, HeadersSayWhatTheyHoldAndAreTakenOnce) {
  int headers = 0;
  for (const fs::path& path : Sources()) {
    if (path.extension() != ".h") continue;
    ++headers;
    EXPECT_EQ(StyleFault(path), "") << path;
  }
  EXPECT_GT(headers, 100);
}

TEST(TextRules, APlantedFaultOfStyleIsSeen) {
  const library::TestFolder folder;
  const auto fault = [&folder](const std::string& text) {
    folder.Write("Planted.h", text);
    return StyleFault(folder.path() / "Planted.h");
  };
  EXPECT_EQ(fault("// What it holds.\n//\n#pragma once\nnamespace a {}\n"), "");
  EXPECT_EQ(fault("#pragma once\n"), "does not begin with what it holds");
  EXPECT_EQ(fault("// What it holds.\n#include <string>\n#pragma once\n"),
            "has no #pragma once below that");
  EXPECT_EQ(fault("/* What it\n   holds. */\n#ifndef TEXTWIZARD_IT_H\n"), "");
  EXPECT_EQ(fault("/* What it holds. */\n#include <stdint.h>\n#ifndef TEXTWIZARD_IT_H\n"),
            "has no #ifndef TEXTWIZARD_ below that");
  EXPECT_EQ(fault("// What it holds.\n#pragma once\nusing namespace std;\n"),
            "gives whoever includes it: using namespace std;");
  EXPECT_EQ(fault("// What it holds.\n#pragma once\nnamespace {\nint i;\n}\n"),
            "gives whoever includes it: namespace {");
}

}  // namespace
