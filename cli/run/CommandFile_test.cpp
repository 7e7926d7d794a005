#include "cli/run/CommandFile.h"

#include <gtest/gtest.h>

#include "library/testing/TestFolder.h"

namespace cli {
namespace {

TEST(CommandFile, ReadsTheWholeFile) {
  const library::TestFolder folder;
  const std::string expected(300000, 'x');
  std::string text;
  std::string error;
  ASSERT_TRUE(ReadCommandFile(folder.Write("a.sps", expected), &text, &error)) << error;
  EXPECT_EQ(text, expected);
}

TEST(CommandFile, NamesAFileThatCannotBeRead) {
  const library::TestFolder folder;
  std::string text;
  std::string error;
  EXPECT_FALSE(ReadCommandFile(folder / "none.sps", &text, &error));
  EXPECT_EQ(error, "cannot read " + (folder / "none.sps") + ": No such file or directory");
  EXPECT_FALSE(ReadCommandFile(folder.path().string(), &text, &error));
  EXPECT_EQ(error, "cannot read " + folder.path().string() + ": Is a directory");
}

TEST(CommandFile, TellsWhichCommandsCanBeRunAndTheirData) {
  EXPECT_TRUE(CommandsOf("").empty());
  const auto outlines = CommandsOf(
      "GET DATA /TYPE=TXT /FILE='a' /VARIABLES=x F8.\nLIST.\n"
      "GET DATA /TYPE=TXT /VARIABLES=x F8.\n");
  ASSERT_EQ(outlines.size(), 3U);
  EXPECT_TRUE(outlines[0].canRun);
  EXPECT_EQ(outlines[0].dataFile, "a");
  EXPECT_FALSE(outlines[1].canRun);
  EXPECT_EQ(outlines[1].dataFile, "");
  EXPECT_TRUE(outlines[2].canRun);
  EXPECT_EQ(outlines[2].dataFile, "");
}

}  // namespace
}  // namespace cli
