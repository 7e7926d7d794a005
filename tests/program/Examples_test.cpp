// Imports every folder of examples/ with the program and compares the cases, the dictionary and the
// messages, whole, with what the folder expects.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include "TreePaths.h"

namespace {

namespace fs = std::filesystem;

const fs::path kRoot = TEXTWIZARD_SOURCE_DIR;

std::string Text(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<nlohmann::json> Lines(const fs::path& path) {
  std::istringstream text(Text(path));
  std::vector<nlohmann::json> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(nlohmann::json::parse(line));
  return lines;
}

std::vector<std::string> ExampleFolders() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(kRoot / "examples")) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

fs::path CommandFile(const fs::path& folder) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".sps") return entry.path();
  }
  return {};
}

class Example : public testing::TestWithParam<std::string> {};

TEST_P(Example, GivesItsExpectedCasesDictionaryAndMessages) {
  const fs::path folder = kRoot / "examples" / GetParam();
  const fs::path out = fs::temp_directory_path() /
                       ("textwizard-example-" + GetParam() + "-" + std::to_string(getpid()));
  fs::create_directories(out);
  std::string options;
  if (fs::exists(folder / "options")) {
    options = Text(folder / "options");
    std::replace(options.begin(), options.end(), '\n', ' ');
  }
  const std::string command =
      "cd '" + kRoot.string() + "' && '" TEXTWIZARD_BINARY_DIR "/bin/textwizard' run --quiet " +
      options + " --cases '" + (out / "cases.csv").string() + "' --dictionary '" +
      (out / "dictionary.json").string() + "' --messages '" + (out / "messages.jsonl").string() +
      "' '" + CommandFile(folder).string() + "'";
  const int status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);

  EXPECT_EQ(Text(out / "cases.csv"), Text(folder / "expected/cases.csv"));
  EXPECT_EQ(nlohmann::json::parse(Text(out / "dictionary.json")),
            nlohmann::json::parse(Text(folder / "expected/dictionary.json")));
  EXPECT_EQ(Lines(out / "messages.jsonl"), Lines(folder / "expected/messages.jsonl"));
  fs::remove_all(out);
}

INSTANTIATE_TEST_SUITE_P(Examples, Example, testing::ValuesIn(ExampleFolders()),
                         [](const auto& folder) {
                           std::string name = folder.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
