// What a page may name: files below the root, and nothing that leads out of it.
#include "cli/wizard/RootFolder.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cli {
namespace {

namespace fs = std::filesystem;

class RootFolderTest : public testing::Test {
 protected:
  void SetUp() override {
    base_ = fs::temp_directory_path() / ("root_folder_" + std::to_string(getpid()));
    fs::remove_all(base_);
    fs::create_directories(base_ / "root/inner");
    std::ofstream(base_ / "secret.csv") << "1\n";
    std::ofstream(base_ / "root/a.csv") << "a,b\n";
    std::ofstream(base_ / "root/.hidden") << "x";
    std::ofstream(base_ / "root/inner/b.csv") << "b\n";
    fs::create_symlink("../secret.csv", base_ / "root/link.csv");
    fs::create_directory_symlink("..", base_ / "root/out");
    fs::create_symlink("a.csv", base_ / "root/inside.csv");
    mkfifo((base_ / "root/pipe").c_str(), 0600);
  }
  void TearDown() override { fs::remove_all(base_); }
  fs::path base_;
};

TEST_F(RootFolderTest, FilesBelowTheRootAreFound) {
  const RootFolder root(base_ / "root");
  EXPECT_EQ(root.File("a.csv"), (base_ / "root/a.csv").string());
  EXPECT_EQ(root.File("inner/b.csv"), (base_ / "root/inner/b.csv").string());
}

TEST_F(RootFolderTest, NamesThatLeadOutOrNowhereFindNothing) {
  const RootFolder root(base_ / "root");
  const std::string zero("a.csv\0.txt", 10);
  for (const std::string& name :
       {std::string("../secret.csv"), std::string("inner/../../secret.csv"),
        std::string("/etc/passwd"), std::string("link.csv"), std::string("out/secret.csv"),
        std::string("inside.csv"), std::string("inner/../a.csv"), std::string("./a.csv"),
        std::string("inner//b.csv"), std::string("a.csv/"), std::string(""), std::string("."),
        std::string(".."), std::string("none.csv"), std::string("inner"), std::string("pipe"),
        std::string(10000, 'a'), zero}) {
    EXPECT_EQ(root.File(name), std::nullopt) << name;
  }
}

TEST_F(RootFolderTest, OutputsStayBelowTheRootToo) {
  const RootFolder root(base_ / "root");
  EXPECT_EQ(root.Output("new.csv"), (base_ / "root/new.csv").string());
  EXPECT_EQ(root.Output("inner/new.csv"), (base_ / "root/inner/new.csv").string());
  for (const char* name : {"../new.csv", "out/new.csv", "link.csv", "none/new.csv", "inner", "",
                           "/tmp/new.csv", "pipe"}) {
    EXPECT_EQ(root.Output(name), std::nullopt) << name;
  }
}

TEST_F(RootFolderTest, AListHasFoldersThenFilesAndNoLinks) {
  const RootFolder root(base_ / "root");
  const auto list = root.List("");
  ASSERT_TRUE(list.has_value());
  ASSERT_EQ(list->size(), 2U);
  EXPECT_EQ((*list)[0].name, "inner");
  EXPECT_TRUE((*list)[0].folder);
  EXPECT_EQ((*list)[1].name, "a.csv");
  EXPECT_EQ((*list)[1].size, 4);
  EXPECT_EQ(root.List("out"), std::nullopt);
  EXPECT_EQ(root.List(".."), std::nullopt);
  EXPECT_EQ(root.List("a.csv"), std::nullopt);
}

TEST_F(RootFolderTest, APathHasItsNameBelowTheRoot) {
  const RootFolder root(base_ / "root");
  EXPECT_EQ(root.NameOf((base_ / "root/inner/b.csv").string()), "inner/b.csv");
  EXPECT_EQ(root.NameOf((base_ / "secret.csv").string()), std::nullopt);
  EXPECT_EQ(root.NameOf((base_ / "root/link.csv").string()), std::nullopt);
}

TEST_F(RootFolderTest, ARootThatIsNoFolderIsRefused) {
  EXPECT_THROW(RootFolder(base_ / "secret.csv"), std::runtime_error);
  EXPECT_THROW(RootFolder(base_ / "none"), std::runtime_error);
}

}  // namespace
}  // namespace cli
