// Commands that are wrong on purpose, or huge: one numbered message or a plan, and never more time
// than their length deserves.
#include <gtest/gtest.h>

#include <random>

#include "command/testing/CommandTesting.h"
#include "model/FormatCode.h"

namespace textwizard {
namespace {

constexpr std::size_t kTenMegabytes = 10'000'000;

TEST(HugeCommand, WordsOfTenMegabytes) {
  const std::string word(kTenMegabytes, 'x');
  ExpectError(ParseText(word), 2263, nullptr);
  ExpectError(ParseText("GET " + word), 2263, nullptr);
  ExpectError(ParseText("GET DATA /TYPE=" + word), 2264, nullptr);
  EXPECT_EQ(Parse(word).errorId, 2267u);
  EXPECT_EQ(Parse(word + "=1").errorId, 2267u);
  EXPECT_EQ(ParseWith("/ARRANGEMENT=" + word).errorId, 2258u);
  EXPECT_EQ(ParseDelimited(" v " + word).errorId, 2265u);
  EXPECT_EQ(ParseFixed(" v " + word + " F8").errorId, 2265u);
}

TEST(HugeCommand, AFileNameOfTenMegabytesIsKept) {
  const std::string name(kTenMegabytes, 'x');
  EXPECT_EQ(Parse("FILE=\"" + name + "\" /DELIMITERS=\",\" /VARIABLES= a F8").file, name);
}

TEST(HugeCommand, AVariableNameOfTenMegabytesIsCut) {
  const Outcome outcome = ParseDelimited(" " + std::string(kTenMegabytes, 'n') + " F8");
  ExpectVariable(outcome, 0, std::string(64, 'n'), kFormatF, 8, 0);
  EXPECT_EQ(outcome.warnings.size(), 1u);
}

TEST(HugeCommand, ManySubcommandsAndManyDelimiters) {
  std::string repeated;
  while (repeated.size() < kTenMegabytes) repeated += "/ENCODING=UTF8 ";
  EXPECT_TRUE(ParseWith(repeated).plan);
  const std::string delimiters(kTenMegabytes, ';');
  EXPECT_TRUE(
      Parse("FILE=x /DELIMITERS=\"" + delimiters + "\" /QUALIFIER='|' /VARIABLES= a F8").plan);
}

TEST(HugeCommand, OnlySlashesQuotesBlanksOrDigits) {
  EXPECT_EQ(Parse(std::string(kTenMegabytes, '/')).errorId, 2254u);
  EXPECT_EQ(Parse("FILE=" + std::string(kTenMegabytes, '"')).errorId, 2256u);
  EXPECT_EQ(Parse("FILE=x /DELIMITERS=" + std::string(kTenMegabytes, '\'')).errorId, 2256u);
  EXPECT_EQ(ParseWith(std::string(kTenMegabytes, ' ')).errorId, 0u);
  EXPECT_EQ(ParseWith("/FIRSTCASE=" + std::string(kTenMegabytes, '9')).errorId, 2267u);
  EXPECT_EQ(ParseDelimited(" v F" + std::string(kTenMegabytes, '9')).errorId, 2265u);
}

TEST(HugeCommand, FiftyThousandVariables) {
  std::string variables;
  for (int i = 0; i < 50000; ++i) variables += " variable_" + std::to_string(i) + " F8.2";
  const Outcome outcome = ParseDelimited(variables);
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_EQ(outcome.plan->slots().size(), 50000u);
  EXPECT_EQ(outcome.plan->SearchUpperVarName("VARIABLE_49999"), 49999u);
  const Outcome again = ParseDelimited(variables + " VARIABLE_25000 F8");
  EXPECT_EQ(again.errorId, 2272u);
}

// Every beginning of a good command, with and without its end, and with one byte replaced.
TEST(BrokenCommand, EveryCutAndEveryByteGivesAPlanOrOneError) {
  const std::string command =
      "GET DATA /TYPE = TXT  /FILE=\"da\"\" x\" /ENCODING = UTF8 /DELIMITERS=\"\\t,\" "
      "/QUALIFIER='\"' /LEADINGSPACES IGNORE = YES /DATATYPEMIN PERCENTAGE = 60 /IMPORTCASE = "
      "FIRST 3 /MAP /VARIABLES = a F8.2 b 5 X \xC3\xA9 A5 /MAP\n.";
  for (std::size_t cut = 0; cut <= command.size(); ++cut) {
    ParseText(command.substr(0, cut));
    ParseText(command.substr(0, cut) + "\n.");
  }
  for (std::size_t place = 0; place < command.size(); ++place) {
    for (const char byte : {'/', '=', '"', '\'', '.', ' ', '\n', '\xFF', '0'}) {
      std::string changed = command;
      changed[place] = byte;
      ParseText(changed);
    }
  }
}

TEST(BrokenCommand, RandomPiecesGiveAPlanOrOneError) {
  const char* pieces[] = {
      "/",         "=",   " ",         "\"",          "'",     "FILE",   "DELIMITERS",
      "QUALIFIER", "MAP", "VARIABLES", "ARRANGEMENT", "FIXED", "IGNORE", "LEADINGSPACES",
      "5",         "-",   "0-9",       "F8.2",        "\t",    "\n.",    "\xE2\x82",
      "x",         "A",   "DELCASE"};
  std::mt19937 random(1);
  for (int round = 0; round < 20000; ++round) {
    std::string text = "FILE=x /DELIMITERS=\",\" ";
    for (std::size_t length = random() % 20; length > 0; --length) {
      text += pieces[random() % std::size(pieces)];
    }
    Parse(text);
  }
}

}  // namespace
}  // namespace textwizard
