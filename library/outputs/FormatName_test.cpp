#include "library/outputs/FormatName.h"

#include <gtest/gtest.h>

#include "library/testing/TestSource.h"

namespace library {
namespace {

TEST(FormatName, HasTheDecimalsWhereThereAreAny) {
  EXPECT_EQ(FormatName({5, 8, 2}), "F8.2");
  EXPECT_EQ(FormatName({5, 4, 0}), "F4");
  EXPECT_EQ(FormatName({1, 20, 0}), "A20");
  EXPECT_EQ(FormatName({20, 11, 0}), "DATE11");
  EXPECT_EQ(FormatName({86, 16, 0}), "YMDHMS16");
  EXPECT_EQ(FormatName({22, 23, 2}), "DATETIME23.2");
}

TEST(FormatName, NamesAnUnknownCode) { EXPECT_EQ(FormatName({7777, 3, 1}), "badFormat3.1"); }

TEST(FormatName, EveryFormatOfACommandHasItsName) {
  const std::pair<int, const char*> names[] = {
      {1, "A"},      {3, "COMMA"},  {4, "DOLLAR"}, {5, "F"},         {16, "N"},     {17, "E"},
      {20, "DATE"},  {21, "TIME"},  {23, "ADATE"}, {22, "DATETIME"}, {24, "JDATE"}, {25, "DTIME"},
      {26, "WKDAY"}, {27, "MONTH"}, {28, "MOYR"},  {29, "QYR"},      {30, "WKYR"},  {31, "PCT"},
      {32, "DOT"},   {38, "EDATE"}, {39, "SDATE"}, {85, "MTIME"},    {86, "YMDHMS"}};
  for (const auto& [code, name] : names) {
    EXPECT_EQ(FormatName({code, 10, 0}), std::string(name) + "10");
  }
}

TEST(FormatName, KindsFollowTheFormat) {
  TestSource source;
  for (const int date : {20, 23, 24, 28, 29, 30, 38, 39}) source.Number("v", date, 11, 0);
  for (std::size_t index = 0; index < source.GetNVariables(); ++index) {
    EXPECT_EQ(KindOf(*source.GetVariable(index)), ValueKind::kDate) << index;
  }
  TestSource others;
  others.Number("a", 22, 20, 0).Number("b", 86, 20, 0).Number("c", 21, 8, 0).Number("d", 25, 11, 0);
  others.Number("e", 85, 8, 0).Number("f", 26, 9, 0).Number("g", 27, 9, 0).Number("h", 4, 9, 2);
  others.String("i", 3);
  const ValueKind expected[] = {ValueKind::kDateTime, ValueKind::kDateTime, ValueKind::kTime,
                                ValueKind::kTime,     ValueKind::kTime,     ValueKind::kNumber,
                                ValueKind::kNumber,   ValueKind::kNumber,   ValueKind::kString};
  for (std::size_t index = 0; index < others.GetNVariables(); ++index) {
    EXPECT_EQ(KindOf(*others.GetVariable(index)), expected[index]) << index;
  }
}

}  // namespace
}  // namespace library
