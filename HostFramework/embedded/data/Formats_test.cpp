// The table of display formats.
#include "HostFramework/Formats.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

TEST(Formats, EveryFormatHasItsSmallestWidths) {
  const struct {
    int type, whole, twoDecimals;
  } kExpected[] = {{5, 1, 3},   {17, 8, 9}, {16, 1, 1}, {1, 1, 1},  {3, 1, 3},    {32, 1, 3},
                   {4, 2, 4},   {31, 2, 4}, {20, 9, 9}, {23, 8, 8}, {38, 8, 8},   {24, 5, 5},
                   {39, 8, 8},  {29, 6, 6}, {28, 6, 6}, {30, 8, 8}, {22, 17, 23}, {21, 5, 11},
                   {25, 9, 15}, {26, 2, 2}, {27, 3, 3}, {85, 3, 6}, {86, 12, 17}};
  for (const auto& [type, whole, twoDecimals] : kExpected) {
    const DisplayFormat* format = DisplayFormatOf(type);
    ASSERT_NE(format, nullptr) << type;
    EXPECT_EQ(format->MinWidth(0), whole) << type;
    EXPECT_EQ(format->MinWidth(2), twoDecimals) << type;
  }
}

// Found by layouts that write all of mm:ss and of yyyy-mm-dd hh:mm.
TEST(Formats, TwoNeedMoreWidthWhereTheyAreFound) {
  for (const DisplayFormat& format : kDisplayFormats) {
    const int width = MinWidthFound(format);
    if (format.code == kFormatMTime) {
      EXPECT_EQ(width, 5);
    } else if (format.code == kFormatYmdhms) {
      EXPECT_EQ(width, 16);
    } else {
      EXPECT_EQ(width, format.minWidth) << format.name;
    }
  }
}

TEST(Formats, CodesAndNamesAreOfOneFormatEach) {
  std::set<int> codes;
  std::set<std::string_view> names;
  for (const DisplayFormat& format : kDisplayFormats) {
    EXPECT_TRUE(codes.insert(format.code).second) << format.name;
    EXPECT_TRUE(names.insert(format.name).second) << format.name;
    EXPECT_EQ(DisplayFormatOf(format.code), &format);
  }
  for (const int code : {-1, 0, 13, 14, 18, 19, 41, 84, 87, 9999}) {
    EXPECT_EQ(DisplayFormatOf(code), nullptr) << code;
  }
}

TEST(Formats, KindsTellDatesFromTimesAndNumbers) {
  EXPECT_EQ(DisplayFormatOf(kFormatA)->kind, ValueKind::kString);
  EXPECT_EQ(DisplayFormatOf(kFormatMonth)->kind, ValueKind::kNumber);
  EXPECT_EQ(DisplayFormatOf(kFormatWkyr)->kind, ValueKind::kDate);
  EXPECT_EQ(DisplayFormatOf(kFormatYmdhms)->kind, ValueKind::kDateTime);
  EXPECT_EQ(DisplayFormatOf(kFormatMTime)->kind, ValueKind::kTime);
}

}  // namespace
