#include "library/outputs/Misfits.h"

#include <gtest/gtest.h>

namespace library {
namespace {

TEST(Misfits, AreInTheOrderOfTheColumnsWithTheFirstValueAndAWayOut) {
  ColumnField whole;
  whole.variable = "id";
  whole.format = "F8.0";
  whole.type = ColumnType::kInt64;
  ColumnField time = whole;
  time.variable = "at";
  time.format = "TIME8";
  time.type = ColumnType::kDurationMicros;
  ColumnMisfits misfits;
  misfits.counts = {2, 0, 1};
  misfits.first = {{7, 2, 0.25}, {9, 0, 1.5}};
  const std::vector<Misfit> found = MisfitsOf({whole, whole, time}, misfits);
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].variable, "id");
  EXPECT_EQ(found[0].count, 2);
  EXPECT_EQ(found[0].caseNumber, 9);
  EXPECT_EQ(found[0].text, "1.5");
  EXPECT_EQ(found[0].detail,
            "the column of id holds whole numbers up to 2^53, and 2 values are missing in it, the "
            "first 1.5 in case 9; without whole-number columns every value is kept");
  EXPECT_EQ(found[1].variable, "at");
  EXPECT_EQ(found[1].format, "TIME8");
  EXPECT_EQ(found[1].detail,
            "the column of at holds whole microseconds, and 1 value is missing in it, the first "
            "0.25 in case 7; outputs of text with raw values keep them");
  const ProblemRow row = RowOf(found[0]);
  EXPECT_EQ(row.kind, "misfit");
  EXPECT_EQ(row.caseNumber, 9);
  EXPECT_EQ(row.line, 0);
  EXPECT_EQ(row.byte, -1);
}

TEST(Misfits, AreNoneWhereEveryValueFits) { EXPECT_TRUE(MisfitsOf({}, {}).empty()); }

}  // namespace
}  // namespace library
