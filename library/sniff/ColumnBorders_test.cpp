// Where fixed columns end and begin.

#include "library/sniff/ColumnBorders.h"

#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::ElementsAre;

TEST(ColumnBorders, RightAlignedValuesTakeTheBlanksBeforeThem) {
  EXPECT_THAT(ColumnsOfRuns({"Anna    7", "Bob   123", "Li     45"}, {}, {{1, 4}, {7, 9}}),
              ElementsAre(CharacterRange{1, 4}, CharacterRange{5, 9}));
}

TEST(ColumnBorders, LeftAlignedTextsLeaveTheBlanksToTheColumnBeforeThem) {
  EXPECT_THAT(ColumnsOfRuns({"Anna  red", "Bob   green", "Li    blue"}, {}, {{1, 4}, {7, 11}}),
              ElementsAre(CharacterRange{1, 6}, CharacterRange{7, 11}));
}

TEST(ColumnBorders, NoNameAboveTheDataIsCut) {
  // "unit price" ends where the numbers end, and has a blank of its own.
  EXPECT_THAT(ColumnsOfRuns({"Anna          7", "Bob         123", "Li           45"},
                            {"town  unit price"}, {{1, 4}, {13, 15}}),
              ElementsAre(CharacterRange{1, 4}, CharacterRange{5, 15}));
  // A name that is longer than what stands below it, above one digit a line.
  EXPECT_THAT(ColumnsOfRuns({"12     7", "34     8", "56     9"}, {"id  name"}, {{1, 2}, {8, 8}}),
              ElementsAre(CharacterRange{1, 4}, CharacterRange{5, 8}));
}

TEST(ColumnBorders, ATitleMovesNoBorder) {
  EXPECT_THAT(ColumnsOfRuns({" 17  red", "  8  green", "124  blue"}, {"Report of the town"},
                            {{1, 3}, {6, 10}}),
              ElementsAre(CharacterRange{1, 5}, CharacterRange{6, 10}));
}

TEST(ColumnBorders, AValueLongerThanMostIsNotCut) {
  std::vector<std::string_view> lines(60, "red          7");
  lines[7] = "dark red     8";
  lines[9] = "red       1234";
  EXPECT_THAT(ColumnsOfRuns(lines, {}, {{1, 3}, {14, 14}}),
              ElementsAre(CharacterRange{1, 10}, CharacterRange{11, 14}));
}

TEST(ColumnBorders, ANameAboveBlanksIsAnEmptyColumn) {
  EXPECT_THAT(ColumnsOfRuns({"1        red", "2        green", "3        blue"},
                            {"n  void  colour"}, {{1, 1}, {10, 14}}),
              ElementsAre(CharacterRange{1, 3}, CharacterRange{4, 9}, CharacterRange{10, 14}));
  // One that stands at the left of its numbers names them.
  EXPECT_THAT(ColumnsOfRuns({"red           7  x", "green        12  y", "blue        123  z"},
                            {"colour  size     letter"}, {{1, 5}, {13, 15}, {18, 18}}),
              ElementsAre(CharacterRange{1, 6}, CharacterRange{7, 17}, CharacterRange{18, 18}));
}

}  // namespace
}  // namespace library
