#include "library/import/UndecodableWarnings.h"

#include <cstdio>

#include <gtest/gtest.h>

#include "HostFramework/Messages.h"

namespace library {
namespace {

// The text as the component makes it.
std::string Warning(int caseNumber, int position) {
  char text[300];
  std::snprintf(text, sizeof text, QantServerErrorText("lorvane.err", 2279).GetText(), caseNumber,
                position);
  return text;
}

TEST(UndecodableWarnings, KnowsThemByTheirNumber) {
  EXPECT_TRUE(UndecodableWarnings::IsOne(Warning(1, 2)));
  EXPECT_FALSE(UndecodableWarnings::IsOne("[2281] x"));
  EXPECT_FALSE(UndecodableWarnings::IsOne(""));
}

TEST(UndecodableWarnings, TellsTheFirstTwentyAndCountsTheRest) {
  UndecodableWarnings warnings;
  for (int number = 1; number <= 20; ++number) EXPECT_TRUE(warnings.Take(Warning(number, 0)));
  EXPECT_EQ(warnings.Rest(), "");
  for (int number = 21; number <= 25; ++number) EXPECT_FALSE(warnings.Take(Warning(number, 3)));
  EXPECT_EQ(warnings.Rest(), "and 5 more, the last in case 25");
}

TEST(UndecodableWarnings, TellsNoPlaceTwice) {
  UndecodableWarnings warnings;
  for (int number : {3, 5, 9}) EXPECT_TRUE(warnings.Take(Warning(number, 0)));
  warnings.BeginNextPass();
  // The second pass meets places that the first did not look at, between and behind the others.
  EXPECT_FALSE(warnings.Take(Warning(3, 0)));
  EXPECT_TRUE(warnings.Take(Warning(4, 0)));
  EXPECT_FALSE(warnings.Take(Warning(5, 0)));
  EXPECT_TRUE(warnings.Take(Warning(5, 1)));
  EXPECT_FALSE(warnings.Take(Warning(9, 0)));
  EXPECT_TRUE(warnings.Take(Warning(11, 0)));
  EXPECT_EQ(warnings.Rest(), "");
}

TEST(UndecodableWarnings, CountsEveryPlaceOnce) {
  UndecodableWarnings warnings;
  for (int number = 1; number <= 30; ++number) warnings.Take(Warning(number, 0));
  warnings.BeginNextPass();
  EXPECT_EQ(warnings.Rest(), "and 10 more, the last in case 30");
  for (int number = 1; number <= 22; ++number) EXPECT_FALSE(warnings.Take(Warning(number, 0)));
  // Had the second pass ended here, the first would have met more.
  EXPECT_EQ(warnings.Rest(), "and 10 more, the last in case 30");
  for (int number = 23; number <= 40; ++number) EXPECT_FALSE(warnings.Take(Warning(number, 0)));
  EXPECT_EQ(warnings.Rest(), "and 20 more, the last in case 40");
}

TEST(UndecodableWarnings, EveryCommandBeginsAnew) {
  UndecodableWarnings warnings;
  for (int number = 1; number <= 30; ++number) warnings.Take(Warning(number, 0));
  warnings.BeginCommand();
  EXPECT_EQ(warnings.Rest(), "");
  EXPECT_TRUE(warnings.Take(Warning(1, 0)));
}

}  // namespace
}  // namespace library
