#include "library/outputs/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include "library/testing/TestFolder.h"

namespace {

// What the process asked of the disk, in order: "file" or "folder" for one that is to be settled,
// "name" for a file that takes another's.
std::vector<std::string>& DiskCalls() {
  static std::vector<std::string> calls;
  return calls;
}

// What the next fsync fails with; 0 lets it do its work.
int nextSettleError = 0;

// Bytes that the next writes of several pieces take at most, in turn; then they take all.
std::vector<std::size_t>& ShortWrites() {
  static std::vector<std::size_t> most;
  return most;
}

}  // namespace

// In the place of the library's functions, as far as this program is concerned.
extern "C" int fsync(int descriptor) {
  struct stat file {};
  fstat(descriptor, &file);
  DiskCalls().push_back(S_ISDIR(file.st_mode) ? "folder" : "file");
  if (nextSettleError != 0) {
    errno = std::exchange(nextSettleError, 0);
    return -1;
  }
  return static_cast<int>(syscall(SYS_fsync, descriptor));
}

extern "C" ssize_t writev(int descriptor, const iovec* pieces, int count) {
  if (ShortWrites().empty()) return syscall(SYS_writev, descriptor, pieces, count);
  const std::size_t most = ShortWrites().back();
  ShortWrites().pop_back();
  if (most == 0) {
    errno = EINTR;
    return -1;
  }
  std::string some;
  for (int i = 0; i < count && some.size() < most; ++i) {
    some.append(static_cast<const char*>(pieces[i].iov_base), pieces[i].iov_len);
  }
  some.resize(std::min(some.size(), most));
  return write(descriptor, some.data(), some.size());
}

extern "C" int rename(const char* from, const char* to) noexcept {
  DiskCalls().push_back("name");
  return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

namespace library {
namespace {

namespace fs = std::filesystem;

TEST(OutputFile, TextsOfEverySizeStandInTheirOrder) {
  const TestFolder folder;
  std::string error, expected;
  const auto file = OutputFile::Open(folder / "out.csv", &error);
  ASSERT_NE(file, nullptr) << error;
  for (std::size_t size = 1; size < (std::size_t{1} << 21); size = size * 3 + 1) {
    const std::string text(size, static_cast<char>('a' + size % 26));
    file->Append('|');
    file->Append(text);
    expected += '|' + text;
  }
  ASSERT_TRUE(file->Finish() && file->Publish());
  EXPECT_EQ(folder.Text("out.csv"), expected);
}

TEST(OutputFile, PiecesStandInTheirOrderHoweverManyTheSystemTakes) {
  for (const std::size_t size : {100U, 3000U}) {
    for (const std::size_t count : {1U, 511U, 512U, 513U, 1500U}) {
      const TestFolder folder;
      std::string error, expected = "before";
      const auto file = OutputFile::Open(folder / "out.arrow", &error);
      ASSERT_NE(file, nullptr) << error;
      std::vector<std::string> texts;
      for (std::size_t i = 0; i < count; ++i) {
        texts.emplace_back(i % 5 == 0 ? 0 : size + i, static_cast<char>('a' + i % 26));
      }
      const std::vector<std::string_view> pieces(texts.begin(), texts.end());
      for (const std::string& text : texts) expected += text;
      ShortWrites() = {1, 0, 3000, 100000, 2999, 0};
      file->Append("before");
      file->AppendPieces(pieces);
      file->Append("behind");
      ShortWrites().clear();
      ASSERT_TRUE(file->Finish() && file->Publish());
      EXPECT_EQ(folder.Text("out.arrow"), expected + "behind") << count << " of " << size;
    }
  }
}

TEST(OutputFile, TakesItsNameWhenPublished) {
  const TestFolder folder;
  std::string error;
  const auto file = OutputFile::Open(folder / "out.csv", &error);
  ASSERT_NE(file, nullptr) << error;
  file->Append("one,");
  file->Append('2');
  char* room = file->Reserve(3);
  room[0] = '\n';
  file->Advance(room + 1);
  ASSERT_TRUE(file->Finish());
  EXPECT_FALSE(folder.Holds("out.csv"));
  ASSERT_TRUE(file->Publish());
  EXPECT_EQ(folder.Text("out.csv"), "one,2\n");
  EXPECT_EQ(folder.Count(), 1U);
}

TEST(OutputFile, IsOnTheDiskBeforeItTakesItsNameAndSoIsTheNameAfterwards) {
  const TestFolder folder;
  DiskCalls().clear();
  std::string error;
  const auto file = OutputFile::Open(folder / "out.csv", &error);
  ASSERT_NE(file, nullptr) << error;
  file->Append("text");
  ASSERT_TRUE(file->Finish() && file->Publish());
  EXPECT_EQ(DiskCalls(), (std::vector<std::string>{"file", "name", "folder"}));
}

TEST(OutputFile, ADiskThatCannotKeepItLeavesNothing) {
  const TestFolder folder;
  folder.Write("out.csv", "as it was");
  std::string error;
  {
    const auto file = OutputFile::Open(folder / "out.csv", &error);
    ASSERT_NE(file, nullptr) << error;
    file->Append("text");
    nextSettleError = EIO;
    EXPECT_FALSE(file->Finish());
    EXPECT_EQ(file->error(), "cannot write " + (folder / "out.csv") + ": Input/output error");
    EXPECT_FALSE(file->Publish());
  }
  EXPECT_EQ(folder.Text("out.csv"), "as it was");
  EXPECT_EQ(folder.Count(), 1U);
}

TEST(OutputFile, AFileSystemWithoutSuchACallIsNoFailure) {
  const TestFolder folder;
  std::string error;
  const auto file = OutputFile::Open(folder / "out.csv", &error);
  ASSERT_NE(file, nullptr) << error;
  nextSettleError = EINVAL;
  EXPECT_TRUE(file->Finish() && file->Publish());
  EXPECT_TRUE(folder.Holds("out.csv"));
}

TEST(OutputFile, WhatIsNoFileOfItsOwnIsNotSettled) {
  DiskCalls().clear();
  std::string error;
  const auto file = OutputFile::Open("/dev/null", &error);
  ASSERT_NE(file, nullptr) << error;
  EXPECT_TRUE(file->Finish() && file->Publish());
  EXPECT_TRUE(DiskCalls().empty());
}

TEST(OutputFile, LeavesNothingWhenNotPublished) {
  const TestFolder folder;
  folder.Write("out.csv", "as it was");
  std::string error;
  {
    const auto file = OutputFile::Open(folder / "out.csv", &error);
    ASSERT_NE(file, nullptr) << error;
    file->Append("half");
    file->Flush();
    EXPECT_EQ(folder.Count(), 2U);
  }
  EXPECT_EQ(folder.Count(), 1U);
  EXPECT_EQ(folder.Text("out.csv"), "as it was");
}

TEST(OutputFile, WritesTextsLongerThanItsBuffer) {
  const TestFolder folder;
  std::string error;
  std::string expected;
  const auto file = OutputFile::Open(folder / "out", &error);
  ASSERT_NE(file, nullptr) << error;
  for (std::size_t length = 0; length < 700000; length = length * 3 + 1) {
    const std::string text(length, static_cast<char>('a' + length % 26));
    file->Append(text);
    file->Append('\n');
    expected += text + "\n";
  }
  ASSERT_TRUE(file->Finish() && file->Publish());
  EXPECT_EQ(folder.Text("out"), expected);
}

TEST(OutputFile, TellsThatADiskIsFull) {
  std::string error;
  const auto file = OutputFile::Open("/dev/full", &error);
  ASSERT_NE(file, nullptr) << error;
  file->Append("text");
  EXPECT_FALSE(file->Finish());
  EXPECT_FALSE(file->ok());
  EXPECT_EQ(file->error(), "cannot write /dev/full: No space left on device");
  EXPECT_FALSE(file->Publish());
  struct stat device {};
  ASSERT_EQ(stat("/dev/full", &device), 0);
  EXPECT_TRUE(S_ISCHR(device.st_mode));
}

TEST(OutputFile, NamesATargetThatCannotBeWritten) {
  const TestFolder folder;
  std::string error;
  EXPECT_EQ(OutputFile::Open(folder / "none/out.csv", &error), nullptr);
  EXPECT_EQ(error, "cannot write " + (folder / "none/out.csv") + ": No such file or directory");
  EXPECT_EQ(OutputFile::Open(folder.path().string(), &error), nullptr);
  EXPECT_EQ(error, "cannot write " + folder.path().string() + ": Is a directory");
}

TEST(OutputFile, ReplacesTheFileBehindALinkAndKeepsItsPermissions) {
  const TestFolder folder;
  folder.Write("real.csv", "old");
  fs::permissions(folder / "real.csv", fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real.csv", folder / "link.csv");
  std::string error;
  const auto file = OutputFile::Open(folder / "link.csv", &error);
  ASSERT_NE(file, nullptr) << error;
  file->Append("new");
  ASSERT_TRUE(file->Finish() && file->Publish());
  EXPECT_TRUE(fs::is_symlink(folder / "link.csv"));
  EXPECT_EQ(folder.Text("real.csv"), "new");
  EXPECT_EQ(fs::status(folder / "real.csv").permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
}

TEST(OutputFile, WritesToAPipeAsItStands) {
  const TestFolder folder;
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  // Both ends in one process: the reader first, without waiting for a writer.
  const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  std::string error;
  const auto file = OutputFile::Open(pipe, &error);
  ASSERT_NE(file, nullptr) << error;
  file->Append("through");
  ASSERT_TRUE(file->Finish() && file->Publish());
  char text[16];
  EXPECT_EQ(std::string(text, static_cast<std::size_t>(read(reader, text, sizeof text))),
            "through");
  close(reader);
  EXPECT_TRUE(fs::is_fifo(pipe));
}

}  // namespace
}  // namespace library
