// Streams over real files.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "HostFramework/FileStream.h"

namespace {

class PosixFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "stream-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    path_ = folder_ + "/data.txt";
  }
  void TearDown() override {
    std::remove(path_.c_str());
    rmdir(folder_.c_str());
  }
  void Write(const std::string& text) { std::ofstream(path_, std::ios::binary) << text; }
  bool Open() { return stream_.Open(path_.c_str(), "", "rb"); }
  std::string ReadAll() {
    std::string text;
    unsigned char byte;
    while (stream_.ReadByte(&byte)) text += static_cast<char>(byte);
    return text;
  }

  std::string folder_;
  std::string path_;
  QANT_FileStream stream_;
};

TEST_F(PosixFile, ReadsItsBytes) {
  const std::string text("a\0b\xFF\n", 5);
  Write(text);
  ASSERT_TRUE(Open());
  EXPECT_EQ(stream_.Size(), 5);
  EXPECT_EQ(ReadAll(), text);
  EXPECT_FALSE(stream_.ReadFailed());
}

TEST_F(PosixFile, MissingFileDoesNotOpen) { EXPECT_FALSE(Open()); }

TEST_F(PosixFile, FolderDoesNotOpen) { EXPECT_FALSE(stream_.Open(folder_.c_str(), "", "rb")); }

TEST_F(PosixFile, PipeDoesNotOpenAndDoesNotWait) {
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_FALSE(Open());
}

TEST_F(PosixFile, EndlessDeviceDoesNotOpen) { EXPECT_FALSE(stream_.Open("/dev/zero", "", "rb")); }

TEST_F(PosixFile, FileWithoutPermissionDoesNotOpen) {
  Write("x");
  ASSERT_EQ(chmod(path_.c_str(), 0), 0);
  ASSERT_EQ(chmod(folder_.c_str(), 0755), 0);
  // Permissions do not bind the superuser, so another user tries.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (geteuid() == 0 && setresuid(65534, 65534, 65534) != 0) _exit(2);
    _exit(Open() ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(PosixFile, OffsetsBeyondFourGigabytesWork) {
  const std::int64_t end = (std::int64_t{5} << 30) + 3;
  const int file = open(path_.c_str(), O_WRONLY | O_CREAT, 0600);
  ASSERT_GE(file, 0);
  ASSERT_EQ(pwrite(file, "xyz", 3, end - 3), 3);
  close(file);
  ASSERT_TRUE(Open());
  EXPECT_EQ(stream_.Size(), end);
  ASSERT_EQ(stream_.Seek(-3, QANT_FileStream::kFromEnd), 0);
  EXPECT_EQ(ReadAll(), "xyz");
  EXPECT_EQ(stream_.Position(), end);
  ASSERT_EQ(stream_.Seek(end - 2, QANT_FileStream::kFromStart), 0);
  EXPECT_EQ(ReadAll(), "yz");
}

TEST_F(PosixFile, AFileCutWhileOpenIsAFailedRead) {
  Write("0123456789");
  ASSERT_TRUE(Open());
  ASSERT_EQ(truncate(path_.c_str(), 4), 0);
  EXPECT_EQ(ReadAll(), "0123");
  EXPECT_TRUE(stream_.ReadFailed());
}

TEST_F(PosixFile, AFileThatGrowsIsReadToItsNewEnd) {
  Write("0123");
  ASSERT_TRUE(Open());
  Write("0123456");
  EXPECT_EQ(ReadAll(), "0123456");
  EXPECT_FALSE(stream_.ReadFailed());
  EXPECT_EQ(stream_.Size(), 4);
}

TEST_F(PosixFile, CopiesReadAfterTheNameIsGone) {
  Write("0123");
  ASSERT_TRUE(Open());
  ASSERT_EQ(std::remove(path_.c_str()), 0);
  QANT_FileStream copy(stream_);
  EXPECT_EQ(copy.Buffered(), "0123");
  EXPECT_EQ(ReadAll(), "0123");
}

TEST_F(PosixFile, ACopyFailsWhenDescriptorsRunOut) {
  Write("0123");
  ASSERT_TRUE(Open());
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const int next = dup(0);
  ASSERT_GE(next, 0);
  close(next);
  rlimit none = before;
  none.rlim_cur = static_cast<rlim_t>(next);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  QANT_FileStream copy(stream_), other;
  const bool opened = other.Open(path_.c_str(), "", "rb");
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_FALSE(opened);
  EXPECT_FALSE(copy.IsOpen());
  EXPECT_TRUE(copy.ReadFailed());
  EXPECT_EQ(ReadAll(), "0123");
}

TEST_F(PosixFile, AThousandCopiesOneAfterAnotherLeaveNoDescriptorBehind) {
  Write("0123");
  ASSERT_TRUE(Open());
  const int before = dup(0);
  close(before);
  for (int i = 0; i < 1000; ++i) {
    QANT_FileStream copy(stream_);
    ASSERT_EQ(copy.Buffered(), "0123");
  }
  const int after = dup(0);
  close(after);
  EXPECT_EQ(after, before);
}

}  // namespace
