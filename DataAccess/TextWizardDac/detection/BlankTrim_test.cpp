#include "detection/BlankTrim.h"

#include <gtest/gtest.h>

namespace textwizard {
namespace {

TEST(BlankTrim, TrimmingTakesBlanksOnly) {
  EXPECT_EQ(TrimLeft("  a b "), "a b ");
  EXPECT_EQ(TrimRight(" a b  "), " a b");
  EXPECT_EQ(TrimLeft("\ta"), "\ta");
  EXPECT_EQ(TrimRight("a\n"), "a\n");
  EXPECT_TRUE(IsBlank("   "));
  EXPECT_TRUE(IsBlank(""));
  EXPECT_FALSE(IsBlank(" \t"));
}

}  // namespace
}  // namespace textwizard
