// How a bare file was understood, on the screen.

#include "cli/terminal/SniffScreen.h"

#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/terminal/VisibleText.h"

namespace cli {
namespace {

using testing::HasSubstr;
using testing::Not;

library::SniffResult Result() {
  library::SniffResult result;
  result.fileSize = 1234;
  result.encoding = {"UTF-8", false, "valid UTF-8", "", 1.0};
  result.lineEnd = {library::LineEnd::kLf, false, "9 LF", "", 1.0};
  result.delimiter = {",", false, "9 of 9 records have 2 fields", "", 1.0};
  result.qualifier = {"", false, "no quotes", "", 1.0};
  result.headerLines = {1, false, "texts above columns of numbers", "", 1.0};
  result.firstDataLine = {2, false, "8 rows that look alike", "", 1.0};
  result.lastDataLine = 9;
  result.decimal = {library::DecimalCharacter::kPoint, false, "1.5 in line 2", "", 1.0};
  result.verdict = library::Verdict::kCertain;
  for (const char* name : {"id", "amount"}) {
    result.columns.push_back({name, name, "F8.2", {0, 0}});
  }
  return result;
}

TEST(SniffScreen, EverySettingHasALineWithItsEvidence) {
  const std::string text = SniffSettingsText("data.csv", Result(), 80);
  EXPECT_THAT(text, HasSubstr("data.csv  1234 bytes\n"));
  EXPECT_THAT(text, HasSubstr("  encoding    UTF-8              found  valid UTF-8\n"));
  EXPECT_THAT(text, HasSubstr("  delimiter   comma              found  9 of 9 records"));
  EXPECT_THAT(text, HasSubstr("  data        line 2 to 9        found  8 rows"));
  EXPECT_THAT(text, HasSubstr("  sure        certain\n"));
  EXPECT_THAT(text, Not(HasSubstr(" or ")));
}

TEST(SniffScreen, WhatWasGivenIsCalledSo) {
  library::SniffResult result = Result();
  result.delimiter.given = true;
  const std::string text = SniffSettingsText("data.csv", result, 80);
  EXPECT_THAT(text, HasSubstr("  delimiter   comma              given\n"));
}

TEST(SniffScreen, ACloseRunnerUpIsShown) {
  library::SniffResult result = Result();
  result.delimiter.runnerUp = "semicolon: 8 of 9 records have 2 fields";
  result.delimiter.margin = 0.9;
  EXPECT_THAT(SniffSettingsText("f", result, 80), Not(HasSubstr("semicolon")));
  result.delimiter.margin = 0.1;
  EXPECT_THAT(SniffSettingsText("f", result, 80), HasSubstr("or semicolon: 8 of 9"));
}

TEST(SniffScreen, AGuessSaysWhatToGive) {
  library::SniffResult result = Result();
  result.verdict = library::Verdict::kGuess;
  result.advice = "The encoding is a guess: give --encoding.";
  EXPECT_THAT(SniffSettingsText("f", result, 80), HasSubstr("give --encoding.\n"));
}

TEST(SniffScreen, NoLineIsWiderThanTheTerminal) {
  library::SniffResult result = Result();
  result.encoding.evidence = std::string(300, 'e');
  result.columns[0].label = std::string(300, 'l');
  for (const std::string& text :
       {SniffSettingsText(std::string(200, 'f'), result, 60), SniffColumnsText(result, 60)}) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(DisplayWidth(line), 60U) << line;
  }
}

TEST(SniffScreen, LongEvidenceGoesOnInTheNextLine) {
  library::SniffResult result = Result();
  result.encoding.evidence = "plain ASCII, which most encodings read alike; alike in US-ASCII";
  EXPECT_THAT(SniffSettingsText("f", result, 80),
              HasSubstr("found  plain ASCII, which most encodings read\n"
                        "                                        alike; alike in US-ASCII\n"));
  // On a narrow screen below the value, and whole all the same.
  EXPECT_THAT(SniffSettingsText("f", result, 50),
              HasSubstr("  encoding    UTF-8              found\n"
                        "              plain ASCII, which most encodings\n"
                        "              read alike; alike in US-ASCII\n"));
}

TEST(SniffScreen, ColoursAreWhereTheyAreWanted) {
  library::SniffResult result = Result();
  result.verdict = library::Verdict::kGuess;
  const std::string plain = SniffSettingsText("f", result, 80);
  EXPECT_EQ(plain.find('\x1B'), std::string::npos);
  std::string coloured = SniffSettingsText("f", result, 80, Style(true));
  EXPECT_THAT(coloured, HasSubstr("\x1B[33mguess\x1B[0m"));
  EXPECT_THAT(coloured, HasSubstr("\x1B[2mvalid UTF-8\x1B[0m\n"));
  // Nothing but colours is between them.
  for (std::size_t at = coloured.find('\x1B'); at != std::string::npos;
       at = coloured.find('\x1B')) {
    coloured.erase(at, coloured.find('m', at) + 1 - at);
  }
  EXPECT_EQ(coloured, plain);
}

TEST(SniffScreen, ControlCharactersOfFilesAreVisible) {
  library::SniffResult result = Result();
  result.delimiter.value = "\t";
  result.columns[0].label = "a\x1B[31mb";
  const std::string text = SniffSettingsText("f\x07", result, 80) + SniffColumnsText(result, 80);
  EXPECT_EQ(text.find('\x1B'), std::string::npos);
  EXPECT_EQ(text.find('\x07'), std::string::npos);
  EXPECT_THAT(text, HasSubstr("tab"));
}

TEST(SniffScreen, OfManyColumnsTheFirstAndLastAreShown) {
  library::SniffResult result = Result();
  result.columns.clear();
  for (int i = 1; i <= 40; ++i) {
    result.columns.push_back({"c" + std::to_string(i), "", "F4", {0, 0}});
  }
  const std::string text = SniffColumnsText(result, 80);
  EXPECT_THAT(text, HasSubstr("c12 "));
  EXPECT_THAT(text, Not(HasSubstr("c13 ")));
  EXPECT_THAT(text, HasSubstr("(25 more)"));
  EXPECT_THAT(text, HasSubstr("c38 "));
  EXPECT_THAT(text, HasSubstr("c40 "));
}

TEST(SniffScreen, FixedColumnsHavePlaces) {
  library::SniffResult result = Result();
  result.arrangement.value = library::Arrangement::kFixed;
  result.delimiter.value = "";
  result.columns[0].range = {1, 8};
  result.columns[1].range = {9, 20};
  EXPECT_THAT(SniffSettingsText("f", result, 80), HasSubstr("fixed columns"));
  EXPECT_THAT(SniffColumnsText(result, 80), HasSubstr("9-20"));
}

}  // namespace
}  // namespace cli
