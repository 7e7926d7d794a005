#include "watch/NullTexts.h"

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

TEST(NullTexts, BlanksAreNoneOfThem) {
  EXPECT_FALSE(NullTexts({"", " ", "\t"}).Holds(" "));
  EXPECT_FALSE(NullTexts().Holds(" "));
  EXPECT_FALSE(NullTexts(std::vector<std::string>()).Holds("NA"));
}

}  // namespace
}  // namespace textwizard
