#include "library/files/FilePlace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/testing/TestSource.h"

namespace library {
namespace {

using testing::ElementsAre;

TEST(FilePlaceTest, AnAccountCountsTheCellsOfAllVariables) {
  TestSource file;
  file.Number("n").String("town", 4);
  TestSource other;
  other.Number("x");
  DataSetSource all;
  std::string problem;
  ASSERT_TRUE(all.Add(other, &problem)) << problem;
  ASSERT_TRUE(all.Add(file, &problem)) << problem;
  ASSERT_TRUE(all.AddText("file", 5, &problem)) << problem;
  all.Make();
  FilePlace place("b.csv", "b.csv");
  ASSERT_TRUE(place.Open(file, all));
  EXPECT_THAT(place.variables(), ElementsAre(1, 2));

  PassAccount account;
  Ledger::Counts counts;
  counts.cases = 3;
  counts.variables = 2;
  account.ledger.SetCounts(counts);
  account.ledger.AddCells({.read = 5, .empty = 1});
  account.cases = 3;
  account.textsBeyondColumn = {7, 8};
  place.Place(&account);
  const nlohmann::ordered_json told = FileJson("b.csv", 10, account);
  EXPECT_EQ(told["first_case"], 11);
  EXPECT_EQ(told["ledger"]["variables"], 4);
  EXPECT_EQ(told["ledger"]["absent"], 3) << "x of each case";
  EXPECT_EQ(told["ledger"]["read"], 8) << "and the file's name of each";
  EXPECT_THAT(account.textsBeyondColumn, ElementsAre(0, 7, 8, 0));
}

TEST(FilePlaceTest, OtherVariablesThanTheDataSetsAreRefused) {
  TestSource file;
  file.Number("n");
  TestSource other;
  other.String("n", 3);
  DataSetSource all;
  std::string problem;
  ASSERT_TRUE(all.Add(other, &problem));
  all.Make();
  FilePlace place("b.csv", std::nullopt);
  EXPECT_FALSE(place.Open(file, all));
}

TEST(FilePlaceTest, VariablesAreThoseThatAnotherSourceHas) {
  TestSource file;
  file.Number("n", 5, 4, 1).String("town", 9);
  DataSetSource first;
  std::string problem;
  ASSERT_TRUE(first.Add(file, &problem));
  DataSetSource again;
  for (const DataSetVariable& variable : first.variables()) again.Add(variable);
  again.Make();
  ASSERT_EQ(again.GetNVariables(), 2U);
  EXPECT_EQ(again.GetVariable(0)->GetFormat(), (QANT_Format{5, 4, 1}));
  EXPECT_EQ(again.GetVariable(1)->GetType(), 9);
  std::vector<std::size_t> variables;
  EXPECT_TRUE(again.Find(file, &variables));
}

}  // namespace
}  // namespace library
