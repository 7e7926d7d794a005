// Reads that fail, fall short or come byte by byte never pass for the end of a file.
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/FileStream.h"
#include "HostFramework/embedded/data/testing/MemoryDevice.h"

namespace {

using embedded::ScopedBlockSize;
using embedded::ScopedMemoryFiles;
using embedded::StreamFaults;

constexpr const char* kPath = "data.txt";

class FaultyFile : public testing::Test {
 protected:
  std::string ReadAll() {
    std::string text;
    unsigned char byte;
    while (stream_.ReadByte(&byte)) text += static_cast<char>(byte);
    return text;
  }

  const std::string text_ = "one\ntwo\nthree\n";
  std::shared_ptr<StreamFaults> faults_ = std::make_shared<StreamFaults>();
  ScopedMemoryFiles files_{kPath, text_, faults_};
  QANT_FileStream stream_;
};

TEST_F(FaultyFile, AFailureAtAnyOffsetIsReportedBehindTheBytesBeforeIt) {
  for (const std::size_t blockSize : {1u, 3u, 4096u}) {
    const ScopedBlockSize block(blockSize);
    for (std::size_t offset = 0; offset <= text_.size(); ++offset) {
      faults_->failAt = static_cast<std::int64_t>(offset);
      ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
      EXPECT_EQ(ReadAll(), text_.substr(0, offset));
      EXPECT_TRUE(stream_.ReadFailed()) << offset;
    }
  }
}

TEST_F(FaultyFile, AFileThatShrankAtAnyOffsetIsAFailure) {
  for (const std::size_t blockSize : {1u, 3u, 4096u}) {
    const ScopedBlockSize block(blockSize);
    for (std::size_t offset = 0; offset <= text_.size(); ++offset) {
      faults_->cutAt = static_cast<std::int64_t>(offset);
      ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
      EXPECT_EQ(ReadAll(), text_.substr(0, offset));
      EXPECT_EQ(stream_.ReadFailed(), offset < text_.size()) << offset;
    }
  }
}

TEST_F(FaultyFile, ACopyKnowsThatTheFileShrank) {
  ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  faults_->cutAt = 4;
  QANT_FileStream copy(stream_);
  while (!copy.Buffered().empty()) copy.Consume(copy.Buffered().size());
  EXPECT_EQ(copy.Position(), 4);
  EXPECT_TRUE(copy.ReadFailed());
}

TEST_F(FaultyFile, OneByteAtATimeIsTheWholeFile) {
  faults_->mostBytes = 1;
  ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  EXPECT_EQ(ReadAll(), text_);
  EXPECT_FALSE(stream_.ReadFailed());
}

TEST_F(FaultyFile, AFailureLastsUntilASeek) {
  faults_->failAt = 4;
  ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  EXPECT_EQ(ReadAll(), "one\n");
  faults_->failAt = -1;
  unsigned char byte;
  EXPECT_FALSE(stream_.ReadByte(&byte));
  EXPECT_TRUE(stream_.Buffered().empty());
  EXPECT_TRUE(stream_.ReadFailed());
  ASSERT_EQ(stream_.Seek(0, QANT_FileStream::kFromCurrent), 0);
  EXPECT_FALSE(stream_.ReadFailed());
  EXPECT_EQ(ReadAll(), "two\nthree\n");
}

TEST_F(FaultyFile, AReopenedStreamForgetsTheFailure) {
  faults_->failAt = 0;
  ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  EXPECT_EQ(ReadAll(), "");
  faults_->failAt = -1;
  ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  EXPECT_EQ(ReadAll(), text_);
}

TEST_F(FaultyFile, ACopyWithoutADescriptorFailsInsteadOfBeingEmpty) {
  ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  faults_->duplicatesLeft = 1;
  QANT_FileStream first(stream_), second(stream_);
  EXPECT_TRUE(first.IsOpen());
  EXPECT_FALSE(second.IsOpen());
  EXPECT_TRUE(second.ReadFailed());
  EXPECT_NE(second.Seek(0, QANT_FileStream::kFromStart), 0);
  EXPECT_TRUE(second.ReadFailed());
  EXPECT_TRUE(second.Buffered().empty());
  EXPECT_TRUE(second.ReadFailed());
}

TEST_F(FaultyFile, AReadMayWait) {
  std::int64_t waitedAt = -1;
  faults_->beforeRead = [&waitedAt](std::int64_t offset) { waitedAt = offset; };
  const ScopedBlockSize block(8);
  ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  stream_.Consume(stream_.Buffered().size());
  EXPECT_EQ(waitedAt, 0);
  EXPECT_FALSE(stream_.Buffered().empty());
  EXPECT_EQ(waitedAt, 8);
}

}  // namespace
