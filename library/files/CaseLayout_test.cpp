#include "library/files/CaseLayout.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "library/files/DataSetSource.h"
#include "library/testing/TestSource.h"

namespace library {
namespace {

double NumberIn(const std::vector<OBS>& cases, std::size_t cell) {
  double number = 0;
  std::memcpy(&number, cases[cell].bytes, sizeof number);
  return number;
}

std::string TextIn(const std::vector<OBS>& cases, std::size_t cell, std::size_t bytes) {
  return {reinterpret_cast<const char*>(cases[cell].bytes), bytes};
}

TEST(CaseLayoutTest, ValuesGoToTheirVariablesAndTheOthersAreMissing) {
  TestSource file;
  file.String("town", 10).Number("n");
  TestSource all;
  all.Number("n").Number("more").String("town", 10).String("file", 5);
  const std::string name = "a.csv";
  const CaseLayout layout(file, all, {2, 0}, &name);
  EXPECT_FALSE(layout.isSame());
  ASSERT_EQ(layout.cells(), 5U);
  TestCase first(file);
  first.Set(0, "Paris").Set(1, 7.5);
  std::vector<OBS> cases(layout.cells());
  layout.Copy(first.obs(), 1, cases.data());
  EXPECT_EQ(NumberIn(cases, 0), 7.5);
  EXPECT_EQ(NumberIn(cases, 1), kSystemMissing);
  EXPECT_EQ(TextIn(cases, 2, 16), "Paris           ");
  EXPECT_EQ(TextIn(cases, 4, 8), "a.csv   ");
}

TEST(CaseLayoutTest, ANarrowerStringIsPaddedWithBlanks) {
  TestSource file;
  file.String("town", 3).String("code", 2);
  TestSource all;
  all.String("town", 20).String("code", 9);
  const CaseLayout layout(file, all, {0, 1}, nullptr);
  TestCase first(file);
  first.Set(0, "Rom").Set(1, "RM");
  std::vector<OBS> cases(layout.cells());
  layout.Copy(first.obs(), 1, cases.data());
  EXPECT_EQ(TextIn(cases, 0, 24), "Rom" + std::string(21, ' '));
  EXPECT_EQ(TextIn(cases, 3, 16), "RM" + std::string(14, ' '));
}

TEST(CaseLayoutTest, OfTheSameVariablesNothingIsCopied) {
  TestSource file;
  file.String("town", 10).Number("n");
  DataSetSource all;
  std::vector<std::size_t> variables;
  std::string problem;
  ASSERT_TRUE(all.Add(file, &problem)) << problem;
  all.Make();
  ASSERT_TRUE(all.Find(file, &variables));
  EXPECT_TRUE(CaseLayout(file, all, variables, nullptr).isSame());
}

}  // namespace
}  // namespace library
