#include "library/import/FixedBorders.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/parts/FilledPlaces.h"

namespace library {
namespace {

using testing::ElementsAre;

class FixedBorders : public testing::Test {
 protected:
  // Columns up to those places, and the lines of the file.
  bool Move(const std::vector<CharacterRange>& ranges, const std::vector<std::string>& lines) {
    std::vector<SniffColumn> columns(ranges.size());
    for (std::size_t i = 0; i < ranges.size(); ++i) columns[i].range = ranges[i];
    FilledPlaces places;
    for (const std::string& line : lines) places.Add(line);
    const bool moved = MoveBorders(places.Take(), &columns);
    ranges_.clear();
    for (const SniffColumn& column : columns) ranges_.push_back(column.range);
    return moved;
  }
  std::vector<CharacterRange> ranges_;
};

TEST_F(FixedBorders, StayWhereABlankIsOnOneSide) {
  EXPECT_FALSE(Move({{1, 6}, {7, 10}}, {"abc     12", "abcd    12", "a        3"}));
  EXPECT_FALSE(Move({{1, 4}, {5, 10}}, {"abcd    12"})) << "text up to the border";
  EXPECT_FALSE(Move({{1, 7}, {8, 10}}, {"abc    123"})) << "text from the border on";
}

TEST_F(FixedBorders, MoveBehindTextThatRunsOver) {
  EXPECT_TRUE(Move({{1, 4}, {5, 10}}, {"abcd    12", "abcdef  34"}));
  EXPECT_THAT(ranges_, ElementsAre(CharacterRange{1, 7}, CharacterRange{8, 10}));
}

TEST_F(FixedBorders, MoveInFrontOfTextThatBeginsBefore) {
  EXPECT_TRUE(Move({{1, 7}, {8, 10}}, {"abc    123", "abc 123456"}));
  EXPECT_THAT(ranges_, ElementsAre(CharacterRange{1, 4}, CharacterRange{5, 10}));
}

TEST_F(FixedBorders, StayWhereNoPlaceIsBlankOrAColumnWouldLoseAll) {
  EXPECT_FALSE(Move({{1, 4}, {5, 8}}, {"abcd  12", "abcdef34"}));
  EXPECT_FALSE(Move({{1, 4}, {5, 8}}, {"abcdef  "})) << "nothing is left of the right one";
  EXPECT_FALSE(Move({{1, 4}, {5, 8}}, {"  cdefgh"})) << "nothing is left of the left one";
  EXPECT_FALSE(Move({{1, 4}, {6, 9}}, {"abcdefghi"})) << "they share no border";
}

TEST_F(FixedBorders, TheLastColumnMayGoToTheEndOfTheLine) {
  EXPECT_TRUE(Move({{1, 4}, {5, 0}}, {"abcd   12", "abcde  12345"}));
  EXPECT_THAT(ranges_, ElementsAre(CharacterRange{1, 6}, CharacterRange{7, 0}));
}

TEST_F(FixedBorders, EachIsMovedByItself) {
  EXPECT_TRUE(Move({{1, 4}, {5, 8}, {9, 14}}, {"abcd  12   345", "abcde   12  34"}));
  EXPECT_THAT(ranges_,
              ElementsAre(CharacterRange{1, 6}, CharacterRange{7, 11}, CharacterRange{12, 14}));
}

}  // namespace
}  // namespace library
