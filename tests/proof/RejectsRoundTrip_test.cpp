// Importing the rejects with the same command gives exactly the cases that had problems.

#include <set>
#include <sstream>

#include <gmock/gmock.h>

#include "tests/differential/RandomImport.h"
#include "tests/program/Program.h"
#include "tests/support/Effort.h"

namespace program {
namespace {

class RejectsRoundTrip : public ProgramTest {
 protected:
  static std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }
  // The cases of a run as JSON, one a line.
  std::vector<std::string> Cases(const std::string& command, const std::string& problems,
                                 const std::string& rejects) const {
    const Ended ended = Quiet(command, {"--cases", "c.jsonl", "--values", "raw", "--problems",
                                        problems, "--rejects", rejects});
    EXPECT_EQ(ended.status, 0) << command << "\n" << ended.err;
    return Lines(folder_.Text("c.jsonl"));
  }
};

TEST_F(RejectsRoundTrip, GivesTheCasesThatHadProblemsAndTheirProblems) {
  std::size_t rejected = 0;
  for (std::uint64_t seed = 1; seed <= whole::Rounds(300); ++seed) {
    const naive::RandomImport import = naive::MakeRandomImport(seed, "random.txt");
    folder_.Write("random.txt", import.bytes);
    const std::vector<std::string> all = Cases(import.command, "p.jsonl", "r.txt");
    std::set<std::size_t> bad;
    for (const std::string& row : Lines(folder_.Text("p.jsonl"))) {
      const auto problem = nlohmann::json::parse(row, nullptr, true, true);
      if (problem.contains("case")) bad.insert(problem["case"].get<std::size_t>());
    }
    std::vector<std::string> expected;
    for (const std::size_t number : bad) expected.push_back(all.at(number - 1));
    rejected += expected.size();

    folder_.Write("random.txt", folder_.Text("r.txt"));
    const std::vector<std::string> again = Cases(import.command, "p2.jsonl", "r2.txt");
    ASSERT_EQ(again, expected) << "seed " << seed << "\n"
                               << import.command << "\n"
                               << testing::PrintToString(import.bytes) << "\nrejects\n"
                               << testing::PrintToString(folder_.Text("r.txt"));
    // All of them are rejects again, the same bytes; where a record holds several cases, what was
    // wrong with it (a NUL) may lie in another case.
    if (import.settings.lines == naive::Lines::kCounted) continue;
    ASSERT_EQ(folder_.Text("r2.txt"), folder_.Text("r.txt")) << "seed " << seed;
  }
  EXPECT_GT(rejected, whole::Rounds(300) / 3);
}

}  // namespace
}  // namespace program
