#include "library/report/SaidProblems.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using Kind = ImportProblemKind;

// What is said of such a problem; "?" where it is not known.
std::string SaidOf(const SaidProblems& said, const ImportProblem& problem) {
  const std::string_view found = said.Find(SaidProblems::Key(problem));
  return found.empty() ? "?" : std::string(found);
}
void Keep(SaidProblems& said, const ImportProblem& problem, std::string_view written) {
  said.Keep(SaidProblems::Key(problem), written);
}

TEST(SaidProblems, KnowsWhatItKeptAndNothingElse) {
  SaidProblems said;
  EXPECT_EQ(SaidOf(said, Problem(Kind::kCut, 0, "a")), "?");
  Keep(said, Problem(Kind::kCut, 0, "a", 3), "was cut");
  EXPECT_EQ(SaidOf(said, Problem(Kind::kCut, 0, "a", 3)), "was cut");
  EXPECT_EQ(SaidOf(said, Problem(Kind::kCut, 0, "a", 4)), "?");
  EXPECT_EQ(SaidOf(said, Problem(Kind::kCut, 1, "a", 3)), "?");
  EXPECT_EQ(SaidOf(said, Problem(Kind::kRounded, 0, "a", 3)), "?");
  EXPECT_EQ(SaidOf(said, Problem(Kind::kCut, 0, "b", 3)), "?");
  EXPECT_EQ(SaidOf(said, Problem(Kind::kCut, 0, "", 3)), "?");
}

// Of every length, with a difference in every byte.
TEST(SaidProblems, TellsTextsApartByEveryByte) {
  for (std::size_t size = 0; size <= 64; ++size) {
    SaidProblems said;
    const std::string text(size, 'x');
    ASSERT_TRUE(SaidProblems::CanKeep(Problem(Kind::kUnreadable, 0, text)));
    Keep(said, Problem(Kind::kUnreadable, 0, text), "said");
    EXPECT_EQ(SaidOf(said, Problem(Kind::kUnreadable, 0, text)), "said") << size;
    EXPECT_EQ(SaidOf(said, Problem(Kind::kUnreadable, 0, text + 'x')), "?") << size;
    EXPECT_EQ(SaidOf(said, Problem(Kind::kUnreadable, 0, text + '\0')), "?") << size;
    for (std::size_t at = 0; at < size; ++at) {
      for (const char other : {'y', '\0', '\xFF'}) {
        std::string changed = text;
        changed[at] = other;
        EXPECT_EQ(SaidOf(said, Problem(Kind::kUnreadable, 0, changed)), "?") << size << ' ' << at;
      }
    }
  }
}

// Of every length, also where another one stood before.
TEST(SaidProblems, SaysOfEachTextWhatWasSaidOfIt) {
  SaidProblems said;
  const auto written = [](int n) {
    return std::string(static_cast<std::size_t>(1 + n * 37 % 500), static_cast<char>('a' + n % 26));
  };
  constexpr int kTexts = 30000;
  for (int n = 0; n < kTexts; ++n) {
    const std::string text = std::to_string(n % 9000);
    Keep(said, Problem(Kind::kCut, 3, text), written(n));
    ASSERT_EQ(SaidOf(said, Problem(Kind::kCut, 3, text)), written(n));
  }
  int known = 0;
  for (int n = kTexts - 9000; n < kTexts; ++n) {
    const std::string found = SaidOf(said, Problem(Kind::kCut, 3, std::to_string(n % 9000)));
    if (found == "?") continue;
    ++known;
    ASSERT_EQ(found, written(n));
  }
  EXPECT_GT(known, 2000);
}

TEST(SaidProblems, AVeryLongSentenceIsNotKept) {
  SaidProblems said;
  Keep(said, Problem(Kind::kCut, 0, "a"), std::string(65536, 'x'));
  EXPECT_EQ(SaidOf(said, Problem(Kind::kCut, 0, "a")), "?");
  Keep(said, Problem(Kind::kCut, 0, "a"), std::string(65535, 'x'));
  EXPECT_EQ(SaidOf(said, Problem(Kind::kCut, 0, "a")), std::string(65535, 'x'));
}

TEST(SaidProblems, KeepsNoLongTextsAndNoneOfRecords) {
  EXPECT_FALSE(SaidProblems::CanKeep(Problem(Kind::kUnreadable, 0, std::string(65, 'x'))));
  EXPECT_FALSE(SaidProblems::CanKeep(Problem(Kind::kSurplus, -1, "x")));
}

TEST(SaidProblems, NewTextsReplaceOldOnes) {
  SaidProblems said;
  constexpr int kTexts = 20000;
  for (int n = 0; n < kTexts; ++n) {
    const std::string text = std::to_string(n);
    Keep(said, Problem(Kind::kUnreadable, 0, text), text);
    EXPECT_EQ(SaidOf(said, Problem(Kind::kUnreadable, 0, text)), text);
  }
  int known = 0;
  for (int n = 0; n < kTexts; ++n) {
    const std::string text = std::to_string(n);
    const std::string found = SaidOf(said, Problem(Kind::kUnreadable, 0, text));
    if (found == "?") continue;
    ++known;
    EXPECT_EQ(found, text);
  }
  EXPECT_GT(known, 4000);
  EXPECT_LE(known, 8192);
}

}  // namespace
}  // namespace library
