// The C interface: several files as one data set.
#include <cstdint>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "library/capi/testing/CInterfaceTest.h"

namespace {

using capi::Defaults;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using textwizard::DataSet;
using textwizard::Import;
using textwizard::Result;
using textwizard::Summary;

using Row = std::vector<std::string>;

class TextWizardDataSet : public capi::TextWizardTest {
 protected:
  TextWizardDataSet() {
    folder_.Write("a.csv", "id,town\n1,Oslo\n2,Bonn\n3,Rome\n");
    folder_.Write("b.csv", "town;id;share\nBari;4;0,5\nBern;5;1,5\n");
    folder_.Write("c.csv", "");
    folder_.Write("d.csv", "id,town\n6,a longer town\n7,Graz\n");
  }
  std::vector<std::string> Paths() const {
    return {folder_ / "a.csv", folder_ / "b.csv", folder_ / "c.csv", folder_ / "d.csv"};
  }
  Result<DataSet> Open(const std::vector<Summary>& summaries = {}) const {
    return DataSet::Open(Paths(), &set_, summaries, nullptr, &options_);
  }
  Summary WholeOf(const std::string& path) const {
    Result<Summary> summary = Summary::OfPart(path, 1, 1, nullptr, &options_);
    EXPECT_TRUE(summary) << summary.error().text();
    return std::move(summary.value());
  }

  textwizard_data_set_options set_ = Defaults<textwizard_data_set_options>();
};

TEST_F(TextWizardDataSet, EveryFileGivesTheColumnsOfAll) {
  set_.source_column = "file";
  Result<DataSet> set = Open();
  ASSERT_TRUE(set) << set.error().text();
  std::vector<Row> rows;
  std::vector<std::int64_t> firstCases;
  for (std::size_t file = 0; file < 4; ++file) {
    if (file == 2) {
      EXPECT_THAT(set->Recipe(file), IsEmpty()) << "it is empty";
      continue;
    }
    Result<Import> import = Import::OpenRecipe(set->Recipe(file), &options_);
    ASSERT_TRUE(import) << import.error().text();
    for (Row& row : Rows(import->Cases())) {
      row.back() = row.back().substr(row.back().rfind('/') + 1);
      rows.push_back(row);
    }
    const json told = json::parse(import->Dictionary())["files"][0];
    firstCases.push_back(told["first_case"]);
    EXPECT_EQ(told["digest"], import->Digest());
    EXPECT_EQ(told["ledger"], json::parse(import->Ledger()));
    // Three variables of the data, and the file.
    EXPECT_EQ(told["ledger"]["cells"], 4 * told["cases"].get<int>());
  }
  EXPECT_THAT(
      rows,
      ElementsAre(Row{"1", "Oslo", "(null)", "a.csv"}, Row{"2", "Bonn", "(null)", "a.csv"},
                  Row{"3", "Rome", "(null)", "a.csv"}, Row{"4", "Bari", "0.5", "b.csv"},
                  Row{"5", "Bern", "1.5", "b.csv"}, Row{"6", "a longer town", "(null)", "d.csv"},
                  Row{"7", "Graz", "(null)", "d.csv"}));
  EXPECT_THAT(firstCases, ElementsAre(1, 4, 6));
}

TEST_F(TextWizardDataSet, SaysWhatTheFilesAreAndHowTheyDiffer) {
  Result<DataSet> set = Open();
  ASSERT_TRUE(set) << set.error().text();
  const json files = json::parse(set->Files());
  EXPECT_EQ(files[0]["kind"], "data");
  EXPECT_EQ(files[1]["records"], 2);
  EXPECT_EQ(files[2]["kind"], "empty");
  EXPECT_EQ(files[2]["problem"], "it is empty");
  const json dictionary = json::parse(set->Dictionary());
  EXPECT_EQ(dictionary["cases"], 7);
  EXPECT_EQ(dictionary["variables"][1]["bytes"], 13);
  const json longest = dictionary["variables"][1]["evidence"]["longest"];
  EXPECT_EQ(longest["line"], 2);
  EXPECT_EQ(longest["file"], folder_ / "d.csv");
  std::vector<std::string> kinds;
  for (const json& drift : dictionary["drift"]) kinds.push_back(drift["kind"]);
  EXPECT_THAT(kinds, ElementsAre("added", "reordered", "empty"));
  EXPECT_THAT(set->Command(), testing::AllOf(HasSubstr("a.csv"), HasSubstr("b.csv")));
  EXPECT_EQ(json::parse(set->Reading())["delimiter"], ",");
}

TEST_F(TextWizardDataSet, SummariesTakeThePlaceOfReading) {
  Result<DataSet> read = Open();
  ASSERT_TRUE(read);
  // Of two parts, and of all.
  std::vector<Summary> parts;
  for (int number = 1; number <= 2; ++number) {
    Result<Summary> part = Summary::OfPart(Paths()[0], number, 2, nullptr, &options_);
    ASSERT_TRUE(part) << part.error().text();
    parts.push_back(*part);
  }
  const std::vector<Summary> summaries = {Summary::Merge(parts).value(), WholeOf(Paths()[3])};
  Result<DataSet> summed = Open(summaries);
  ASSERT_TRUE(summed) << summed.error().text();
  EXPECT_EQ(summed->Dictionary(), read->Dictionary());
  EXPECT_EQ(summed->Command(), read->Command());
  for (std::size_t file = 0; file < 4; ++file) EXPECT_EQ(summed->Recipe(file), read->Recipe(file));
  const json files = json::parse(summed->Files());
  EXPECT_EQ(files[0]["summarized"], true);
  EXPECT_EQ(files[1]["summarized"], false) << "none was given";
  EXPECT_EQ(files[3]["summarized"], true);

  Result<DataSet> half = Open({parts[0]});
  ASSERT_FALSE(half);
  EXPECT_THAT(half.error().text(), HasSubstr("not all of them"));
  folder_.Write("a.csv", "id,town\n1,Oslo\n2,Bonn\n3,Rome\n8,Cork\n");
  Result<DataSet> changed = Open(summaries);
  ASSERT_FALSE(changed);
  EXPECT_EQ(changed.error().status(), TEXTWIZARD_FILE);
  EXPECT_THAT(changed.error().text(), HasSubstr("a.csv: the file changed"));
}

TEST_F(TextWizardDataSet, PartsOfItsFilesAddUp) {
  Result<DataSet> set = Open();
  ASSERT_TRUE(set);
  Result<Import> whole = Import::OpenRecipe(set->Recipe(0), &options_);
  ASSERT_TRUE(whole);
  const std::vector<Row> cases = Rows(whole->Cases());
  std::vector<Row> rows;
  for (const auto& [from, to] : {std::pair<std::int64_t, std::int64_t>{0, 12}, {12, 29}}) {
    auto part = Defaults<textwizard_part>();
    part.from = from;
    part.to = to;
    options_.part = &part;
    Result<Import> import = Import::OpenRecipe(set->Recipe(0), &options_);
    ASSERT_TRUE(import) << import.error().text();
    for (const Row& row : Rows(import->Cases())) rows.push_back(row);
  }
  EXPECT_EQ(rows, cases);
}

TEST_F(TextWizardDataSet, WhatDoesNotFitIsAnErrorOrLeftOut) {
  folder_.Write("c.csv", "pressure\n1\n");
  Result<DataSet> refused = Open();
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().status(), TEXTWIZARD_FILE);
  EXPECT_THAT(refused.error().text(),
              testing::AllOf(HasSubstr("c.csv: it has 0 of the 2 columns"),
                             HasSubstr("skip_misfits leaves such files out")));
  set_.skip_misfits = 1;
  Result<DataSet> left = Open();
  ASSERT_TRUE(left) << left.error().text();
  EXPECT_EQ(json::parse(left->Files())[2]["kind"], "left-out");
  set_.by = "chance";
  EXPECT_THAT(Open().error().text(), HasSubstr("give \"name\" or \"position\""));
}

TEST_F(TextWizardDataSet, PatternsNameFiles) {
  const auto listed = textwizard::ListFiles({folder_ / "[ad].csv", folder_ / "a.csv", "other.txt"});
  ASSERT_TRUE(listed) << listed.error().text();
  EXPECT_THAT(*listed, ElementsAre(folder_ / "a.csv", folder_ / "d.csv", "other.txt"));
  const auto none = textwizard::ListFiles({folder_ / "*.tsv"});
  ASSERT_FALSE(none);
  EXPECT_EQ(none.error().status(), TEXTWIZARD_FILE);
  EXPECT_THAT(none.error().text(), HasSubstr("*.tsv"));
}

TEST_F(TextWizardDataSet, ArgumentsThatAreMissingAreSaid) {
  textwizard_data_set* set = nullptr;
  textwizard_error* error = nullptr;
  EXPECT_EQ(textwizard_open_data_set(nullptr, 1, nullptr, nullptr, nullptr, &set, &error),
            TEXTWIZARD_USAGE);
  EXPECT_STREQ(textwizard_error_text(error), "paths is null");
  textwizard_error_free(error);
  const char* const path = "a.csv";
  EXPECT_EQ(textwizard_open_data_set(&path, 0, nullptr, nullptr, nullptr, &set, &error),
            TEXTWIZARD_USAGE);
  EXPECT_STREQ(textwizard_error_text(error), "no file is given");
  textwizard_error_free(error);
  EXPECT_EQ(textwizard_data_set_recipe(nullptr, 0), nullptr);
  textwizard_close_data_set(nullptr);
}

}  // namespace
