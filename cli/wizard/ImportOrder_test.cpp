// What a page may order: nothing that names a file besides the outputs, and no output over the
// data.
#include "cli/wizard/ImportOrder.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "cli/wizard/WizardServer.h"
#include "library/testing/TestFolder.h"

namespace cli {
namespace {

using nlohmann::json;

TEST(ImportOrder, OptionsAboutReadingAreTaken) {
  const json options = {"--decimal", "comma", "--join-quoted-lines", "--null", "NA,--messages"};
  EXPECT_EQ(CheckedOptions(options), options.get<std::vector<std::string>>());
  EXPECT_TRUE(CheckedOptions(json::array()).empty());
}

TEST(ImportOrder, OptionsThatNameFilesOrChangeTheRunAreRefused) {
  const json refused[] = {{"--messages", "x"},
                          {"--problems", "x"},
                          {"-o", "x.csv"},
                          {"--rejects", "x"},
                          {"--cases", "x"},
                          {"--decimal=comma"},
                          {"--dictionary", "x"},
                          {"other.sps"},
                          {"-"},
                          {"--decimal", "comma", "--output", "x.csv"}};
  for (const json& options : refused) {
    EXPECT_THROW(CheckedOptions(options), RequestRefused) << options;
  }
  EXPECT_THROW(CheckedOptions({"--null"}), RequestRefused);
  EXPECT_THROW(CheckedOptions({"--decimal", 7}), json::exception);
}

class ImportOrderOutputs : public testing::Test {
 protected:
  ImportOrderOutputs() {
    folder_.Write("data.csv", "a\n1\n");
    order_.data = folder_ / "data.csv";
  }
  std::string Checked(const std::string& name, bool replace = false) {
    return CheckedOutput(folder_ / name, order_, replace);
  }
  library::TestFolder folder_;
  ImportOrder order_;
};

TEST_F(ImportOrderOutputs, NamesWithAFormatAreTaken) {
  for (const char* name :
       {"a.csv", "a.tsv", "a.jsonl", "a.arrow", "a.parquet", "a.sqlite", "a.sps"}) {
    EXPECT_EQ(Checked(name), folder_ / name);
  }
  EXPECT_TRUE(IsCommandFile("a.sps"));
  EXPECT_FALSE(IsCommandFile("a.csv"));
}

TEST_F(ImportOrderOutputs, TheDataIsNeverWrittenOver) {
  EXPECT_THROW(Checked("data.csv"), RequestRefused);
  EXPECT_THROW(Checked("data.csv", true), RequestRefused);
  std::filesystem::create_hard_link(folder_ / "data.csv", folder_ / "same.csv");
  EXPECT_THROW(Checked("same.csv", true), RequestRefused);
}

TEST_F(ImportOrderOutputs, AFileThatIsThereIsReplacedWhenThatIsAllowed) {
  folder_.Write("old.csv", "x");
  EXPECT_THROW(Checked("old.csv"), RequestRefused);
  EXPECT_EQ(Checked("old.csv", true), folder_ / "old.csv");
}

TEST_F(ImportOrderOutputs, TwoOfOneNameAndUnknownEndingsAreRefused) {
  order_.outputs = {folder_ / "a.csv"};
  EXPECT_THROW(Checked("a.csv"), RequestRefused);
  EXPECT_THROW(Checked("a.exe"), RequestRefused);
  EXPECT_THROW(Checked("a"), RequestRefused);
}

}  // namespace
}  // namespace cli
