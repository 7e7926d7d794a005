// Faulty commands are reported with their place, and the commands behind them are still read.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/command/CommandLanguage.h"

namespace {

using embedded::CommandReader;
using embedded::ParsedCommand;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::vector<ParsedCommand> ParseAll(const std::string& text) {
  std::vector<ParsedCommand> commands;
  CommandReader reader(text);
  for (ParsedCommand command; reader.Next(command);) commands.push_back(command);
  return commands;
}

std::size_t CountOf(const std::string& text) {
  std::size_t count = 0;
  CommandReader reader(text);
  for (ParsedCommand command; reader.Next(command);) ++count;
  return count;
}

// "ok" or the error of every command.
std::vector<std::string> Outcomes(const std::string& text) {
  std::vector<std::string> outcomes;
  for (const ParsedCommand& command : ParseAll(text)) {
    if (!command.ok) {
      const std::string place = "line " + std::to_string(command.line) + ", column " +
                                std::to_string(command.column) + ": ";
      EXPECT_THAT(command.error, StartsWith(place));
      EXPECT_THAT(command.tokens, IsEmpty());
    }
    outcomes.push_back(command.ok ? "ok" : command.error);
  }
  return outcomes;
}

constexpr const char* kGood = "GET DATA /TYPE=TXT /FILE='b.csv' /VARIABLES=x F8.2.\n";

TEST(CommandErrors, AFileWithoutCommandsHasNone) {
  EXPECT_THAT(ParseAll(""), IsEmpty());
  EXPECT_THAT(ParseAll("\xEF\xBB\xBF"), IsEmpty());
  EXPECT_THAT(ParseAll(" \r\n/* nothing */\n.\n . \n"), IsEmpty());
}

TEST(CommandErrors, AFileMayHoldSeveralCommands) {
  const auto commands =
      ParseAll(std::string(kGood) + "\n/* second */\r\n  " + kGood + ".\n" + kGood);
  ASSERT_EQ(commands.size(), 3u);
  for (const ParsedCommand& command : commands) EXPECT_TRUE(command.ok) << command.error;
  EXPECT_EQ(commands[0].line, 1);
  EXPECT_EQ(commands[1].line, 4);
  EXPECT_EQ(commands[1].column, 3);
  EXPECT_EQ(commands[2].line, 6);
}

TEST(CommandErrors, AnUnknownCommandIsNamedAndTheNextOneRead) {
  EXPECT_THAT(Outcomes(std::string("\n  FREQUENCIES x\n  y 'a.\nb'.\n") + kGood),
              ElementsAre(testing::AllOf(StartsWith("line 2, column 3: unknown command"),
                                         HasSubstr("\"FREQUENCIES\"")),
                          "ok"));
}

TEST(CommandErrors, AnotherGetIsAnUnknownCommand) {
  EXPECT_THAT(Outcomes(std::string("GET FILE='x'.\n") + kGood),
              ElementsAre(testing::AllOf(StartsWith("line 1, column 5: unknown command"),
                                         HasSubstr("\"FILE\"")),
                          "ok"));
}

TEST(CommandErrors, AnotherTypeIsAnError) {
  EXPECT_THAT(Outcomes(std::string("GET DATA /TYPE=XLS /FILE='x.xls'\n/SHEET=1.\n") + kGood),
              ElementsAre("line 1, column 16: TYPE must be TXT, not \"XLS\"", "ok"));
  EXPECT_THAT(Outcomes("GET DATA /TYPE='TXT' /FILE='x'."),
              ElementsAre(StartsWith("line 1, column 16: TYPE must be TXT")));
}

TEST(CommandErrors, AnotherFirstSubcommandIsAnError) {
  EXPECT_THAT(Outcomes(std::string("GET DATA /FILE='x' /TYPE=TXT.\n") + kGood),
              ElementsAre(testing::AllOf(StartsWith("line 1, column 11: "), HasSubstr("\"FILE\""),
                                         HasSubstr("\"TYPE\" is expected")),
                          "ok"));
}

TEST(CommandErrors, ACommandThatEndsInItsOpeningIsAnError) {
  EXPECT_THAT(Outcomes(std::string("GET DATA.\nGET DATA /TYPE=TXT.\n") + kGood),
              ElementsAre(testing::AllOf(StartsWith("line 1, column 9: the command ends"),
                                         HasSubstr("\"/\" is expected")),
                          testing::AllOf(StartsWith("line 2, column 19: the command ends"),
                                         HasSubstr("\"/\" is expected")),
                          "ok"));
  EXPECT_THAT(Outcomes("GET DATA /TYPE="),
              ElementsAre(StartsWith("line 1, column 16: the command ends")));
}

TEST(CommandErrors, AnUnclosedLiteralIsReportedWhereItBegins) {
  EXPECT_THAT(Outcomes("GET DATA /TYPE=TXT\n /FILE=\"a.csv"),
              ElementsAre("line 2, column 8: the literal that begins here is never closed"));
  EXPECT_THAT(Outcomes("\"abc"), ElementsAre(StartsWith("line 1, column 1: the literal")));
  EXPECT_THAT(Outcomes("GET DATA /TYPE=TXT /FILE='it''s"),
              ElementsAre(StartsWith("line 1, column 26: the literal")));
}

TEST(CommandErrors, ReadingGoesOnBehindTheCommandOfAnUnclosedLiteral) {
  EXPECT_THAT(
      Outcomes(std::string("GET DATA /TYPE=TXT /FILE=\"a.csv /VARIABLES='x.\n' y A1.\n") + kGood),
      ElementsAre(StartsWith("line 1, column 26: the literal"), "ok"));
}

TEST(CommandErrors, ALiteralRunsToTheNextQuoteWhereverThatIs) {
  const auto commands = ParseAll("GET DATA /TYPE=TXT /FILE='a.csv.\nGET DATA /FILE='b.\n");
  ASSERT_EQ(commands.size(), 1u);
  EXPECT_TRUE(commands[0].ok);
  EXPECT_EQ(commands[0].tokens[2].text, "a.csv.\nGET DATA /FILE=");
}

TEST(CommandErrors, AnUnclosedCommentIsReportedWhereItBegins) {
  EXPECT_THAT(Outcomes(std::string(kGood) + " /* end"),
              ElementsAre("ok", "line 2, column 2: the comment that begins here is never closed"));
  EXPECT_THAT(Outcomes("GET DATA /TYPE=TXT /MAP /*. x"),
              ElementsAre(StartsWith("line 1, column 25: the comment")));
}

TEST(CommandErrors, ALongWordIsShownByItsBeginning) {
  const auto outcomes = Outcomes(std::string(5000, 'x') + ".");
  ASSERT_EQ(outcomes.size(), 1u);
  EXPECT_THAT(outcomes[0], HasSubstr("\"" + std::string(40, 'x') + "...\""));
  // 39 bytes and a character of two: it is left out whole.
  const auto wide = Outcomes(std::string(39, 'x') + "\xC3\xA4zzz.");
  ASSERT_EQ(wide.size(), 1u);
  EXPECT_THAT(wide[0], HasSubstr("\"" + std::string(39, 'x') + "...\""));
}

// Shapes that cost a reader which looks ahead again and again the square of their length.
TEST(CommandErrors, TenMegabytesOfHostileTextEnd) {
  const std::size_t kSize = 10u << 20;
  const auto repeated = [](std::string_view part) {
    std::string text;
    while (text.size() < kSize) text += part;
    return text;
  };
  EXPECT_EQ(CountOf(repeated("/*")), 1u);
  EXPECT_EQ(CountOf(repeated("x. /*\n")), 2u);
  // The full stop ends the literal's command, and the comment behind it is an error of its own.
  EXPECT_EQ(CountOf("\"" + repeated(" . /*")), 2u);
  EXPECT_EQ(CountOf(repeated(" .")), 1u);
  EXPECT_EQ(CountOf(repeated("./**/")), 1u);
  EXPECT_EQ(CountOf("'" + repeated("\"x\"\"")), 1u);
  EXPECT_EQ(CountOf(repeated(" ")), 0u);
  EXPECT_EQ(CountOf(repeated("(")), 1u);
  EXPECT_EQ(CountOf(repeated("'''")), 1u);
}

TEST(CommandErrors, AFileMayHoldAHundredThousandFaultyCommands) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "x.\n";
  EXPECT_EQ(CountOf(text), 100000u);
}

TEST(CommandErrors, AnyBytesAreReadToTheirEnd) {
  unsigned state = 1;
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    const char alphabet[] = "GETDAgetda/=()'\". \n\r*TYPEXtxt\xC3\xA4\0";
    for (int i = 0; i < 40; ++i) {
      state = state * 1103515245u + 12345u;
      text += alphabet[(state >> 16) % sizeof alphabet];
    }
    const std::size_t count = CountOf("GET DATA /TYPE=TXT /" + text);
    ASSERT_GE(count, 1u);
    ASSERT_LE(count, text.size() + 1);
  }
}

}  // namespace
