#include "library/input/ColumnPadder.h"

#include <gtest/gtest.h>

namespace library {
namespace {

// Also copied byte by byte.
std::string Padded(const std::string& text, const std::vector<std::int64_t>& places) {
  std::string whole;
  ColumnPadder padder(places);
  std::vector<ColumnPadder::Padding> paddings;
  padder.Copy(text, &whole, &paddings);
  if (const std::int64_t blanks = padder.Finish(&whole); blanks > 0) {
    paddings.push_back({text.size(), blanks});
  }
  // The text with the blanks that were told is the copy.
  std::string told = text;
  for (auto padding = paddings.rbegin(); padding != paddings.rend(); ++padding) {
    told.insert(padding->at, static_cast<std::size_t>(padding->blanks), ' ');
  }
  EXPECT_EQ(told, whole);
  std::string single;
  ColumnPadder other(places);
  for (const char byte : text) other.Copy({&byte, 1}, &single);
  other.Finish(&single);
  EXPECT_EQ(single, whole);
  return whole;
}

TEST(ColumnPadder, APlaceStandsFourBytesACharacterFarther) {
  EXPECT_EQ(Padded("abc12\nxyz7\n", {3}), "abc         12\nxyz         7\n");
  EXPECT_EQ(Padded("a1b\n", {1, 2}), "a   1   b\n");
}

TEST(ColumnPadder, CharactersCountAsOneHoweverManyBytesTheyHave) {
  EXPECT_EQ(Padded("\xC5\x81\xC3\xB3 12\n\xE6\x9D\xB1\xE4\xBA\xAC 7\n", {3}),
            "\xC5\x81\xC3\xB3        12\n\xE6\x9D\xB1\xE4\xBA\xAC      7\n");
  EXPECT_EQ(Padded("\xF0\x9F\x98\x80\xF0\x9F\x98\x80\xF0\x9F\x98\x80x\n", {3}),
            "\xF0\x9F\x98\x80\xF0\x9F\x98\x80\xF0\x9F\x98\x80x\n");
}

TEST(ColumnPadder, ALineThatEndsBeforeAPlaceStaysShort) {
  EXPECT_EQ(Padded("ab\n\nabc\nabcd", {3}), "ab\n\nabc         \nabc         d");
  EXPECT_EQ(Padded("abc", {3}), "abc         ") << "the line reaches the place";
}

TEST(ColumnPadder, EveryLineEndIsOne) {
  EXPECT_EQ(Padded("a1\r\nb2\rc3", {1}), "a   1\r\nb   2\rc   3");
}

TEST(ColumnPadder, NulsAndTheMarkCountForNothing) {
  EXPECT_EQ(Padded(std::string("a\0b1\n", 5), {2}), std::string("a\0b      1\n", 11));
  EXPECT_EQ(Padded("\xEF\xBB\xBF"
                   "ab1\n",
                   {2}),
            "\xEF\xBB\xBF"
            "ab      1\n");
  EXPECT_EQ(Padded("\xEF\xBB\xBE"
                   "b1\n",
                   {2}),
            "\xEF\xBB\xBE"
            "b    1\n")
      << "another character";
  EXPECT_EQ(Padded("a\xEF\xBB\xBF"
                   "1\n",
                   {2}),
            "a\xEF\xBB\xBF    1\n")
      << "in the midst it is a character";
}

TEST(ColumnPadder, WithoutPlacesNothingChanges) {
  EXPECT_EQ(Padded("abc\xC3\xA4\n\n", {}), "abc\xC3\xA4\n\n");
}

TEST(ColumnPadder, PlacesAreWrittenFromOne) {
  std::string problem;
  EXPECT_EQ(ParsePlaces("2,13,18", &problem), (std::vector<std::int64_t>{1, 12, 17}));
  EXPECT_EQ(PlacesText({1, 12, 17}), "2,13,18");
  for (const char* text : {"", "1", "0", "-3", "13,13", "18,13", "13,", ",13", "13;18", "x", "13 ",
                           "9223372036854775807", "99999999999999999999"}) {
    problem.clear();
    EXPECT_EQ(ParsePlaces(text, &problem), std::nullopt) << text;
    EXPECT_NE(problem, "") << text;
  }
}

}  // namespace
}  // namespace library
