#include "cli/CommandFile.h"

#include <gtest/gtest.h>

#include "cli/testing/TestFolder.h"

namespace cli {
namespace {

TEST(CommandFile, ReadsTheWholeFile) {
  const TestFolder folder;
  const std::string expected(300000, 'x');
  std::string text;
  std::string error;
  ASSERT_TRUE(ReadCommandFile(folder.Write("a.sps", expected), &text, &error)) << error;
  EXPECT_EQ(text, expected);
}

TEST(CommandFile, NamesAFileThatCannotBeRead) {
  const TestFolder folder;
  std::string text;
  std::string error;
  EXPECT_FALSE(ReadCommandFile(folder / "none.sps", &text, &error));
  EXPECT_EQ(error, "cannot read " + (folder / "none.sps") + ": No such file or directory");
  EXPECT_FALSE(ReadCommandFile(folder.path().string(), &text, &error));
  EXPECT_EQ(error, "cannot read " + folder.path().string() + ": Is a directory");
}

TEST(CommandFile, CountsTheCommandsThatCanBeRun) {
  const std::string one = "GET DATA /TYPE=TXT /FILE='a' /VARIABLES=x F8.\n";
  EXPECT_FALSE(HoldsSeveralCommands(""));
  EXPECT_FALSE(HoldsSeveralCommands(one));
  EXPECT_FALSE(HoldsSeveralCommands(one + "LIST.\n"));
  EXPECT_TRUE(HoldsSeveralCommands(one + "LIST.\n" + one));
}

}  // namespace
}  // namespace cli
