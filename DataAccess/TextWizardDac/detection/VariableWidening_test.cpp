// How values widen a variable.
#include "detection/VariableWidening.h"

#include <string>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

TxtWzVar Sized(std::uint32_t width, std::int32_t decimals) {
  TxtWzVar variable;
  variable.width = width;
  variable.decimals = decimals;
  return variable;
}

TEST(UpdateVarSizes, ANumberThatBeginsWithItsPointIsOneShorter) {
  TxtWzVar variable;
  UpdateVarSizes(variable, ".5", ".,", kDelimitedLines);
  EXPECT_EQ(variable.width, 1u);
  EXPECT_EQ(variable.decimals, 1);
}

TEST(UpdateVarSizes, MoreDecimalsWidenByTheDifference) {
  TxtWzVar variable = Sized(8, 2);
  UpdateVarSizes(variable, "123.456", ".,", kDelimitedLines);
  EXPECT_EQ(variable.decimals, 3);
  EXPECT_EQ(variable.width, 9u);
}

TEST(UpdateVarSizes, NoMoreDecimalsChangeNothing) {
  for (const char* value : {"1.5", "1.55"}) {
    TxtWzVar variable = Sized(50, 2);
    UpdateVarSizes(variable, value, ".,", kDelimitedLines);
    EXPECT_EQ(variable.decimals, 2) << value;
    EXPECT_EQ(variable.width, 50u) << value;
  }
}

TEST(UpdateVarSizes, MoreDecimalsTakeAWidthAbove40BackTo40) {
  TxtWzVar variable = Sized(50, 2);
  UpdateVarSizes(variable, "1.555", ".,", kDelimitedLines);
  EXPECT_EQ(variable.decimals, 3);
  EXPECT_EQ(variable.width, 40u);
}

TEST(UpdateVarSizes, DecimalsWidenTo40AtMostAndLengthWithoutBound) {
  TxtWzVar variable = Sized(30, 2);
  UpdateVarSizes(variable, "1." + std::string(25, '5'), ".,", kDelimitedLines);
  EXPECT_EQ(variable.decimals, 25);
  EXPECT_EQ(variable.width, 40u);
  UpdateVarSizes(variable, std::string(50, '7'), ".,", kDelimitedLines);
  EXPECT_EQ(variable.width, 50u);
}

TEST(UpdateVarSizes, TheLastOfTheDecimalCharactersCounts) {
  TxtWzVar variable;
  UpdateVarSizes(variable, "1,234,5", ".,", kDelimitedLines);
  EXPECT_EQ(variable.decimals, 1);
  variable = Sized(0, 0);
  UpdateVarSizes(variable, "$1,234.56", ".", kDelimitedLines);
  EXPECT_EQ(variable.decimals, 2);
  EXPECT_EQ(variable.width, 9u);
  variable = Sized(0, 0);
  UpdateVarSizes(variable, "1.234,567", ",", kDelimitedLines);
  EXPECT_EQ(variable.decimals, 3);
}

TEST(UpdateVarSizes, OneCasePerLineTrimsBlanksAndTheOthersKeepThem) {
  TxtWzVar variable;
  UpdateVarSizes(variable, "  1.5  ", ".,", kDelimitedLines);
  EXPECT_EQ(variable.width, 3u);
  EXPECT_EQ(variable.decimals, 1);
  variable = Sized(0, 0);
  UpdateVarSizes(variable, "  1.5  ", ".,", kDelimitedCount);
  EXPECT_EQ(variable.width, 7u);
  EXPECT_EQ(variable.decimals, 3);
}

TEST(UpdateVarSizes, InColumnsTheWidthBecomesTheLength) {
  TxtWzVar variable = Sized(8, 0);
  UpdateVarSizes(variable, "12", ".,", kFixedColumns);
  EXPECT_EQ(variable.width, 2u);
  UpdateVarSizes(variable, "  1.25", ".,", kFixedColumns);
  EXPECT_EQ(variable.width, 6u);
  EXPECT_EQ(variable.decimals, 2);
}

}  // namespace
}  // namespace textwizard
