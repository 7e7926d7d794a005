#include "library/command/CommandReading.h"

#include <gtest/gtest.h>

#include "model/FormatCode.h"

namespace library {
namespace {

bool Read(const std::string& text, CommandSettings* settings, std::string* error) {
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  EXPECT_TRUE(reader.Next(command) && command.ok) << command.error;
  return ReadCommand(command.tokens, text, settings, error);
}

TEST(CommandReading, ADelimitedCommand) {
  CommandSettings settings;
  std::string error;
  ASSERT_TRUE(
      Read("GET DATA /TYPE=TXT /FILE='it''s.csv' /ENCODING='UTF8' /FIRSTCASE=3\n"
           "  /IMPORTCASE=FIRST 7 /DELIMITERS='\\t' /QUALIFIER='\"'\n"
           "  /VARIABLES=id F4.1 skip X town A20 fee AUTO.\n",
           &settings, &error))
      << error;
  EXPECT_EQ(settings.file, "it's.csv");
  EXPECT_EQ(settings.import.firstCase, 3);
  EXPECT_EQ(settings.import.caseLimit, 7);
  EXPECT_EQ(settings.import.delimiters, "\t");
  EXPECT_EQ(settings.import.qualifier, "\"");
  ASSERT_EQ(settings.variables.size(), 4U);
  EXPECT_EQ(FormatText(settings.variables[0].format), "F4.1");
  EXPECT_TRUE(settings.variables[1].skipped);
  EXPECT_EQ(FormatText(settings.variables[2].format), "A20");
  EXPECT_EQ(settings.variables[3].format.code, textwizard::kFormatAuto);
}

TEST(CommandReading, FixedColumns) {
  CommandSettings settings;
  std::string error;
  ASSERT_TRUE(
      Read("GET DATA /TYPE=TXT /FILE='a' /ARRANGEMENT=FIXED /VARIABLES=a 0-3 F4 b 6-9 A4.\n",
           &settings, &error))
      << error;
  ASSERT_EQ(settings.variables.size(), 2U);
  EXPECT_EQ(settings.variables[1].from, 6U);
  EXPECT_EQ(settings.variables[1].to, 9U);
}

TEST(CommandReading, WhatIsWrittenIsReadBack) {
  const std::string text =
      "GET DATA /TYPE=TXT /FILE='a.csv' /ENCODING='UTF16LE' /ARRANGEMENT=DELIMITED /FIRSTCASE=2\n"
      "  /IMPORTCASE=ALL /DELCASE=LINE /DELIMITERS=';' /LEADINGSPACES IGNORE=YES\n"
      "  /VARIABLES=a F8.2 b X1 c SDATE10.\n";
  CommandSettings first;
  CommandSettings second;
  std::string error;
  ASSERT_TRUE(Read(text, &first, &error)) << error;
  ASSERT_TRUE(Read(CommandText(first), &second, &error)) << error;
  EXPECT_EQ(CommandText(first), CommandText(second));
  EXPECT_TRUE(second.import.leadingSpaces);
  EXPECT_EQ(second.import.encoding, textwizard::kEncodingUtf16LittleEndian);
  EXPECT_EQ(FormatText(second.variables[2].format), "SDATE10");
}

TEST(CommandReading, ARefusalHasTheMessage) {
  CommandSettings settings;
  std::string error;
  EXPECT_FALSE(
      Read("GET DATA /TYPE=TXT /FILE='a' /FIRSTCASE=0 /VARIABLES=a F8.\n", &settings, &error));
  EXPECT_NE(error, "");
}

}  // namespace
}  // namespace library
