#include "library/sniff/CharacterRanges.h"

#include <gtest/gtest.h>

namespace library {
namespace {

TEST(CharacterRanges, AreFromAndToBothIncluded) {
  std::string problem;
  const auto ranges = ParseCharacterRanges("1-8,9-20,25,30-", &problem);
  ASSERT_TRUE(ranges.has_value()) << problem;
  EXPECT_EQ(*ranges, (std::vector<CharacterRange>{{1, 8}, {9, 20}, {25, 25}, {30, 0}}));
}

TEST(CharacterRanges, AreRefusedWithTheOneThatIsWrong) {
  for (const char* text : {"", "a", "0-3", "5-3", "1-8,", "1-8;9-12", "1--2", "1-2x", "-3"}) {
    std::string problem;
    EXPECT_FALSE(ParseCharacterRanges(text, &problem).has_value()) << text;
    EXPECT_NE(problem.find("is no column"), std::string::npos) << text;
  }
  for (const char* text : {"1-8,8-9", "5-,7-8", "9-10,1-2"}) {
    std::string problem;
    EXPECT_FALSE(ParseCharacterRanges(text, &problem).has_value()) << text;
    EXPECT_NE(problem.find("begins before"), std::string::npos) << problem;
  }
}

}  // namespace
}  // namespace library
