// Fields of fixed columns.
#include "reading/FixedFields.h"

#include <gtest/gtest.h>

#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using testing_support::MakeFixedVar;

// What a variable of `width` bytes from `start` takes of a record; "none" when it ends before.
std::string Field(std::string_view record, std::uint32_t start, std::uint32_t width) {
  std::string_view field = "unchanged";
  if (!CutFixedField(record, MakeFixedVar("V", kFormatF, 1, start, width), field)) {
    EXPECT_EQ(field, "");
    return "none";
  }
  return std::string(field);
}

TEST(FixedFields, ABytePositionAndAWidthMakeAField) {
  EXPECT_EQ(Field("abcdef", 0, 2), "ab");
  EXPECT_EQ(Field("abcdef", 2, 3), "cde");
}

TEST(FixedFields, TheRecordsEndCutsAField) {
  EXPECT_EQ(Field("abcdef", 4, 10), "ef");
  EXPECT_EQ(Field("abcdef", 4, 0xFFFFFFFF), "ef");
}

TEST(FixedFields, AFieldThatStartsAtTheRecordsEndIsEmptyAndABeyondOneIsNone) {
  EXPECT_EQ(Field("abc", 3, 2), "");
  EXPECT_EQ(Field("abc", 4, 2), "none");
  EXPECT_EQ(Field("", 0, 2), "");
  EXPECT_EQ(Field("", 0xFFFFFFFF, 2), "none");
}

TEST(FixedFields, StringsAreAsWideAsTheirStringWidthNumbersAsTheirFieldWidth) {
  TxtWzVar variable = MakeFixedVar("V", kFormatA, 1, 0, 0);
  variable.maxStringLength = 4;
  variable.width = 2;
  std::string_view field;
  ASSERT_TRUE(CutFixedField("abcdef", variable, field));
  EXPECT_EQ(field, "abcd");
  variable.formatType = kFormatF;
  ASSERT_TRUE(CutFixedField("abcdef", variable, field));
  EXPECT_EQ(field, "ab");
}

}  // namespace
}  // namespace textwizard
