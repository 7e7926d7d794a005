// Columns of fixed places.

#include "library/sniff/BlankMask.h"

#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::vector<CharacterRange>> Columns(const std::vector<std::string_view>& lines) {
  CellKinds kinds;
  return FixedColumns(lines, kinds);
}

TEST(BlankMask, RunsLieBetweenPlacesThatEveryLineLeavesBlank) {
  BlankMask mask;
  mask.Add("ab  12");
  mask.Add("a    3");
  EXPECT_THAT(mask.Runs(), ElementsAre(CharacterRange{1, 2}, CharacterRange{5, 6}));
}

TEST(BlankMask, MasksOfPartsAddUp) {
  BlankMask all;
  BlankMask first;
  BlankMask second;
  for (const std::string_view line : {"ab  12", "abc 12"}) all.Add(line), first.Add(line);
  for (const std::string_view line : {"a    3 x", "abcd 7 y"}) all.Add(line), second.Add(line);
  first.Merge(second);
  EXPECT_EQ(first.Runs(), all.Runs());
  EXPECT_EQ(first.lines(), 4U);
}

TEST(BlankMask, PlacesAreCharacters) {
  BlankMask mask;
  mask.Add("äöü 1");
  mask.Add("abc 2");
  EXPECT_THAT(mask.Runs(), ElementsAre(CharacterRange{1, 3}, CharacterRange{5, 5}));
}

TEST(FixedColumns, RightAlignedNumbersTakeTheBlanksBeforeThem) {
  const auto ways = Columns({"Anna        7", "Bob Smith 123", "Li         45", "Carol      99"});
  ASSERT_FALSE(ways.empty());
  EXPECT_THAT(ways[0], ElementsAre(CharacterRange{1, 9}, CharacterRange{10, 13}));
}

TEST(FixedColumns, LeftAlignedTextsLeaveTheBlanksToTheColumnBeforeThem) {
  const auto ways =
      Columns({"Anna      red", "Bob Smith green", "Li        blue", "Carol     red"});
  ASSERT_FALSE(ways.empty());
  EXPECT_THAT(ways[0], ElementsAre(CharacterRange{1, 10}, CharacterRange{11, 15}));
}

TEST(FixedColumns, ARuleShowsTheColumns) {
  const auto ways = Columns({"name      n", "-------  --", "St. Gall  1", "Aro sa   22"});
  ASSERT_FALSE(ways.empty());
  EXPECT_EQ(ways[0].size(), 2U);
  EXPECT_EQ(ways[0][0].from, 1);
}

TEST(FixedColumns, WithoutBlanksDigitsAndLettersAreCutApart) {
  const auto ways = Columns({"0012AB2020", "0345CD2021", "9999XY1999", "0001QR2000"});
  ASSERT_FALSE(ways.empty());
  EXPECT_THAT(ways[0],
              ElementsAre(CharacterRange{1, 4}, CharacterRange{5, 6}, CharacterRange{7, 10}));
}

TEST(FixedColumns, ProseAndTabsHaveNone) {
  EXPECT_THAT(Columns({"To be, or not to be,", "that is the question:", "Whether 'tis nobler"}),
              IsEmpty());
  EXPECT_THAT(Columns({"a\tb", "c\td"}), IsEmpty());
}

TEST(FixedColumns, ALongValueIsNotCutByNumbersAtTheRight) {
  std::vector<std::string_view> lines(60, "sometexts          12");
  for (std::size_t i = 0; i < 30; ++i) lines[i] = "sometexts         123";
  lines[40] = "muchlongertexther   7";
  const auto ways = Columns(lines);
  ASSERT_FALSE(ways.empty());
  EXPECT_THAT(ways[0], ElementsAre(CharacterRange{1, 17}, CharacterRange{18, 21}));
}

TEST(FixedColumns, ANameLongerThanItsValuesIsNotCut) {
  const auto ways =
      Columns({"Survey of the whole year 2020", "id  yellow  group", " 1  M725x      78",
               " 2  O618x       1", " 3  Q188x      45", " 4  F982x      -8", " 5  Y875x      28",
               " 6  Q238x      17", " 7  S988x       5", " 8  A120x      11"});
  EXPECT_THAT(ways, Contains(ElementsAre(CharacterRange{1, 4}, CharacterRange{5, 10},
                                         CharacterRange{11, 17})));
}

TEST(FixedColumns, TheBlanksWithinDatesCutNothing) {
  const auto ways =
      Columns({"Anna   1 Jan 2000  2020-01-02 03:04:05", "Bo    12 Feb 1999  2021-03-04 10:11:12",
               "Carol  3 Mar 1998  2022-05-06 12:13:14"});
  ASSERT_FALSE(ways.empty());
  EXPECT_EQ(ways[0].size(), 3U);
  // Three columns of numbers are no date.
  EXPECT_EQ(Columns({"12 11 2001", "13 12 2002", "14 10 2003"})[0].size(), 3U);
}

TEST(FixedColumns, SignsOfMissingValuesDoNotCutDatesFromTimes) {
  const auto ways = Columns({"Anna  2020-01-02 03:04:05", "Bo                      -",
                             "Carl  2022-05-06 12:13:14", "Dora                 null"});
  ASSERT_FALSE(ways.empty());
  EXPECT_EQ(ways[0].size(), 2U);
}

TEST(FixedColumns, OneBlankBetweenWordsCutsNothingWhereColumnsStandTwoApart) {
  EXPECT_EQ(Columns({"12  green hill  7", "34  small town  8", "56  large wood  9"})[0].size(), 3U);
  // Where one blank separates columns elsewhere it does here.
  EXPECT_EQ(Columns({"12 green hill 7", "34 small town 8", "56 large wood 9"})[0].size(), 4U);
}

TEST(CutCharacters, EndsWithTheLine) {
  EXPECT_EQ(CutCharacters("äbc", {2, 9}), "bc");
  EXPECT_EQ(CutCharacters("äbc", {4, 9}), "");
  EXPECT_EQ(CutCharacters("äbc", {1, 0}), "äbc");
}

}  // namespace
}  // namespace library
