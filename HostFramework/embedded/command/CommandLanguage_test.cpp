// Tokens and the full stop that ends a command.
#include "HostFramework/embedded/command/CommandLanguage.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace {

using embedded::CommandReader;
using embedded::CommandToken;
using embedded::ParsedCommand;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kOpening = "GET DATA /TYPE=TXT /";

std::vector<std::string> Texts(const ParsedCommand& command) {
  std::vector<std::string> texts;
  for (const CommandToken& token : command.tokens) texts.push_back(token.text);
  return texts;
}

// The only command of `rest` behind the opening.
ParsedCommand Parse(const std::string& rest) {
  const std::string text = kOpening + rest;
  CommandReader reader(text);
  ParsedCommand command, none;
  EXPECT_TRUE(reader.Next(command));
  EXPECT_EQ(command.ok, command.error.empty());
  EXPECT_FALSE(reader.Next(none)) << none.error;
  return command;
}

TEST(CommandTokens, TheOpeningIsReadAndNotHandedOver) {
  EXPECT_THAT(Texts(Parse("FILE=x.")), ElementsAre("FILE", "=", "x"));
}

TEST(CommandTokens, TheOpeningMayHaveAnyCaseAndWhiteSpace) {
  const std::string text = "get\n\tData/type =\f/* which */ txt\r\n/ MAP.";
  CommandReader reader(text);
  ParsedCommand command;
  ASSERT_TRUE(reader.Next(command));
  EXPECT_TRUE(command.ok) << command.error;
  EXPECT_THAT(Texts(command), ElementsAre("MAP"));
}

TEST(CommandTokens, SignsAreTokensOfOneCharacter) {
  EXPECT_THAT(Texts(Parse("a/b=c(d)e//==")),
              ElementsAre("a", "/", "b", "=", "c", "(", "d", ")", "e", "/", "/", "=", "="));
  EXPECT_EQ(Parse("/").tokens[0].kind, embedded::kTokenSign);
}

TEST(CommandTokens, ATokenKnowsTheBytesItWasReadFrom) {
  const std::string text = "\xEF\xBB\xBFGET DATA /TYPE=TXT /FILE = 'it''s'/*x*/ /MAP.";
  CommandReader reader(text);
  ParsedCommand command;
  ASSERT_TRUE(reader.Next(command));
  std::vector<std::string> sources;
  for (const CommandToken& token : command.tokens) {
    sources.push_back(text.substr(token.begin, token.end - token.begin));
  }
  EXPECT_THAT(sources, ElementsAre("FILE", "=", "'it''s'", "/", "MAP"));
}

TEST(CommandTokens, WordsRunToWhiteSpaceSignsAndQuotes) {
  EXPECT_THAT(Texts(Parse("F8.2 0-9 -3 a,b 1.5.x v'q'w\"r\"")),
              ElementsAre("F8.2", "0-9", "-3", "a,b", "1.5.x", "v", "q", "w", "r"));
}

TEST(CommandTokens, ALiteralIsItsContentAndOfKindFour) {
  const ParsedCommand command = Parse("'a b' \"c/d=e\" ''");
  EXPECT_THAT(Texts(command), ElementsAre("a b", "c/d=e", ""));
  for (const CommandToken& token : command.tokens) EXPECT_EQ(token.kind, 4);
  EXPECT_NE(Parse("word").tokens[0].kind, 4);
}

TEST(CommandTokens, ADoubledQuoteInsideStandsForOne) {
  EXPECT_THAT(Texts(Parse("'it''s' \"a\"\"b\" '''' \"\"\"\"\"\"")),
              ElementsAre("it's", "a\"b", "'", "\"\""));
}

TEST(CommandTokens, TheOtherQuoteIsAnOrdinaryCharacterInside) {
  EXPECT_THAT(Texts(Parse("'\"' \"'\"")), ElementsAre("\"", "'"));
}

TEST(CommandTokens, ALiteralMayRunOverLinesAndHoldFullStops) {
  EXPECT_THAT(Texts(Parse("'a.\nb.\n' c.")), ElementsAre("a.\nb.\n", "c"));
}

TEST(CommandTokens, ACommentIsWhiteSpace) {
  EXPECT_THAT(Texts(Parse("a/* 'one' */b /* two.\n*/ c/**/d")), ElementsAre("a", "b", "c", "d"));
}

TEST(CommandTokens, ACommentInsideALiteralIsText) {
  EXPECT_THAT(Texts(Parse("'/* x */'")), ElementsAre("/* x */"));
}

TEST(CommandTokens, ALoneStarSlashIsNoComment) {
  EXPECT_THAT(Texts(Parse("a */ b")), ElementsAre("a", "*", "/", "b"));
  EXPECT_THAT(Texts(Parse("/*/ x */ b")), ElementsAre("b"));
}

TEST(CommandTokens, OnlyAFullStopAtTheEndOfALineEndsTheCommand) {
  EXPECT_THAT(Texts(Parse("a. b\n.c d")), ElementsAre("a.", "b", ".c", "d"));
  EXPECT_THAT(Texts(Parse("F8.2.\n")), ElementsAre("F8.2"));
  EXPECT_THAT(Texts(Parse("F8.2 . \t\n")), ElementsAre("F8.2"));
  EXPECT_THAT(Texts(Parse("F8.2\n.\r\n")), ElementsAre("F8.2"));
  EXPECT_THAT(Texts(Parse("F8.2 .")), ElementsAre("F8.2"));
  EXPECT_THAT(Texts(Parse("a..\n")), ElementsAre("a."));
  EXPECT_THAT(Texts(Parse("'a'.\n")), ElementsAre("a"));
  EXPECT_THAT(Texts(Parse("a=.\n")), ElementsAre("a", "="));
}

TEST(CommandTokens, ACommentBehindTheFullStopIsBlank) {
  EXPECT_THAT(Texts(Parse("a. /* end */ \n")), ElementsAre("a"));
  EXPECT_THAT(Texts(Parse("a./* end\n of it */")), ElementsAre("a"));
  EXPECT_THAT(Texts(Parse("a. /* not */ b")), ElementsAre("a.", "b"));
}

TEST(CommandTokens, ACommandMayEndWithTheText) {
  EXPECT_THAT(Texts(Parse("a b")), ElementsAre("a", "b"));
  EXPECT_THAT(Texts(Parse("a 'b'")), ElementsAre("a", "b"));
  EXPECT_THAT(Texts(Parse("a b /* c */ ")), ElementsAre("a", "b"));
}

TEST(CommandTokens, NothingMayFollowTheOpening) {
  const ParsedCommand command = Parse(".");
  EXPECT_TRUE(command.ok);
  EXPECT_THAT(command.tokens, IsEmpty());
}

TEST(CommandTokens, AByteOrderMarkIsSkipped) {
  CommandReader reader("\xEF\xBB\xBFGET DATA /TYPE=TXT /MAP.");
  ParsedCommand command;
  ASSERT_TRUE(reader.Next(command));
  EXPECT_TRUE(command.ok) << command.error;
  EXPECT_EQ(command.line, 1);
  EXPECT_EQ(command.column, 1);
}

std::vector<std::pair<int, int>> Places(const ParsedCommand& command) {
  std::vector<std::pair<int, int>> places;
  for (const CommandToken& token : command.tokens) places.emplace_back(token.line, token.column);
  return places;
}

TEST(CommandTokens, LinesAndColumnsCountFromOneInCharacters) {
  const embedded::InCodePage utf8(nullptr);
  EXPECT_THAT(Places(Parse("a\n  '\xC3\xA4\xE2\x82\xAC' b\r\n\tc\rd\n\n/* x\n */ e")),
              ElementsAre(std::pair(1, 21), std::pair(2, 3), std::pair(2, 8), std::pair(3, 2),
                          std::pair(4, 1), std::pair(7, 5)));
}

TEST(CommandTokens, InACodePageColumnsCountBytes) {
  const embedded::InCodePage page("windows-1252");
  EXPECT_THAT(Places(Parse("\n'\xC3\xA4' b")), ElementsAre(std::pair(2, 1), std::pair(2, 6)));
}

TEST(CommandTokens, TenMegabytesAreReadInOneGo) {
  std::string rest = "VARIABLES=";
  const std::size_t kVariables = 600000;
  for (std::size_t i = 0; i < kVariables; ++i) rest += "name" + std::to_string(i) + " F8.2\n";
  ASSERT_GT(rest.size(), 9u << 20);
  const ParsedCommand command = Parse(rest + ".");
  ASSERT_TRUE(command.ok);
  ASSERT_EQ(command.tokens.size(), 2 + 2 * kVariables);
  EXPECT_EQ(command.tokens.back().text, "F8.2");
  EXPECT_EQ(command.tokens.back().line, static_cast<int>(kVariables));
}

}  // namespace
