#include "library/command/CommandOutline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The outline of the only command of a text.
CommandOutline OutlineOfText(const std::string& text) {
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  EXPECT_TRUE(reader.Next(command));
  EXPECT_TRUE(command.ok) << command.error;
  return OutlineOf(command.tokens, text);
}

CommandOutline Outline(const std::string& rest) {
  return OutlineOfText("GET DATA /TYPE=TXT /" + rest + ".");
}

std::vector<std::string> Names(const CommandOutline& outline) {
  std::vector<std::string> names;
  for (const OutlinedSubcommand& subcommand : outline.subcommands) {
    names.push_back(subcommand.name);
  }
  return names;
}

TEST(CommandOutline, NamesTheDataFile) {
  EXPECT_EQ(Outline("FILE='a b.csv' /MAP /VARIABLES=x F8").DataFile(), "a b.csv");
  EXPECT_EQ(Outline("MAP /file = plain.csv /VARIABLES=x F8").DataFile(), "plain.csv");
  EXPECT_EQ(Outline("FILE='it''s' /VARIABLES=x F8").DataFile(), "it's");
  EXPECT_EQ(Outline("FILE='-' /VARIABLES=x F8").DataFile(), "-");
}

TEST(CommandOutline, ACommandWithoutAFileNamesNone) {
  EXPECT_EQ(OutlineOf({}, "").DataFile(), "");
  EXPECT_EQ(Outline("FILE=").DataFile(), "");
  EXPECT_EQ(Outline("DELIMITERS='FILE=a' /VARIABLES=FILE F8 x F8 y F8").DataFile(), "");
  EXPECT_EQ(Outline("VARIABLES=x F8 /FILE='a'").DataFile(), "");
}

TEST(CommandOutline, HasTheSubcommandsBeforeTheVariables) {
  const CommandOutline outline =
      Outline("FILE='a' /MAP /importcase = PERCENT 5 /VARIABLES=MAP F8 FILE F8");
  EXPECT_THAT(Names(outline), ElementsAre("FILE", "MAP", "importcase"));
  EXPECT_EQ(outline.Find("ImportCase")->value, "PERCENT");
  EXPECT_EQ(outline.Find("ENCODING"), nullptr);
}

TEST(CommandOutline, EndsWithTheSubcommandThatTheParserRefuses) {
  EXPECT_THAT(Names(Outline("FILE='a' /FIRSTCASE=0 /MAP /VARIABLES=x F8")),
              ElementsAre("FILE", "FIRSTCASE"));
}

TEST(CommandOutline, ASubcommandIsAsItStandsInTheText) {
  const CommandOutline outline = OutlineOfText(
      "\n  GET DATA /TYPE=TXT /FILE='it''s'\n   /DELIMITERS =\n','/VARIABLES=x F8.\n");
  ASSERT_EQ(outline.subcommands.size(), 2U);
  const CommandPlace& file = outline.subcommands[0].place;
  EXPECT_EQ(file.line, 2);
  EXPECT_EQ(file.column, 23);
  EXPECT_EQ(file.words, "FILE='it''s'");
  const CommandPlace& delimiters = outline.subcommands[1].place;
  EXPECT_EQ(delimiters.line, 3);
  EXPECT_EQ(delimiters.column, 5);
  EXPECT_EQ(delimiters.words, "DELIMITERS =\n','");
}

}  // namespace
}  // namespace library
