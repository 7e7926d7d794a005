#include "HostFramework/embedded/text/EditDistance.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

TEST(EditDistance, CountsSlips) {
  EXPECT_EQ(EditDistance("", ""), 0U);
  EXPECT_EQ(EditDistance("same", "same"), 0U);
  EXPECT_EQ(EditDistance("DOLAR", "DOLLAR"), 1U);    // put in
  EXPECT_EQ(EditDistance("DOLLLAR", "DOLLAR"), 1U);  // left out
  EXPECT_EQ(EditDistance("DALLAR", "DOLLAR"), 1U);   // exchanged
  EXPECT_EQ(EditDistance("DLOLAR", "DOLLAR"), 1U);   // swapped
  EXPECT_EQ(EditDistance("abc", ""), 3U);
  EXPECT_EQ(EditDistance("", "abc"), 3U);
  EXPECT_EQ(EditDistance("kitten", "sitting"), 3U);
}

}  // namespace
}  // namespace embedded
