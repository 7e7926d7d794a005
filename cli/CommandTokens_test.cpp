#include "cli/CommandTokens.h"

#include <gtest/gtest.h>

namespace cli {
namespace {

std::vector<embedded::CommandToken> TokensOf(const std::string& rest) {
  const std::string text = "GET DATA /TYPE=TXT /" + rest + ".";
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  EXPECT_TRUE(reader.Next(command));
  EXPECT_TRUE(command.ok) << command.error;
  return command.tokens;
}

std::optional<double> FractionOf(const std::string& rest) { return SampleFraction(TokensOf(rest)); }

TEST(CommandTokens, ReadsThePercentage) {
  EXPECT_EQ(FractionOf("FILE='a' /IMPORTCASE=PERCENT 10 /VARIABLES=x F8"), 0.1);
  EXPECT_EQ(FractionOf("importcase = Percent 100 /VARIABLES=x F8"), 1.0);
}

TEST(CommandTokens, OtherSamplingHasNoFraction) {
  EXPECT_EQ(FractionOf("FILE='a' /IMPORTCASE=FIRST 10 /VARIABLES=x F8"), std::nullopt);
  EXPECT_EQ(FractionOf("FILE='a' /IMPORTCASE=ALL /VARIABLES=x F8"), std::nullopt);
  EXPECT_EQ(FractionOf("FILE='a' /VARIABLES=x F8"), std::nullopt);
  EXPECT_EQ(FractionOf("FILE='a' /IMPORTCASE=PERCENT"), std::nullopt);
}

TEST(CommandTokens, OnlyTheSubcommandCounts) {
  EXPECT_EQ(FractionOf("FILE='IMPORTCASE' /VARIABLES=IMPORTCASE F8 PERCENT F8"), std::nullopt);
  EXPECT_EQ(FractionOf("DELIMITERS='/IMPORTCASE=PERCENT 5' /VARIABLES=x F8"), std::nullopt);
  EXPECT_EQ(FractionOf("VARIABLES=x F8 /IMPORTCASE=PERCENT 5"), std::nullopt);
}

TEST(CommandTokens, NamesTheDataFile) {
  EXPECT_EQ(DataFile(TokensOf("FILE='a b.csv' /MAP /VARIABLES=x F8")), "a b.csv");
  EXPECT_EQ(DataFile(TokensOf("MAP /file = plain.csv /VARIABLES=x F8")), "plain.csv");
  EXPECT_EQ(DataFile(TokensOf("FILE='it''s' /VARIABLES=x F8")), "it's");
}

TEST(CommandTokens, ACommandWithoutAFileNamesNone) {
  EXPECT_EQ(DataFile({}), "");
  EXPECT_EQ(DataFile(TokensOf("FILE=")), "");
  EXPECT_EQ(DataFile(TokensOf("DELIMITERS='FILE=a' /VARIABLES=FILE F8 x F8 y F8")), "");
  EXPECT_EQ(DataFile(TokensOf("VARIABLES=x F8 /FILE='a'")), "");
}

}  // namespace
}  // namespace cli
