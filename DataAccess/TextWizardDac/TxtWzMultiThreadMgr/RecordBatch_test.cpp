#include "TxtWzMultiThreadMgr/RecordBatch.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"

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

std::vector<std::string> RecordsOf(const RecordBatch& batch) {
  BatchRecords walk;
  walk.Start(batch);
  std::vector<std::string> records;
  for (std::uint32_t i = 0; i < batch.recordCount(); ++i) records.emplace_back(walk.Next());
  return records;
}

TEST(RecordBatch, RecordsLieBetweenLineEndsOfEveryKind) {
  const embedded::ScopedMemoryFiles files("data.txt",
                                          "\nab\r\ncd\r\r\n\nefg\n\n\nh\rij\r\nk\n\r\n");
  QANT_FileStream stream;
  ASSERT_TRUE(stream.Open("data.txt", "", "rb"));
  RecordReader reader(stream);
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(100));
  ASSERT_TRUE(batch.Append("first"));
  batch.AppendRun(reader, 100);
  ASSERT_TRUE(batch.Append("last"));
  batch.End(0, false);
  EXPECT_EQ(RecordsOf(batch),
            (std::vector<std::string>{"first", "ab", "cd", "efg", "h", "ij", "k", "last"}));
}

// A record of bytes that are text already may be empty, and only a LF ends it.
TEST(RecordBatch, DecodedRecordsMayBeEmpty) {
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(100));
  for (const char* const record : {"", "ab", "", "c\r", ""}) ASSERT_TRUE(batch.Append(record));
  batch.End(0, true);
  EXPECT_EQ(RecordsOf(batch), (std::vector<std::string>{"", "ab", "", "c\r", ""}));
}

// Of "\r" and a record without text no line end of two bytes is made.
TEST(RecordBatch, EmptyLinesAreRecordsWhereTheyAreKept) {
  const embedded::ScopedMemoryFiles files("data.txt", "\nab\r\n\r\n\rcd\n\n\ref\r\rg");
  QANT_FileStream stream;
  ASSERT_TRUE(stream.Open("data.txt", "", "rb"));
  RecordReader reader(stream);
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(100));
  batch.KeepEmpty();
  ASSERT_TRUE(batch.Append(""));
  batch.AppendRun(reader, 3);
  EXPECT_EQ(batch.recordCount(), 4u);
  batch.AppendRun(reader, 100);
  EXPECT_EQ(batch.text().back(), '\r');
  ASSERT_TRUE(batch.Append(""));
  ASSERT_TRUE(batch.Append("last"));
  batch.End(0, false);
  EXPECT_EQ(RecordsOf(batch),
            (std::vector<std::string>{"", "", "ab", "", "", "cd", "", "", "ef", "", "", "last"}));
}

TEST(RecordBatch, ARowOfLineEndsKeepsItsLines) {
  const embedded::ScopedMemoryFiles files("data.txt", "a\n\r\r\rb");
  QANT_FileStream stream;
  ASSERT_TRUE(stream.Open("data.txt", "", "rb"));
  for (const char* const last : {"", "b"}) {
    RecordReader reader(stream);
    RecordBatch batch;
    ASSERT_TRUE(batch.Begin(100));
    batch.KeepEmpty();
    batch.AppendRun(reader, 100);
    ASSERT_TRUE(batch.Append(last));
    batch.End(0, false);
    EXPECT_EQ(RecordsOf(batch), (std::vector<std::string>{"a", "", "", "", last}));
  }
}

TEST(RecordBatch, GrowsAroundItsText) {
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(8));
  ASSERT_TRUE(batch.Append("abc"));
  EXPECT_FALSE(batch.Append("defg"));
  ASSERT_TRUE(batch.Grow(16));
  EXPECT_TRUE(batch.Append("defg"));
  EXPECT_TRUE(batch.Append("hijk"));
  EXPECT_FALSE(batch.Append("l"));
  batch.End(0, false);
  EXPECT_EQ(RecordsOf(batch), (std::vector<std::string>{"abc", "defg", "hijk"}));
  EXPECT_EQ(batch.caseCount(), 3u);
  batch.SetCases(1, 7);
  EXPECT_EQ(batch.caseCount(), 1u);
  EXPECT_EQ(batch.dataEndPosition(), 7);
}

TEST(RecordBatch, LongAndShortRecordsAreWalkedAcrossTheMarks) {
  RecordBatch batch;
  ASSERT_TRUE(batch.Begin(200000));
  std::vector<std::string> records;
  for (const std::size_t size : {1u, 62u, 63u, 64u, 4095u, 4096u, 1u, 20000u, 5u, 8191u, 64u}) {
    records.emplace_back(size, 'x');
    ASSERT_TRUE(batch.Append(records.back()));
  }
  batch.End(0, false);
  EXPECT_EQ(RecordsOf(batch), records);
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
