// Bytes of files and of memory, and what is no file.

#include "library/input/ByteSource.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace library {
namespace {

namespace fs = std::filesystem;

class ByteSourceTest : public testing::Test {
 protected:
  ByteSourceTest()
      : folder_(fs::temp_directory_path() /
                ("textwizard-byte-source-" + std::to_string(getpid()))) {
    fs::create_directories(folder_);
  }
  ~ByteSourceTest() override { fs::remove_all(folder_); }

  std::string Write(const std::string& name, const std::string& bytes) const {
    const std::string path = (folder_ / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  static std::string Read(ByteSource& source, std::uint64_t offset, std::size_t count) {
    std::string out(count, '?');
    std::size_t read = 0;
    std::string problem;
    EXPECT_TRUE(source.ReadAt(offset, out.data(), count, &read, &problem)) << problem;
    out.resize(read);
    return out;
  }

  const fs::path folder_;
};

TEST_F(ByteSourceTest, AFileIsReadAtAnyOffset) {
  std::string problem;
  const auto file = FileSource::Open(Write("a", "0123456789"), &problem);
  ASSERT_NE(file, nullptr) << problem;
  EXPECT_EQ(file->Size(), 10U);
  EXPECT_TRUE(file->IsWhole());
  EXPECT_EQ(Read(*file, 7, 10), "789");
  EXPECT_EQ(Read(*file, 0, 4), "0123");
  EXPECT_EQ(Read(*file, 10, 4), "");
  EXPECT_EQ(Read(*file, 99, 4), "");
}

TEST_F(ByteSourceTest, WhatIsNoFileIsNamed) {
  std::string problem;
  EXPECT_EQ(FileSource::Open((folder_ / "none").string(), &problem), nullptr);
  EXPECT_EQ(problem, "No such file or directory");
  EXPECT_EQ(FileSource::Open(folder_.string(), &problem), nullptr);
  EXPECT_EQ(problem, "it is a folder");
  const std::string pipe = (folder_ / "pipe").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(FileSource::Open(pipe, &problem), nullptr);
  EXPECT_EQ(problem, "it is no regular file");
}

TEST_F(ByteSourceTest, AFileWithoutPermissionIsNamed) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may read every file";
  const std::string path = Write("closed", "1");
  fs::permissions(path, fs::perms::none);
  std::string problem;
  EXPECT_EQ(FileSource::Open(path, &problem), nullptr);
  EXPECT_EQ(problem, "Permission denied");
}

TEST_F(ByteSourceTest, MemoryIsAWholeTextOrTheBeginningOfOne) {
  MemorySource source("abcdef", false);
  EXPECT_EQ(source.Size(), 6U);
  EXPECT_FALSE(source.IsWhole());
  EXPECT_EQ(Read(source, 4, 9), "ef");
  EXPECT_EQ(Read(source, 6, 1), "");
  EXPECT_TRUE(MemorySource("", true).IsWhole());
}

}  // namespace
}  // namespace library
