#include "model/FormatTable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace textwizard {
namespace {

struct Expected {
  const char* name;
  std::uint32_t code;
  std::uint32_t width;
  std::uint32_t decimals;
  // Smallest width with 0 and with 3 decimals.
  std::uint32_t smallest;
  std::uint32_t smallestWithThree;
  const char* word;
};

constexpr Expected kExpected[] = {
    {"F", 5, 8, 2, 1, 4, "f"},           {"E", 17, 1, 5, 8, 10, "e"},
    {"N", 16, 1, 5, 1, 1, "n"},          {"A", 1, 255, 0, 1, 1, "a"},
    {"COMMA", 3, 8, 2, 1, 4, "comma"},   {"DOT", 32, 8, 2, 1, 4, "dot"},
    {"DOLLAR", 4, 8, 2, 2, 5, "dollar"}, {"PCT", 31, 8, 2, 2, 5, "pct"},
    {"X", 0, 1, 0, 1, 1, "skip"},        {"DATE", 20, 11, 0, 9, 9, "date"},
    {"ADATE", 23, 10, 0, 8, 8, "adate"}, {"EDATE", 38, 10, 0, 8, 8, "edate"},
    {"JDATE", 24, 7, 0, 5, 5, "jdate"},  {"SDATE", 39, 10, 0, 8, 8, "sdate"},
    {"QYR", 29, 8, 0, 6, 6, "qyr"},      {"MOYR", 28, 8, 0, 6, 6, "moyr"},
    {"WKYR", 30, 10, 0, 8, 8, "wkyr"},   {"DATETIME", 22, 23, 2, 17, 24, "datetime"},
    {"TIME", 21, 11, 2, 5, 12, "time"},  {"DTIME", 25, 15, 2, 9, 16, "dtime"},
    {"WKDAY", 26, 9, 0, 2, 2, "wkday"},  {"MONTH", 27, 9, 0, 3, 3, "month"},
    {"MTIME", 85, 5, 0, 3, 7, nullptr},  {"YMDHMS", 86, 16, 0, 12, 18, nullptr},
    {"AUTO", 9999, 1, 0, 1, 1, "auto"},
};

TEST(FormatTable, EveryFormatHasItsCodeDefaultsAndMinimum) {
  std::size_t codes = 0;
  for (std::uint32_t code = 0; code <= 10000; ++code) codes += FindFormat(code) != nullptr;
  EXPECT_EQ(codes, std::size(kExpected));
  for (const Expected& expected : kExpected) {
    const FormatRow* row = FindFormat(expected.name);
    ASSERT_TRUE(row) << expected.name;
    EXPECT_EQ(FindFormat(expected.code), row) << expected.name;
    EXPECT_EQ(row->code, expected.code) << expected.name;
    EXPECT_EQ(row->defaultWidth, expected.width) << expected.name;
    EXPECT_EQ(row->defaultDecimals, expected.decimals) << expected.name;
    EXPECT_EQ(row->MinWidth(0), expected.smallest) << expected.name;
    EXPECT_EQ(row->MinWidth(3), expected.smallestWithThree) << expected.name;
  }
}

TEST(FormatTable, WidthsAreLimitedByTheFormat) {
  EXPECT_EQ(FindFormat("A")->MaxWidth(), 32767u);
  EXPECT_EQ(FindFormat("F")->MaxWidth(), 40u);
  EXPECT_EQ(FindFormat("AUTO")->MaxWidth(), 40u);
  EXPECT_EQ(FindFormat("X")->MaxWidth(), 4294967295u);
}

TEST(FormatTable, NamesMatchExactly) {
  for (const char* name : {"", "f", "AHEX", "FF", "SKIP", "Q"}) {
    EXPECT_EQ(FindFormat(std::string_view(name)), nullptr) << name;
  }
  for (const std::uint32_t code : {2u, 6u, 15u, 18u, 33u, 87u}) {
    EXPECT_EQ(FindFormat(code), nullptr) << code;
  }
}

TEST(FormatTable, TypeWordsAreReadInAnyLetterCase) {
  std::size_t words = 0;
  for (const Expected& expected : kExpected) {
    if (!expected.word) continue;
    ++words;
    const FormatRow* row = FindTypeWord(expected.word);
    ASSERT_TRUE(row) << expected.word;
    EXPECT_EQ(row->code, expected.code) << expected.word;
  }
  EXPECT_EQ(words, 23u);
  EXPECT_EQ(FindTypeWord("DateTime"), FindFormat("DATETIME"));
  for (const char* word : {"", "x", "mtime", "ymdhms", "dates"}) {
    EXPECT_EQ(FindTypeWord(word), nullptr) << word;
  }
}

TEST(FormatTable, ReportsNameEveryCodeOfTheHost) {
  const struct {
    std::uint32_t code;
    const char* name;
  } names[] = {{1, "A"},      {2, "AHEX"},   {3, "COMMA"},     {4, "DOLLAR"}, {5, "F"},
               {6, "IB"},     {7, "PIBHEX"}, {8, "P"},         {9, "PIB"},    {10, "PK"},
               {11, "RB"},    {12, "RBHEX"}, {15, "Z"},        {16, "N"},     {17, "E"},
               {20, "DATE"},  {21, "TIME"},  {22, "DATETIME"}, {23, "ADATE"}, {24, "JDATE"},
               {25, "DTIME"}, {26, "WKDAY"}, {27, "MONTH"},    {28, "MOYR"},  {29, "QYR"},
               {30, "WKYR"},  {31, "PCT"},   {32, "DOT"},      {33, "CCA"},   {34, "CCB"},
               {35, "CCC"},   {36, "CCD"},   {37, "CCE"},      {38, "EDATE"}, {39, "SDATE"},
               {40, "G"},     {85, "MTIME"}, {86, "YMDHMS"}};
  std::set<std::uint32_t> named;
  for (const auto& entry : names) {
    EXPECT_EQ(FormatNameOf(entry.code), entry.name);
    named.insert(entry.code);
  }
  for (std::uint32_t code = 0; code < 256; ++code) {
    if (!named.count(code)) {
      EXPECT_EQ(FormatNameOf(code), "badFormat") << code;
    }
  }
  EXPECT_EQ(FormatNameOf(9999), "badFormat");
}

}  // namespace
}  // namespace textwizard
