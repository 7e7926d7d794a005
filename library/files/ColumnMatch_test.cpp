#include "library/files/ColumnMatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::ElementsAre;
using testing::Eq;
using testing::Optional;

TEST(ColumnMatchTest, KeysAreAlikeForLetterCaseAndBlanksOnly) {
  EXPECT_EQ(ColumnKey("Order ID"), ColumnKey("orderid"));
  EXPECT_EQ(ColumnKey(" \tStra\xC3\x9F"
                      "e\xC2\xA0"),
            ColumnKey("STRASSE"));
  EXPECT_NE(ColumnKey("order_id"), ColumnKey("order id"));
  EXPECT_EQ(ColumnKey(""), "");
}

TEST(ColumnMatchTest, TheSameTextGoesBeforeTheSameKey) {
  EXPECT_THAT(MatchColumns({"ID", "id", "other"}, {"id", "Id"}),
              ElementsAre(Optional(1U), Optional(0U), Eq(std::nullopt)));
}

TEST(ColumnMatchTest, EachColumnIsTakenOnce) {
  EXPECT_THAT(MatchColumns({"x", "x", "x"}, {"x", "x"}),
              ElementsAre(Optional(0U), Optional(1U), Eq(std::nullopt)));
  EXPECT_THAT(MatchColumns({"", ""}, {"a", ""}), ElementsAre(Optional(1U), Eq(std::nullopt)));
}

}  // namespace
}  // namespace library
