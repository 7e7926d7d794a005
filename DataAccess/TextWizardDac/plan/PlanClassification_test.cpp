// The plan's tests of one value, under its own names.
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "plan/TxtWzDlmLines.h"
#include "plan/TxtWzFixedLines.h"

namespace textwizard {
namespace {

TEST(PlanClassification, AnswersForThePlan) {
  TxtWzDlmLines plan;
  // The caller's text stays as it is.
  std::string value = "  a  ";
  EXPECT_EQ(TxtWzExecFile::TrimLeft(value), "a  ");
  EXPECT_EQ(TxtWzExecFile::TrimRight(value), "  a");
  EXPECT_EQ(value, "  a  ");
  EXPECT_TRUE(TxtWzExecFile::IsEmptyString("   "));
  EXPECT_FALSE(TxtWzExecFile::IsEmptyString(" x "));
  EXPECT_TRUE(plan.IsNumeric("12,"));
  EXPECT_FALSE(plan.IsNumeric("1,2,x"));
  EXPECT_TRUE(plan.IsPercentage("5%"));
  EXPECT_TRUE(plan.IsDollar("$5"));
  EXPECT_TRUE(plan.IsComma("1,000"));
  EXPECT_TRUE(plan.IsDot("1.000"));
  EXPECT_FALSE(plan.IsDollar("5"));
  EXPECT_EQ(plan.IsDateTime("01-JAN-2020"), 1000);
  EXPECT_EQ(plan.IsDateTime("01-jan-2020"), 1000);
  EXPECT_EQ(plan.IsDateTime(" 01-jan-2020"), 0);
  EXPECT_EQ(TxtWzFixedLines().IsDateTime(" 01-jan-2020"), 1000);

  auto variable = std::make_unique<TxtWzVar>();
  variable->width = 8;
  variable->decimals = 2;
  variable->SetVarName("x");
  plan.AddVariable(std::move(variable));
  plan.SetVarCount(1);
  plan.UpdateVarSizes(0, "123.456", ".,");
  EXPECT_EQ(plan.slots()[0]->width, 9u);
  EXPECT_EQ(plan.slots()[0]->decimals, 3);
  plan.UpdateVarSizes(1, "1", ".,");
}

}  // namespace
}  // namespace textwizard
