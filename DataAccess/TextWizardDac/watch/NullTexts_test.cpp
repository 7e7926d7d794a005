#include "watch/NullTexts.h"

#include <string>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

TEST(NullTexts, HoldsItsTextsWithAnyBlanksAroundThem) {
  const NullTexts nulls({"NA", "-", "n/a", " . ", "-99"});
  for (const char* const field : {"NA", " NA", "NA\t ", "-", "n/a", ".", "\t.", "-99 "}) {
    EXPECT_TRUE(nulls.Holds(field)) << field;
  }
  for (const char* const field :
       {"", " ", "\t", "na", "NAN", "N A", "--", "-9", "-999", "..", "x"}) {
    EXPECT_FALSE(nulls.Holds(field)) << field;
  }
}

TEST(NullTexts, HoldsBareTextsOfAnyLength) {
  const std::string longOne(100, 'x');
  const NullTexts nulls({"NA", "-", longOne});
  for (const std::string& text : {std::string("NA"), std::string("-"), longOne}) {
    EXPECT_TRUE(nulls.HoldsBare(text)) << text;
    EXPECT_TRUE(nulls.Holds(text)) << text;
  }
  for (const std::string& text : {std::string("N"), std::string("-1"), std::string(99, 'x'),
                                  std::string(101, 'x'), std::string("A")}) {
    EXPECT_FALSE(nulls.HoldsBare(text)) << text;
  }
}

TEST(NullTexts, BlanksAreNoneOfThem) {
  EXPECT_FALSE(NullTexts({"", " ", "\t"}).Holds(" "));
  EXPECT_FALSE(NullTexts().Holds(" "));
  EXPECT_FALSE(NullTexts(std::vector<std::string>()).Holds("NA"));
}

}  // namespace
}  // namespace textwizard
