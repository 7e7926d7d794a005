#include "model/TxtWzVar.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "command/testing/CommandTesting.h"

namespace textwizard {
namespace {

static_assert(std::has_virtual_destructor_v<TxtWzVar>);

void ExpectCleared(const TxtWzVar& variable) {
  EXPECT_EQ(variable.startColumn, 0u);
  EXPECT_EQ(variable.recordNumber, 0u);
  EXPECT_EQ(variable.width, 0u);
  EXPECT_EQ(variable.decimals, 0);
  EXPECT_EQ(variable.maxStringLength, 0u);
  EXPECT_EQ(variable.formatType, 0u);
  EXPECT_EQ(variable.name, "");
  EXPECT_EQ(variable.upperName, "");
  EXPECT_EQ(variable.stringCount, 0u);
  EXPECT_EQ(variable.numericCount, 0u);
  EXPECT_EQ(variable.dateCount, 0u);
  EXPECT_EQ(variable.percentCount, 0u);
  EXPECT_EQ(variable.dollarCount, 0u);
  EXPECT_EQ(variable.commaCount, 0u);
  EXPECT_EQ(variable.dotCount, 0u);
  EXPECT_EQ(variable.dateKey, 0);
  EXPECT_FALSE(variable.hasExponent);
  EXPECT_FALSE(variable.missingStored);
  EXPECT_FALSE(variable.stringTruncated);
}

TEST(TxtWzVar, ANewRecordIsEmpty) { ExpectCleared(TxtWzVar()); }

TEST(TxtWzVar, ClearAllValuesForgetsEverything) {
  TxtWzVar variable;
  variable.SetVarName("income");
  variable.startColumn = variable.recordNumber = variable.width = variable.maxStringLength = 7;
  variable.formatType = 5;
  variable.decimals = -3;
  variable.stringCount = variable.numericCount = variable.dateCount = variable.percentCount = 1;
  variable.dollarCount = variable.commaCount = variable.dotCount = 2;
  variable.dateKey = 1017;
  variable.hasExponent = variable.missingStored = variable.stringTruncated = true;
  variable.ClearAllValues();
  ExpectCleared(variable);
}

TEST(TxtWzVar, SetVarNameKeepsTheNameAndItsUpperCase) {
  TxtWzVar variable;
  variable.SetVarName("income");
  EXPECT_EQ(variable.name, "income");
  EXPECT_EQ(variable.upperName, "INCOME");
  variable.SetVarName("Año_2");
  EXPECT_EQ(variable.name, "Año_2");
  EXPECT_EQ(variable.upperName, "AÑO_2");
}

}  // namespace
}  // namespace textwizard
