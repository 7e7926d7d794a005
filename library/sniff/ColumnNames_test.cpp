// Names that the host accepts.

#include "library/sniff/ColumnNames.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/Names.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace library {
namespace {

using testing::ElementsAre;

class ColumnNamesTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
};

TEST_F(ColumnNamesTest, WhatIsANameStays) {
  EXPECT_THAT(NamesOf({"id", "Größe", "名前", "a.b", "x_1"}),
              ElementsAre("id", "Größe", "名前", "a.b", "x_1"));
}

TEST_F(ColumnNamesTest, WhatNoNameMayHoldBecomesAnUnderscore) {
  EXPECT_THAT(NamesOf({"unit price (EUR)", " a - b ", "rate %"}),
              ElementsAre("unit_price_EUR", "a_b", "rate"));
}

TEST_F(ColumnNamesTest, WhatNoNameMayBeginWithStandsBehindAV) {
  EXPECT_THAT(NamesOf({"2010", ".x"}), ElementsAre("V2010", "V.x"));
}

TEST_F(ColumnNamesTest, NoLabelGivesTheColumnsNumber) {
  EXPECT_THAT(NamesOf({"a", "", "%"}), ElementsAre("a", "V2", "V3"));
}

TEST_F(ColumnNamesTest, ReservedWordsAndEndsAreMended) {
  EXPECT_THAT(NamesOf({"all", "TO", "end."}), ElementsAre("all_", "TO_", "end"));
}

TEST_F(ColumnNamesTest, NamesDifferWhateverTheirCase) {
  EXPECT_THAT(NamesOf({"x", "X", "x", "x_2"}), ElementsAre("x", "X_2", "x_3", "x_2_2"));
  EXPECT_THAT(NamesOf({"Ä", "ä"}), ElementsAre("Ä", "ä_2"));
}

TEST_F(ColumnNamesTest, LongLabelsAreCutAtACharacter) {
  std::string label;
  for (int i = 0; i < 50; ++i) label += "ä";
  const auto names = NamesOf({label, label});
  for (const std::string& name : names) EXPECT_EQ(ValidateQANTName(name.c_str()), 0) << name;
  EXPECT_NE(names[0], names[1]);
  EXPECT_EQ(names[0].size(), 64U);
}

TEST_F(ColumnNamesTest, ManyEqualLabelsTakeNoLongerThanOthers) {
  const auto names = NamesOf(std::vector<std::string>(50000, "x"));
  EXPECT_EQ(names.back(), "x_50000");
}

}  // namespace
}  // namespace library
