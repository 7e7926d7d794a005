// The plan's own reader of lines.
#include "plan/TxtWzFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace textwizard {
namespace {

// A file of the test's own, removed with it.
class TestFile {
 public:
  explicit TestFile(const std::string& content) {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    path_ = testing::TempDir() + test->test_suite_name() + "_" + test->name() +
            std::to_string(getpid());
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~TestFile() { std::filesystem::remove(path_); }
  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

TEST(PlanFile, IsReadLineByLine) {
  const TestFile file("first\nsecond");
  TxtWzFile reader;
  char* line = nullptr;
  EXPECT_FALSE(reader.GetLine(&line));
  EXPECT_FALSE(reader.SeekBegin());
  EXPECT_EQ(reader.CloseFile(), 0);
  ASSERT_TRUE(reader.OpenFile(file.path()));
  EXPECT_FALSE(reader.OpenFile(file.path())) << "one at a time";
  ASSERT_TRUE(reader.GetLine(&line));
  EXPECT_STREQ(line, "first\n");
  ASSERT_TRUE(reader.GetLine(&line));
  EXPECT_STREQ(line, "second");
  EXPECT_FALSE(reader.GetLine(&line));
  ASSERT_TRUE(reader.SeekBegin());
  ASSERT_TRUE(reader.GetLine(&line));
  EXPECT_STREQ(line, "first\n");
  EXPECT_EQ(reader.CloseFile(), 1);
  EXPECT_EQ(reader.CloseFile(), 0);
  EXPECT_TRUE(reader.OpenFile(file.path()));
}

TEST(PlanFile, ALongLineComesInPieces) {
  const TestFile file(std::string(5000, 'x') + "\n");
  TxtWzFile reader;
  ASSERT_TRUE(reader.OpenFile(file.path()));
  char* line = nullptr;
  ASSERT_TRUE(reader.GetLine(&line));
  EXPECT_EQ(line, std::string(4097, 'x'));
  ASSERT_TRUE(reader.GetLine(&line));
  EXPECT_EQ(line, std::string(903, 'x') + "\n");
}

TEST(PlanFile, OneThatIsNotThere) {
  TxtWzFile reader;
  EXPECT_FALSE(reader.OpenFile("/no/such/folder/data.txt"));
  EXPECT_EQ(reader.CloseFile(), 0);
}

}  // namespace
}  // namespace textwizard
