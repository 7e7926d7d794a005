#include "library/files/DataSetSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/testing/TestSource.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(DataSetSourceTest, VariablesAreThereOnceInTheOrderInWhichTheyAreMet) {
  TestSource first;
  first.Number("id").String("town", 9);
  TestSource second;
  second.String("TOWN", 12).Number("n").Number("ID");
  DataSetSource all;
  std::vector<std::size_t> variables;
  std::string problem;
  ASSERT_TRUE(all.Add(first, &problem)) << problem;
  ASSERT_TRUE(all.Add(second, &problem)) << problem;
  all.Make();
  ASSERT_TRUE(all.Find(first, &variables));
  EXPECT_THAT(variables, ElementsAre(0, 1));
  ASSERT_TRUE(all.Find(second, &variables));
  EXPECT_THAT(variables, ElementsAre(1, 2, 0));
  ASSERT_EQ(all.GetNVariables(), 3U);
  EXPECT_EQ(all.GetVariable(2)->GetName(), "n");
  EXPECT_EQ(all.GetVariable(1)->GetType(), 12) << "the widest";
}

TEST(DataSetSourceTest, AVariableOfAnotherKindIsRefused) {
  TestSource first;
  first.Number("x", 5, 4, 0);
  TestSource text;
  text.String("x", 3);
  TestSource wide;
  wide.Number("x", 5, 6, 0);
  DataSetSource all;
  std::string problem;
  ASSERT_TRUE(all.Add(first, &problem));
  EXPECT_FALSE(all.Add(text, &problem));
  EXPECT_EQ(problem, "the variable x is A3 here, and F4 in an earlier file");
  EXPECT_FALSE(all.Add(wide, &problem));
}

TEST(DataSetSourceTest, ATextIsAppendedUnderAFreeName) {
  TestSource first;
  first.Number("id");
  DataSetSource all;
  std::string problem;
  ASSERT_TRUE(all.Add(first, &problem));
  EXPECT_FALSE(all.AddText("ID", 5, &problem));
  EXPECT_THAT(problem, HasSubstr("there is a column ID"));
  EXPECT_FALSE(all.AddText("a b", 5, &problem));
  ASSERT_TRUE(all.AddText("file", 5, &problem)) << problem;
  all.Make();
  EXPECT_EQ(all.GetVariable(1)->GetType(), 5);
  EXPECT_EQ(all.GetVariable(1)->GetFormat(), (QANT_Format{1, 5, 0}));
}

}  // namespace
}  // namespace library
