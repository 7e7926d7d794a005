#include "library/files/FileNames.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class FileNamesTest : public testing::Test {
 protected:
  std::vector<std::string> Expanded(const std::vector<std::string>& given) {
    std::vector<std::string> names;
    std::string problem;
    EXPECT_TRUE(ExpandFileNames(given, &names, &problem)) << problem;
    return names;
  }

  TestFolder folder_;
};

TEST_F(FileNamesTest, APatternsFilesAreInTheOrderOfTheirNames) {
  for (const char* name : {"b.csv", "a10.csv", "a9.csv", "B.csv", "other.txt"}) {
    folder_.Write(name, "");
  }
  std::filesystem::create_directory(folder_ / "folder.csv");
  EXPECT_THAT(Expanded({folder_ / "*.csv"}), ElementsAre(folder_ / "B.csv", folder_ / "a10.csv",
                                                         folder_ / "a9.csv", folder_ / "b.csv"));
}

TEST_F(FileNamesTest, NamesStayAsGivenAndEachFileIsThereOnce) {
  const std::string a = folder_.Write("a.csv", "");
  const std::string b = folder_.Write("b.csv", "");
  EXPECT_THAT(Expanded({b, folder_ / "*.csv", a, "-", "gone"}), ElementsAre(b, a, "-", "gone"));
}

TEST_F(FileNamesTest, AFileMayBeCalledLikeAPattern) {
  const std::string odd = folder_.Write("[x].csv", "");
  folder_.Write("x.csv", "");
  EXPECT_THAT(Expanded({odd}), ElementsAre(odd));
  EXPECT_THAT(Expanded({folder_ / "[w-x].cs?"}), ElementsAre(folder_ / "x.csv"));
}

TEST_F(FileNamesTest, APatternOfNoFileIsSaid) {
  std::vector<std::string> names;
  std::string problem;
  EXPECT_FALSE(ExpandFileNames({folder_ / "*.csv"}, &names, &problem));
  EXPECT_THAT(problem, HasSubstr("no file matches"));
  EXPECT_TRUE(IsPattern("a?"));
  EXPECT_FALSE(IsPattern("a.csv"));
}

}  // namespace
}  // namespace library
