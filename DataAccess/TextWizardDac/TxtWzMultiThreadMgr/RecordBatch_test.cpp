#include "TxtWzMultiThreadMgr/RecordBatch.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

TEST(RecordBatch, TakesRecordsWhileOneMoreByteIsLeft) {
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(125000));
  EXPECT_FALSE(batch.Append(std::string(124999, '1')));
  EXPECT_TRUE(batch.Append(std::string(124990, '1')));
  EXPECT_FALSE(batch.Append(std::string(8, '1')));
  EXPECT_TRUE(batch.Append(std::string(7, '1')));
  EXPECT_FALSE(batch.Append(""));
  EXPECT_EQ(batch.recordCount(), 2u);
}

TEST(RecordBatch, TextIsRecordsEndedByLineFeedsAndAZeroByte) {
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(100));
  ASSERT_TRUE(batch.Append("ab"));
  ASSERT_TRUE(batch.Append(""));
  ASSERT_TRUE(batch.Append("c"));
  batch.End(7, true);
  EXPECT_EQ(batch.text(), "ab\n\nc\n");
  EXPECT_EQ(batch.text().data()[6], '\0');
  EXPECT_EQ(batch.firstCase(), 7);
  EXPECT_TRUE(batch.decoded());
}

TEST(RecordBatch, RoomIsWhatWasAskedForThoughTheMemoryIsKept) {
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(100));
  const char* const text = batch.text().data();
  ASSERT_TRUE(batch.Begin(60));
  EXPECT_EQ(batch.text().data(), text);
  EXPECT_FALSE(batch.Append(std::string(59, '1')));
  EXPECT_TRUE(batch.Append(std::string(58, '1')));
  ASSERT_TRUE(batch.Begin(100));
  EXPECT_EQ(batch.text().data(), text);
  EXPECT_TRUE(batch.text().empty());
  EXPECT_EQ(batch.recordCount(), 0u);
  EXPECT_TRUE(batch.Append(std::string(98, '1')));
}

TEST(RecordBatch, KnowsWhatLiesInItsText) {
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(100));
  ASSERT_TRUE(batch.Append("abc"));
  batch.End(0, false);
  EXPECT_TRUE(batch.Contains(batch.text().substr(1, 2)));
  const std::string other = "bc";
  EXPECT_FALSE(batch.Contains(other));
  EXPECT_FALSE(batch.Contains({batch.text().data() + 4, 1}));
}

}  // namespace
}  // namespace textwizard
