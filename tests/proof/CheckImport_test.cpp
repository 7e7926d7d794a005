// The independent script against the program: on every example, and on random imports.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>

#include "tests/differential/RandomImport.h"
#include "tests/program/Program.h"
#include "tests/support/Effort.h"

namespace program {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const fs::path kRoot = TEXTWIZARD_SOURCE_DIR;

class CheckImport : public ProgramTest {
 protected:
  // The digest that a run printed.
  static std::string DigestOf(const Ended& ended) {
    const std::string key = "digest: ";
    const std::size_t at = ended.out.find(key);
    return at == std::string::npos ? "" : ended.out.substr(at + key.size(), 32);
  }
  // Runs the script in `folder` on what a run wrote to the test's folder.
  Ended Check(const std::string& folder, const std::string& command, const std::string& digest,
              const std::string& cases = "c.csv") const {
    const auto in = [this](const std::string& name) { return "'" + (folder_ / name) + "'"; };
    const std::string line = "cd '" + folder + "' && /usr/bin/python3 '" +
                             (kRoot / "tools/check-import").string() + "' '" + command + "' " +
                             in(cases) + " " + in("d.json") + " --problems " + in("p.csv") +
                             " --digest '" + digest + "' 2>&1";
    FILE* pipe = popen(line.c_str(), "r");
    Ended ended;
    char block[4096];
    while (const std::size_t n = fread(block, 1, sizeof block, pipe)) ended.out.append(block, n);
    ended.status = StatusOf(pclose(pipe));
    return ended;
  }
  // A file of cases cannot show bytes that are no character: those of the file (in UTF-16 they have
  // become U+FFFD before), and those that a fixed column leaves of a character.
  bool HoldsNoCharacters(const naive::RandomImport& import, const std::string& cases) const {
    const bool wide = import.bytes.starts_with("\xFF\xFE") || import.bytes.starts_with("\xFE\xFF");
    return (!wide || import.settings.lines == naive::Lines::kFixed) &&
           folder_.Text(cases).find("\xEF\xBF\xBD") != std::string::npos;
  }
  std::vector<std::string> Options(const std::string& cases = "c.csv") const {
    return {"--values",         "raw",        "--cases",         folder_ / cases, "--dictionary",
            folder_ / "d.json", "--problems", folder_ / "p.csv", "--digest"};
  }
};

TEST_F(CheckImport, AgreesOnEveryExample) {
  int examples = 0;
  for (const auto& entry : fs::directory_iterator(kRoot / "examples")) {
    if (!entry.is_directory()) continue;
    ++examples;
    std::string command;
    for (const auto& file : fs::directory_iterator(entry)) {
      if (file.path().extension() == ".sps") command = file.path().string();
    }
    std::string options;
    std::ifstream(entry.path() / "options") >> std::ws&& [&] {
      std::ostringstream text;
      text << std::ifstream(entry.path() / "options").rdbuf();
      options = text.str();
      return true;
    }();
    std::replace(options.begin(), options.end(), '\n', ' ');
    std::string line = "cd '" + kRoot.string() +
                       "' && '" TEXTWIZARD_BINARY_DIR "/bin/textwizard' run --quiet " + options +
                       " '" + command + "'";
    for (const std::string& option : Options()) line += " '" + option + "'";
    FILE* pipe = popen((line + " 2>/dev/null").c_str(), "r");
    Ended run;
    char block[4096];
    while (const std::size_t n = fread(block, 1, sizeof block, pipe)) run.out.append(block, n);
    ASSERT_EQ(StatusOf(pclose(pipe)), 0) << line;
    const Ended checked = Check(kRoot.string(), command, DigestOf(run));
    EXPECT_EQ(checked.status, 0) << command << "\n" << checked.out;
    EXPECT_THAT(checked.out, HasSubstr("the import is accounted for"));
  }
  EXPECT_GE(examples, 10);
}

TEST_F(CheckImport, AgreesOnRandomImports) {
  int checked = 0;
  for (std::uint64_t seed = 1; checked < static_cast<int>(whole::Rounds(200)); ++seed) {
    ASSERT_LT(seed, 2000U);
    const naive::RandomImport import = naive::MakeRandomImport(seed, "random.txt");
    folder_.Write("random.txt", import.bytes);
    const std::string cases = seed % 3 == 0 ? "c.jsonl" : seed % 3 == 1 ? "c.tsv" : "c.csv";
    folder_.Write("command.sps", import.command);
    std::vector<std::string> arguments = Options(cases);
    arguments.insert(arguments.begin(), {"run", "--quiet", "command.sps"});
    const Ended run = Run(arguments);
    ASSERT_EQ(run.status, 0) << run.err;
    if (HoldsNoCharacters(import, cases)) continue;
    ++checked;
    const Ended script = Check(folder_.path().string(), "command.sps", DigestOf(run), cases);
    ASSERT_EQ(script.status, 0) << "seed " << seed << "\n"
                                << import.command << "\n"
                                << testing::PrintToString(import.bytes) << "\n"
                                << script.out;
  }
}

TEST_F(CheckImport, SeesWhatDoesNotAgree) {
  WriteTowns();
  folder_.Write("command.sps", Towns());
  std::vector<std::string> arguments = Options();
  arguments.insert(arguments.begin(), {"run", "--quiet", "command.sps"});
  const std::string digest = DigestOf(Run(arguments));
  const auto check = [&] { return Check(folder_.path().string(), "command.sps", digest); };
  ASSERT_EQ(check().status, 0) << check().out;

  // A value that is another, a case that is gone, a byte more in the data, a problem less.
  const auto spoiled = [&](const std::string& name, const std::string& from,
                           const std::string& to) {
    const std::string whole = folder_.Text(name);
    std::string text = whole;
    text.replace(text.find(from), from.size(), to);
    folder_.Write(name, text);
    const Ended ended = check();
    folder_.Write(name, whole);
    return ended;
  };
  EXPECT_THAT(spoiled("c.csv", "2.5", "2.6").out, HasSubstr("digest: " + digest + ", but "));
  EXPECT_EQ(spoiled("c.csv", "2.5", "2.6").status, 1);
  EXPECT_THAT(spoiled("c.csv", "1,Bern,9737971200,2.5\n", "").out, HasSubstr("cases: 3, but 2"));
  EXPECT_THAT(spoiled("town.csv", "Bern", "Berne").out, HasSubstr("ledger records: "));
  EXPECT_THAT(spoiled("p.csv", "unreadable", "surplus").out,
              HasSubstr("ledger unreadable: 1, but 0"));
  EXPECT_THAT(spoiled("d.json", "\"skipped\":20", "\"skipped\":21").out,
              HasSubstr("ledger skipped: 21, but 20"));
}

}  // namespace
}  // namespace program
