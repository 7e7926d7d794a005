// Commas that are part of numbers.

#include "library/sniff/CommasInNumbers.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace library {
namespace {

Dialect CutBy(const char* delimiter) {
  Dialect dialect;
  dialect.delimiter = delimiter;
  dialect.qualifier = "\"";
  return dialect;
}

TEST(CommasInNumbers, OneNumberOnEachLineHasADecimalComma) {
  const embedded::InCodePage inUtf8(nullptr);
  CellKinds kinds;
  EXPECT_TRUE(AreDecimalCommas({"1,50", "12,05", "3,75"}, kinds));
  EXPECT_FALSE(AreDecimalCommas({"1,50", "12,5", "3,75"}, kinds));
  EXPECT_FALSE(AreDecimalCommas({"1,5", "12,6", "3,7"}, kinds));
}

TEST(CommasInNumbers, TheyStandBetweenDigits) {
  EXPECT_TRUE(FindCommas({"1,5|2", "3,25|7,5"}, CutBy("|"), 2).betweenDigits);
  EXPECT_FALSE(FindCommas({"1,5|2", "3, 25|7,5"}, CutBy("|"), 2).betweenDigits);
  EXPECT_FALSE(FindCommas({"1,5|2", ",25|7,5"}, CutBy("|"), 2).betweenDigits);
  EXPECT_FALSE(FindCommas({"1|2", "3|7"}, CutBy("|"), 2).betweenDigits);
}

TEST(CommasInNumbers, QualifiedOnesAndOtherLinesDoNotCount) {
  EXPECT_TRUE(
      FindCommas({"Made in May, at home", "1,5|\"a, b\"", "3,25|c"}, CutBy("|"), 2).betweenDigits);
}

TEST(CommasInNumbers, NamesHaveNeitherCommasNorDigits) {
  EXPECT_TRUE(FindCommas({"Counted", "a:b", "1,5:2,5"}, CutBy(":"), 2).underNames);
  EXPECT_FALSE(FindCommas({"10,5:2,5", "a:b"}, CutBy(":"), 2).underNames);
}

}  // namespace
}  // namespace library
