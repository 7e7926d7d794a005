#include "library/import/BareColumns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/report/ImportWatch.h"

namespace library {
namespace {

using testing::HasSubstr;

std::vector<BareColumn> Columns(const std::vector<std::string>& names) {
  std::vector<BareColumn> columns;
  for (const std::string& name : names) columns.push_back({name, name, {}, false, false});
  return columns;
}

std::vector<ColumnEvidence> Evidence(const std::vector<std::vector<std::string>>& values) {
  const textwizard::NullTexts nulls(DefaultNullTexts());
  std::vector<ColumnEvidence> evidence(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::int64_t line = 1;
    for (const std::string& value : values[i]) evidence[i].Count(value, line++, nulls);
  }
  return evidence;
}

TEST(BareColumnsTest, NamesAreGivenForAllColumnsOrNone) {
  std::vector<BareColumn> columns = Columns({"a", "b"});
  std::string problem;
  ASSERT_TRUE(NameColumns({}, &columns, &problem));
  EXPECT_EQ(columns[1].name, "b");
  ASSERT_TRUE(NameColumns({"x", "y"}, &columns, &problem));
  EXPECT_EQ(columns[1].name, "y");
  EXPECT_EQ(columns[1].label, "b");
  EXPECT_FALSE(NameColumns({"x"}, &columns, &problem));
  EXPECT_THAT(problem, HasSubstr("1 name is given for 2 columns"));
  EXPECT_FALSE(NameColumns({"x", "X"}, &columns, &problem));
  EXPECT_THAT(problem, HasSubstr("given twice"));
  EXPECT_FALSE(NameColumns({"x", "1 2"}, &columns, &problem));
}

TEST(BareColumnsTest, GivenTypesGoByTheNameInAnyLetterCase) {
  std::vector<BareColumn> columns = Columns({"Id", "note", "when"});
  GivenFormats given;
  std::string problem;
  ASSERT_TRUE(ReadGivenTypes({{"ID", "A5"}, {"note", "X"}}, &columns, &given, &problem));
  ASSERT_TRUE(given[0].has_value());
  EXPECT_EQ(given[0]->format.width, 5U);
  EXPECT_TRUE(columns[0].typeGiven);
  EXPECT_TRUE(columns[1].skipped);
  EXPECT_FALSE(given[2].has_value());
  EXPECT_FALSE(ReadGivenTypes({{"other", "A5"}}, &columns, &given, &problem));
  EXPECT_EQ(problem, "there is no column other");
}

TEST(BareColumnsTest, AGivenTypeStandsAndTheOthersAreChosen) {
  std::vector<BareColumn> columns = Columns({"a", "b"});
  GivenFormats given;
  std::string problem;
  ASSERT_TRUE(ReadGivenTypes({{"a", "F"}}, &columns, &given, &problem));
  const std::vector<ColumnEvidence> evidence = Evidence({{"1", "12", "x"}, {"one", "three"}});
  ChooseColumnTypes(evidence, {}, given, &columns);
  EXPECT_EQ(columns[0].type.format.code, textwizard::kFormatF);
  EXPECT_EQ(columns[0].type.format.width, 2U);
  ASSERT_EQ(columns[0].type.remarks.size(), 1U);
  EXPECT_EQ(columns[0].type.remarks[0].values.text, "x");
  EXPECT_EQ(columns[1].type.format.code, textwizard::kFormatA);
  EXPECT_EQ(columns[1].type.format.width, 5U);
}

TEST(BareColumnsTest, AGivenTypeIsAsWideAsItsFixedColumn) {
  std::vector<BareColumn> columns = Columns({"a"});
  GivenFormats given;
  std::string problem;
  ASSERT_TRUE(ReadGivenTypes({{"a", "F"}}, &columns, &given, &problem));
  TypeSettings settings;
  settings.columnWidths = {7};
  ChooseColumnTypes(Evidence({{"1"}}), settings, given, &columns);
  EXPECT_EQ(columns[0].type.format.width, 7U);
}

}  // namespace
}  // namespace library
