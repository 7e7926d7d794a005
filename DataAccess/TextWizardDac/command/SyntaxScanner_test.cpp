#include "command/SyntaxScanner.h"

#include <gtest/gtest.h>

#include <limits>

#include "command/testing/CommandTesting.h"

namespace textwizard {
namespace {

TEST(SyntaxScanner, WordsEndAtWhiteSpaceAndStepOverOneCharacter) {
  SyntaxScanner scanner(" \t one\ttwo\r\nthree");
  EXPECT_EQ(scanner.ParseWord(), "one");
  EXPECT_EQ(*scanner.cursor(), 't');
  EXPECT_EQ(scanner.ParseWord(), "two");
  EXPECT_EQ(*scanner.cursor(), '\n');
  EXPECT_EQ(scanner.ParseWord(), "three");
  EXPECT_EQ(*scanner.cursor(), '\0');
  EXPECT_EQ(scanner.ParseWord(), "");
  EXPECT_EQ(*scanner.cursor(), '\0');
}

TEST(SyntaxScanner, GetNextWordMovesThePointerItIsGiven) {
  const char* p = "  F8.2 next";
  EXPECT_EQ(SyntaxScanner::GetNextWord(p), "F8.2");
  EXPECT_STREQ(p, "next");
}

TEST(SyntaxScanner, ALimitedWordIsCutBetweenCharactersAndPassedWhole) {
  SyntaxScanner scanner("ab\xC3\xA9z next");
  EXPECT_EQ(scanner.ParseWord(3), "ab");
  EXPECT_EQ(scanner.ParseWord(), "next");
}

TEST(SyntaxScanner, WhiteSpaceIsBlankTabCrAndLf) {
  SyntaxScanner scanner(" \t\r\n\v");
  scanner.SkipWhiteSpace();
  EXPECT_EQ(*scanner.cursor(), '\v');
}

TEST(SyntaxScanner, ParseDelimsTakesTheLineWithItsBlanks) {
  SyntaxScanner scanner(" , ;\nnext\rlast");
  EXPECT_EQ(scanner.ParseDelims(), " , ;");
  EXPECT_EQ(scanner.ParseDelims(), "next");
  EXPECT_EQ(scanner.ParseDelims(), "last");
  EXPECT_EQ(scanner.ParseDelims(), "");
}

TEST(SyntaxScanner, ParseIntTakesDigitsAndStepsOneCharacterFurther) {
  SyntaxScanner scanner("  12,34 x5");
  EXPECT_EQ(scanner.ParseInt(), 12);
  EXPECT_EQ(scanner.ParseInt(), 34);
  EXPECT_EQ(scanner.ParseInt(), 0);  // no digits: "x" is stepped over
  EXPECT_EQ(scanner.ParseInt(), 5);
  EXPECT_EQ(scanner.ParseInt(), 0);
}

TEST(SyntaxScanner, ParseIntOfTooManyDigitsIsTheLargestInteger) {
  SyntaxScanner scanner(std::string(1000, '9').c_str());
  EXPECT_EQ(scanner.ParseInt(), std::numeric_limits<int>::max());
  EXPECT_EQ(*scanner.cursor(), '\0');
}

TEST(SyntaxScanner, ParseNumberReadsTheNextWord) {
  SyntaxScanner scanner("2.5e1 -7.25 abc 1,5");
  EXPECT_EQ(scanner.ParseNumber(), 25.0);
  EXPECT_EQ(scanner.ParseNumber(), -7.25);
  EXPECT_EQ(scanner.ParseNumber(), 0.0);
  EXPECT_EQ(scanner.ParseNumber(), 1.0);
}

TEST(SyntaxScanner, GetDelimitersRunsToTheLastQuoteOfItsKind) {
  const char* p = "\"a\"b' \"c\" rest'";
  EXPECT_EQ(SyntaxScanner::GetDelimiters(p), "\"a\"b' \"c\"");
  EXPECT_STREQ(p, " rest'");
  for (const char* text : {"abc\"", "'abc", ""}) {
    const char* start = text;
    EXPECT_EQ(SyntaxScanner::GetDelimiters(start), "") << text;
    EXPECT_EQ(start, text);
  }
}

TEST(SyntaxScanner, StripQuotesCutsAtTheNextQuoteOfTheSameKind) {
  const struct {
    const char* value;
    const char* stripped;
  } cases[] = {{"'a b'c", "a b"},  {"\"it's\"", "it's"}, {"'open", "open"},
               {"bare'", "bare'"}, {"''", ""},           {"", ""}};
  for (const auto& entry : cases) {
    std::string value = entry.value;
    SyntaxScanner::StripQuotes(value);
    EXPECT_EQ(value, entry.stripped) << entry.value;
  }
}

TEST(SyntaxScanner, StripSpacesLeavesTheFirstWord) {
  for (const char* text : {"  FILE ", "FILE", "FILE x y", "\tFILE\n"}) {
    std::string value = text;
    SyntaxScanner::StripSpaces(value);
    EXPECT_EQ(value, "FILE") << text;
  }
  std::string blank = "  ";
  SyntaxScanner::StripSpaces(blank);
  EXPECT_EQ(blank, "");
}

TEST(SyntaxScanner, ACommandEndsAtAFullStopOrTheEndOfTheText) {
  EXPECT_TRUE(SyntaxScanner(".").AtEnd());
  EXPECT_TRUE(SyntaxScanner("").AtEnd());
  EXPECT_TRUE(SyntaxScanner().AtEnd());
  EXPECT_FALSE(SyntaxScanner(" .").AtEnd());
}

TEST(IsKeyword, LetterCaseDoesNotCountAndTheRestDoes) {
  for (const char* word : {"FILE", "file", "FiLe"}) EXPECT_TRUE(IsKeyword(word, "FILE")) << word;
  for (const char* word : {"", "FIL", "FILES", " FILE", "/FILE"}) {
    EXPECT_FALSE(IsKeyword(word, "FILE")) << word;
  }
}

TEST(LeadingInteger, ReadsASignAndDigits) {
  EXPECT_EQ(LeadingInteger("12abc"), 12);
  EXPECT_EQ(LeadingInteger("-3"), -3);
  EXPECT_EQ(LeadingInteger("+4"), 4);
  EXPECT_EQ(LeadingInteger("+-4"), 0);
  EXPECT_EQ(LeadingInteger("abc"), 0);
  EXPECT_EQ(LeadingInteger(""), 0);
}

TEST(LeadingInteger, StopsAtTheLimitsOfItsType) {
  EXPECT_EQ(LeadingInteger(std::string(40, '9')), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(LeadingInteger("-" + std::string(40, '9')), std::numeric_limits<std::int64_t>::min());
}

TEST(LeadingNumber, TellsWhetherTheWholeTextIsAFiniteNumber) {
  const struct {
    const char* text;
    bool whole;
  } cases[] = {{"95", true},   {"+9.5e1", true}, {"-1", true},   {"95%", false},  {"", false},
               {"abc", false}, {"inf", false},   {"nan", false}, {"1e999", false}};
  for (const auto& entry : cases) {
    bool whole = !entry.whole;
    LeadingNumber(entry.text, &whole);
    EXPECT_EQ(whole, entry.whole) << entry.text;
  }
}

TEST(SpanUpTo, CountsBytesBeforeACharacterOfTheSet) {
  EXPECT_EQ(SpanUpTo("abc/def", "/"), 3u);
  EXPECT_EQ(SpanUpTo("\xC3\xA9 x", " "), 2u);
  EXPECT_EQ(SpanUpTo("abc", "/"), 3u);
  EXPECT_EQ(SpanUpTo("", "/"), 0u);
  EXPECT_EQ(SpanUpTo("a\xFF\xC3/", "/"), 3u) << "bytes that are no character are stepped over";
}

TEST(WholeCharacters, NeverCutsACharacter) {
  EXPECT_EQ(WholeCharacters("a\xC3\xA9z", 2), "a");
  EXPECT_EQ(WholeCharacters("a\xC3\xA9z", 3), "a\xC3\xA9");
  EXPECT_EQ(WholeCharacters("ab", 10), "ab");
  EXPECT_EQ(WholeCharacters("", 10), "");
}

}  // namespace
}  // namespace textwizard
