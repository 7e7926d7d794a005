#include "library/report/SaidProblems.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using Kind = ImportProblemKind;

TEST(SaidProblems, KnowsWhatItKeptAndNothingElse) {
  SaidProblems said;
  EXPECT_EQ(said.Find(Problem(Kind::kCut, 0, "a")), nullptr);
  said.Keep(Problem(Kind::kCut, 0, "a", 3), "was cut");
  ASSERT_NE(said.Find(Problem(Kind::kCut, 0, "a", 3)), nullptr);
  EXPECT_EQ(*said.Find(Problem(Kind::kCut, 0, "a", 3)), "was cut");
  EXPECT_EQ(said.Find(Problem(Kind::kCut, 0, "a", 4)), nullptr);
  EXPECT_EQ(said.Find(Problem(Kind::kCut, 1, "a", 3)), nullptr);
  EXPECT_EQ(said.Find(Problem(Kind::kRounded, 0, "a", 3)), nullptr);
  EXPECT_EQ(said.Find(Problem(Kind::kCut, 0, "b", 3)), nullptr);
  EXPECT_EQ(said.Find(Problem(Kind::kCut, 0, "", 3)), nullptr);
}

// Of every length, with a difference in every byte.
TEST(SaidProblems, TellsTextsApartByEveryByte) {
  for (std::size_t size = 0; size <= 64; ++size) {
    SaidProblems said;
    const std::string text(size, 'x');
    ASSERT_TRUE(SaidProblems::CanKeep(Problem(Kind::kUnreadable, 0, text)));
    said.Keep(Problem(Kind::kUnreadable, 0, text), "said");
    EXPECT_NE(said.Find(Problem(Kind::kUnreadable, 0, text)), nullptr) << size;
    EXPECT_EQ(said.Find(Problem(Kind::kUnreadable, 0, text + 'x')), nullptr) << size;
    EXPECT_EQ(said.Find(Problem(Kind::kUnreadable, 0, text + '\0')), nullptr) << size;
    for (std::size_t at = 0; at < size; ++at) {
      for (const char other : {'y', '\0', '\xFF'}) {
        std::string changed = text;
        changed[at] = other;
        EXPECT_EQ(said.Find(Problem(Kind::kUnreadable, 0, changed)), nullptr) << size << ' ' << at;
      }
    }
  }
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
    said.Keep(Problem(Kind::kUnreadable, 0, text), text);
    const std::string* const found = said.Find(Problem(Kind::kUnreadable, 0, text));
    ASSERT_NE(found, nullptr) << n;
    EXPECT_EQ(*found, text);
  }
  int known = 0;
  for (int n = 0; n < kTexts; ++n) {
    const std::string text = std::to_string(n);
    const std::string* const found = said.Find(Problem(Kind::kUnreadable, 0, text));
    if (found == nullptr) continue;
    ++known;
    EXPECT_EQ(*found, text);
  }
  EXPECT_GT(known, 4000);
  EXPECT_LE(known, 8192);
}

}  // namespace
}  // namespace library
