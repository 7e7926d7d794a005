#include "cli/CaseSampler.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace cli {
namespace {

std::optional<double> FractionOf(const std::string& rest) {
  const std::string text = "GET DATA /TYPE=TXT /" + rest + ".";
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  EXPECT_TRUE(reader.Next(command));
  EXPECT_TRUE(command.ok) << command.error;
  return SampleFraction(command.tokens);
}

TEST(CaseSampler, ReadsThePercentage) {
  EXPECT_EQ(FractionOf("FILE='a' /IMPORTCASE=PERCENT 10 /VARIABLES=x F8"), 0.1);
  EXPECT_EQ(FractionOf("importcase = Percent 100 /VARIABLES=x F8"), 1.0);
}

TEST(CaseSampler, OtherSamplingHasNoFraction) {
  EXPECT_EQ(FractionOf("FILE='a' /IMPORTCASE=FIRST 10 /VARIABLES=x F8"), std::nullopt);
  EXPECT_EQ(FractionOf("FILE='a' /IMPORTCASE=ALL /VARIABLES=x F8"), std::nullopt);
  EXPECT_EQ(FractionOf("FILE='a' /VARIABLES=x F8"), std::nullopt);
  EXPECT_EQ(FractionOf("FILE='a' /IMPORTCASE=PERCENT"), std::nullopt);
}

TEST(CaseSampler, OnlyTheSubcommandCounts) {
  EXPECT_EQ(FractionOf("FILE='IMPORTCASE' /VARIABLES=IMPORTCASE F8 PERCENT F8"), std::nullopt);
  EXPECT_EQ(FractionOf("DELIMITERS='/IMPORTCASE=PERCENT 5' /VARIABLES=x F8"), std::nullopt);
  EXPECT_EQ(FractionOf("VARIABLES=x F8 /IMPORTCASE=PERCENT 5"), std::nullopt);
}

TEST(CaseSampler, KeepsWhatTheRuleKeeps) {
  std::srand(42);
  std::vector<bool> expected;
  for (int count = 0; count < 1000; ++count) {
    expected.push_back(!(std::rand() / 2147483647.0 > 0.3));
  }
  CaseSampler sampler(0.3, 42U);
  for (const bool keep : expected) EXPECT_EQ(sampler.Keep(), keep);
}

TEST(CaseSampler, KeepsEveryCaseWithoutAFraction) {
  CaseSampler sampler(std::nullopt, 1U);
  for (int count = 0; count < 100; ++count) EXPECT_TRUE(sampler.Keep());
}

TEST(CaseSampler, AHundredPercentKeepsEveryCase) {
  CaseSampler sampler(1.0, 1U);
  for (int count = 0; count < 1000; ++count) EXPECT_TRUE(sampler.Keep());
}

}  // namespace
}  // namespace cli
