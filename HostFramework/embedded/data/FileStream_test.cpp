#include "HostFramework/FileStream.h"

#include <cstdlib>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"

namespace {

using embedded::ScopedBlockSize;
using embedded::ScopedMemoryFiles;
using embedded::StreamFaults;

constexpr const char* kPath = "data.txt";

std::string ReadByBytes(QANT_FileStream& stream) {
  std::string text;
  unsigned char byte;
  while (stream.ReadByte(&byte)) text += static_cast<char>(byte);
  return text;
}

std::string ReadByBlocks(QANT_FileStream& stream) {
  std::string text;
  for (std::string_view block = stream.Buffered(); !block.empty(); block = stream.Buffered()) {
    text += block;
    stream.Consume(block.size());
  }
  return text;
}

std::string Numbers(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += std::to_string(i) + '\n';
  return text;
}

TEST(FileStream, IsClosedAtFirst) {
  QANT_FileStream stream;
  unsigned char byte;
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(stream.Size(), -1);
  EXPECT_NE(stream.Seek(0, QANT_FileStream::kFromStart), 0);
  EXPECT_FALSE(stream.ReadByte(&byte));
  EXPECT_TRUE(stream.ReadFailed());
}

TEST(FileStream, EveryBlockSizeDeliversTheSameBytes) {
  const std::string text = Numbers(2000);
  const ScopedMemoryFiles files(kPath, text);
  for (const std::size_t size : {1u, 2u, 3u, 7u, 64u, 4096u, 0u}) {
    const ScopedBlockSize block(size);
    QANT_FileStream stream;
    ASSERT_TRUE(stream.Open(kPath, "", "rb"));
    EXPECT_EQ(stream.Size(), static_cast<std::int64_t>(text.size()));
    EXPECT_EQ(ReadByBytes(stream), text) << size;
    EXPECT_FALSE(stream.ReadFailed());
    ASSERT_EQ(stream.Seek(0, QANT_FileStream::kFromStart), 0);
    EXPECT_EQ(ReadByBlocks(stream), text) << size;
    EXPECT_EQ(stream.Position(), stream.Size());
  }
}

TEST(FileStream, EmptyFileEndsWithoutFailure) {
  const ScopedMemoryFiles files(kPath, "");
  QANT_FileStream stream;
  ASSERT_TRUE(stream.Open(kPath, "", "rb"));
  EXPECT_EQ(stream.Size(), 0);
  EXPECT_TRUE(stream.Buffered().empty());
  EXPECT_FALSE(stream.ReadFailed());
  EXPECT_EQ(stream.Position(), 0);
}

TEST(FileStream, OnlyModesThatReadOpen) {
  const ScopedMemoryFiles files(kPath, "x");
  QANT_FileStream stream;
  EXPECT_FALSE(stream.Open(kPath, "", "wb"));
  EXPECT_FALSE(stream.Open(kPath, "", "ab"));
  EXPECT_FALSE(stream.Open(kPath, "", "r+b"));
  EXPECT_FALSE(stream.Open(kPath, "", nullptr));
  EXPECT_FALSE(stream.Open(nullptr, "", "rb"));
  EXPECT_TRUE(stream.Open(kPath, "", "r"));
}

TEST(FileStream, AFailedOpenClosesTheFileBefore) {
  const ScopedMemoryFiles files(kPath, "x");
  QANT_FileStream stream;
  ASSERT_TRUE(stream.Open(kPath, "", "rb"));
  EXPECT_FALSE(stream.Open("other", "", "rb"));
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(stream.Size(), -1);
}

TEST(FileStream, SeeksCountFromStartCurrentAndEnd) {
  const ScopedMemoryFiles files(kPath, "abcdefgh");
  QANT_FileStream stream;
  unsigned char byte;
  ASSERT_TRUE(stream.Open(kPath, "", "rb"));
  ASSERT_EQ(stream.Seek(3, QANT_FileStream::kFromStart), 0);
  ASSERT_TRUE(stream.ReadByte(&byte));
  EXPECT_EQ(byte, 'd');
  ASSERT_EQ(stream.Seek(-2, QANT_FileStream::kFromCurrent), 0);
  EXPECT_EQ(stream.Position(), 2);
  ASSERT_TRUE(stream.ReadByte(&byte));
  EXPECT_EQ(byte, 'c');
  ASSERT_EQ(stream.Seek(-1, QANT_FileStream::kFromEnd), 0);
  ASSERT_TRUE(stream.ReadByte(&byte));
  EXPECT_EQ(byte, 'h');
  EXPECT_FALSE(stream.ReadByte(&byte));
  ASSERT_EQ(stream.Seek(-1, QANT_FileStream::kFromCurrent), 0);
  ASSERT_TRUE(stream.ReadByte(&byte));
  EXPECT_EQ(byte, 'h');
}

TEST(FileStream, ASeekBeforeTheStartIsRefusedAndMovesNothing) {
  const ScopedMemoryFiles files(kPath, "abc");
  QANT_FileStream stream;
  unsigned char byte;
  ASSERT_TRUE(stream.Open(kPath, "", "rb"));
  ASSERT_TRUE(stream.ReadByte(&byte));
  EXPECT_NE(stream.Seek(-2, QANT_FileStream::kFromCurrent), 0);
  EXPECT_NE(stream.Seek(-1, QANT_FileStream::kFromStart), 0);
  EXPECT_NE(stream.Seek(INT64_MAX, QANT_FileStream::kFromCurrent), 0);
  EXPECT_EQ(stream.Position(), 1);
  ASSERT_TRUE(stream.ReadByte(&byte));
  EXPECT_EQ(byte, 'b');
}

TEST(FileStream, ASeekBehindTheEndReadsNothing) {
  const ScopedMemoryFiles files(kPath, "abc");
  QANT_FileStream stream;
  ASSERT_TRUE(stream.Open(kPath, "", "rb"));
  ASSERT_EQ(stream.Seek(100, QANT_FileStream::kFromStart), 0);
  EXPECT_EQ(stream.Position(), 100);
  EXPECT_TRUE(stream.Buffered().empty());
  EXPECT_FALSE(stream.ReadFailed());
}

TEST(FileStream, ASeekInsideTheBlockReadsNothingAgain) {
  auto faults = std::make_shared<StreamFaults>();
  int reads = 0;
  faults->beforeRead = [&reads](std::int64_t) { ++reads; };
  const ScopedMemoryFiles files(kPath, Numbers(100), faults);
  QANT_FileStream stream;
  unsigned char byte;
  ASSERT_TRUE(stream.Open(kPath, "", "rb"));
  for (int i = 0; i < 50; ++i) {
    ASSERT_TRUE(stream.ReadByte(&byte));
    ASSERT_TRUE(stream.ReadByte(&byte));
    ASSERT_EQ(stream.Seek(-1, QANT_FileStream::kFromCurrent), 0);
  }
  ASSERT_EQ(stream.Seek(0, QANT_FileStream::kFromStart), 0);
  ASSERT_EQ(stream.Seek(0, QANT_FileStream::kFromEnd), 0);
  ASSERT_EQ(stream.Seek(5, QANT_FileStream::kFromStart), 0);
  ASSERT_TRUE(stream.ReadByte(&byte));
  EXPECT_EQ(reads, 1);
}

TEST(FileStream, RandomSeeksAndReadsAgreeWithTheText) {
  const std::string text = Numbers(300);
  const auto size = static_cast<std::int64_t>(text.size());
  const ScopedMemoryFiles files(kPath, text);
  for (const std::size_t blockSize : {1u, 2u, 5u, 64u, 4096u}) {
    const ScopedBlockSize block(blockSize);
    std::mt19937 random(7);
    QANT_FileStream stream;
    ASSERT_TRUE(stream.Open(kPath, "", "rb"));
    std::int64_t position = 0;
    for (int i = 0; i < 20000; ++i) {
      ASSERT_EQ(stream.Position(), position);
      switch (random() % 3) {
        case 0: {
          unsigned char byte = 0;
          const bool read = stream.ReadByte(&byte);
          ASSERT_EQ(read, position < size);
          if (read) {
            ASSERT_EQ(byte, static_cast<unsigned char>(text[static_cast<std::size_t>(position)]));
            ++position;
          }
          break;
        }
        case 1: {
          const auto step = static_cast<std::int64_t>(random() % 21) - 10;
          const bool possible = position + step >= 0;
          ASSERT_EQ(stream.Seek(step, QANT_FileStream::kFromCurrent) == 0, possible);
          if (possible) position += step;
          break;
        }
        default:
          if (random() % 50 != 0) break;
          position = static_cast<std::int64_t>(random()) % (size + 3);
          ASSERT_EQ(stream.Seek(position, QANT_FileStream::kFromStart), 0);
      }
    }
  }
}

TEST(FileStream, ACopyStartsWhereTheOriginalStoodAndMovesAlone) {
  const ScopedMemoryFiles files(kPath, "abcdef");
  QANT_FileStream stream;
  unsigned char byte;
  ASSERT_TRUE(stream.Open(kPath, "", "rb"));
  ASSERT_TRUE(stream.ReadByte(&byte));
  QANT_FileStream copy(stream);
  EXPECT_EQ(copy.Position(), 1);
  EXPECT_EQ(copy.Size(), 6);
  EXPECT_EQ(ReadByBytes(copy), "bcdef");
  EXPECT_EQ(stream.Position(), 1);
  EXPECT_EQ(ReadByBytes(stream), "bcdef");
}

TEST(FileStream, ACopyOutlivesTheOriginal) {
  const ScopedMemoryFiles files(kPath, "abc");
  auto stream = std::make_unique<QANT_FileStream>();
  ASSERT_TRUE(stream->Open(kPath, "", "rb"));
  QANT_FileStream copy(*stream);
  stream.reset();
  EXPECT_EQ(ReadByBytes(copy), "abc");
}

TEST(FileStream, ACopyOfAClosedStreamIsClosed) {
  const QANT_FileStream stream;
  const QANT_FileStream copy(stream);
  EXPECT_FALSE(copy.IsOpen());
}

}  // namespace
