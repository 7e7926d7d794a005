#include "cli/wizard/ProblemRows.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "library/testing/TestFolder.h"

namespace cli {
namespace {

using nlohmann::json;

class ProblemRowsTest : public testing::Test {
 protected:
  ProblemRowsTest() : rows_folder_(folder_ / "rows") {
    std::filesystem::create_directory(rows_folder_);
    std::ofstream file(rows_folder_ + "/problems.jsonl");
    for (int line = 1; line <= 250; ++line) {
      json row = {{"kind", "unreadable"}, {"line", line}, {"text", "ü\n<b>"}};
      row["variable"] = line % 5 == 0 ? json("b") : json("a");
      if (line == 250) row["variable"] = nullptr;
      file << row.dump() << "\n";
    }
  }
  static json Ask(const ProblemRows& rows, const std::string& variable, int offset, int count) {
    return rows.Answer("problems", {{"variable", variable}, {"offset", offset}, {"count", count}})
        .value();
  }
  library::TestFolder folder_;
  const std::string rows_folder_;
};

TEST_F(ProblemRowsTest, RowsComeInTheFilesOrderPageByPage) {
  const ProblemRows rows(rows_folder_, "problems.jsonl");
  const json page = Ask(rows, "", 100, 100);
  EXPECT_EQ(page.at("all"), 250);
  ASSERT_EQ(page.at("problems").size(), 100U);
  EXPECT_EQ(page.at("problems").front().at("line"), 101);
  EXPECT_EQ(page.at("problems").back().at("line"), 200);
  EXPECT_EQ(page.at("problems").front().at("text"), "ü\n<b>");
  EXPECT_EQ(Ask(rows, "", 200, 100).at("problems").size(), 50U);
  EXPECT_TRUE(Ask(rows, "", 250, 100).at("problems").empty());
}

TEST_F(ProblemRowsTest, AVariableHasItsOwn) {
  const ProblemRows rows(rows_folder_, "problems.jsonl");
  const json page = Ask(rows, "b", 48, 10);
  EXPECT_EQ(page.at("all"), 49);
  ASSERT_EQ(page.at("problems").size(), 1U);
  EXPECT_EQ(page.at("problems").front().at("line"), 245);
  EXPECT_EQ(Ask(rows, "c", 0, 10).at("all"), 0);
}

TEST_F(ProblemRowsTest, AnotherQuestionHasNoAnswer) {
  EXPECT_FALSE(ProblemRows(rows_folder_, "problems.jsonl").Answer("rejects", {}).has_value());
}

TEST_F(ProblemRowsTest, TheFolderGoesWithIt) {
  { const ProblemRows rows(rows_folder_, "problems.jsonl"); }
  EXPECT_FALSE(std::filesystem::exists(rows_folder_));
}

TEST_F(ProblemRowsTest, AFileThatIsNotThereHasNoRows) {
  const ProblemRows rows(rows_folder_, "none.jsonl");
  EXPECT_EQ(Ask(rows, "", 0, 10).at("all"), 0);
}

}  // namespace
}  // namespace cli
