#include "cli/parts/PartTexts.h"

#include <string>

#include <gtest/gtest.h>

namespace cli {
namespace {

std::int64_t Size(const std::string& text) {
  std::int64_t bytes = 0;
  std::string error;
  return ReadSize(text, &bytes, &error) ? bytes : -1;
}

TEST(PartTextsTest, SizesHaveUnits) {
  EXPECT_EQ(Size("1"), 1);
  EXPECT_EQ(Size("64k"), 65536);
  EXPECT_EQ(Size("64KiB"), 65536);
  EXPECT_EQ(Size("64kB"), 64000);
  EXPECT_EQ(Size("3MB"), 3000000);
  EXPECT_EQ(Size("64MiB"), 67108864);
  EXPECT_EQ(Size("2G"), 2147483648);
}

TEST(PartTextsTest, OtherTextsAreNoSizes) {
  for (const char* text :
       {"", "0", "-1", "x", "12x", "1 MB", "1.5MB", "9223372036854775808", "9007199254740992KiB"}) {
    EXPECT_EQ(Size(text), -1) << text;
  }
}

TEST(PartTextsTest, PartsAreNumberedFromOne) {
  PartNumber part;
  std::string error;
  ASSERT_TRUE(ReadPartNumber("2/16", &part, &error));
  EXPECT_EQ(part.number, 2);
  EXPECT_EQ(part.count, 16);
  for (const char* text : {"", "1", "0/4", "5/4", "1/0", "1/4x", "/4", "-1/4", "1/2000000000"}) {
    EXPECT_FALSE(ReadPartNumber(text, &part, &error)) << text;
  }
}

TEST(PartTextsTest, RangesRise) {
  library::PartRange range;
  std::string error;
  ASSERT_TRUE(ReadPartRange("10-2000", &range, &error));
  EXPECT_EQ(range, (library::PartRange{10, 2000}));
  for (const char* text : {"", "1", "5-5", "6-5", "-5", "1-", "1-2-3"}) {
    EXPECT_FALSE(ReadPartRange(text, &range, &error)) << text;
  }
}

}  // namespace
}  // namespace cli
