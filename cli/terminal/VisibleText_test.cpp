#include "cli/terminal/VisibleText.h"

#include <gtest/gtest.h>

namespace cli {
namespace {

constexpr char kEllipsis[] = "\xE2\x80\xA6";

TEST(VisibleText, PlainTextStaysAsItIs) {
  EXPECT_EQ(VisibleText("Z\xC3\xBCrich, 12 \xE2\x82\xAC"), "Z\xC3\xBCrich, 12 \xE2\x82\xAC");
  EXPECT_EQ(VisibleText(""), "");
}

TEST(VisibleText, ControlCharactersAreSpelledOut) {
  EXPECT_EQ(VisibleText("a\tb\r\n"), "a\\tb\\r\\n");
  EXPECT_EQ(VisibleText(std::string_view("\0\x1B\x7F", 3)), "\\x00\\x1B\\x7F");
  EXPECT_EQ(VisibleText("\xC2\x85"), "\\u{0085}");
}

TEST(VisibleText, WhatATerminalHidesIsSpelledOut) {
  EXPECT_EQ(VisibleText("a\xE2\x80\xAE"
                        "b"),
            "a\\u{202E}b");
  EXPECT_EQ(VisibleText("\xEF\xBB\xBFx"), "\\u{FEFF}x");
  EXPECT_EQ(VisibleText("\xE2\x80\x8B"), "\\u{200B}");
}

TEST(VisibleText, BytesThatAreNotUtf8AreReplaced) {
  EXPECT_EQ(VisibleText("a\xFFz"), "a\xEF\xBF\xBDz");
  EXPECT_EQ(VisibleText("\xC3"), "\xEF\xBF\xBD");
}

TEST(VisibleText, CutsToTheColumns) {
  EXPECT_EQ(VisibleText("abcde", 5), "abcde");
  EXPECT_EQ(VisibleText("abcdef", 5), std::string("abcd") + kEllipsis);
  EXPECT_EQ(VisibleText("\xE4\xB8\x87\xE5\xB9\xB4x", 4), std::string("\xE4\xB8\x87") + kEllipsis);
  EXPECT_EQ(VisibleText("abc\t", 4), std::string("abc") + kEllipsis);
  EXPECT_EQ(VisibleText("abc", 0), "");
}

TEST(VisibleText, WidthsOfCharacters) {
  EXPECT_EQ(DisplayWidth("abc"), 3U);
  EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1U);
  EXPECT_EQ(DisplayWidth("\xE4\xB8\x87"), 2U);
  EXPECT_EQ(DisplayWidth("\xF0\x9F\x98\x80"), 2U);
}

TEST(VisibleText, WidthsOfMarksInAnyScript) {
  // Hebrew, Arabic, Devanagari, Thai, Tamil and a mark beyond the first plane: no column of theirs.
  EXPECT_EQ(DisplayWidth("\u05D0\u05B8"), 1U);
  EXPECT_EQ(DisplayWidth("\u0628\u064E\u0651"), 1U);
  EXPECT_EQ(DisplayWidth("\u0915\u0947"), 1U);
  EXPECT_EQ(DisplayWidth("\u0E01\u0E34\u0E48"), 1U);
  EXPECT_EQ(DisplayWidth("\u0B95\u0BCD"), 1U);
  EXPECT_EQ(DisplayWidth("a\U0001D167"), 1U);
  EXPECT_EQ(DisplayWidth("a\U000E0100"), 1U);
  // A mark that takes room of its own.
  EXPECT_EQ(DisplayWidth("\u0915\u093E"), 2U);
}

TEST(VisibleText, WidthsOfEastAsianCharacters) {
  EXPECT_EQ(DisplayWidth("\uAC00"), 2U);              // a syllable
  EXPECT_EQ(DisplayWidth("\u1100\u1161\u11A8"), 2U);  // the same from its letters
  EXPECT_EQ(DisplayWidth("\uFF21"), 2U);              // a full-width A
  EXPECT_EQ(DisplayWidth("\uFF71"), 1U);              // a half-width katakana
  EXPECT_EQ(DisplayWidth("\u3000"), 2U);              // an ideographic blank
  EXPECT_EQ(DisplayWidth("\U00020000"), 2U);
}

TEST(VisibleText, WidthsOfEmoji) {
  EXPECT_EQ(DisplayWidth("\U0001F300"), 2U);
  EXPECT_EQ(DisplayWidth("\u231A"), 2U);                // a watch
  EXPECT_EQ(DisplayWidth("\u2705"), 2U);                // a check mark that is an emoji
  EXPECT_EQ(DisplayWidth("\u2713"), 1U);                // one that is not
  EXPECT_EQ(DisplayWidth("\u2764"), 1U);                // a heart as a sign
  EXPECT_EQ(DisplayWidth("\u2764\uFE0F"), 2U);          // and as an emoji
  EXPECT_EQ(DisplayWidth("1\uFE0F\u20E3"), 2U);         // a keycap
  EXPECT_EQ(DisplayWidth("\U0001F44D\U0001F3FD"), 4U);  // a thumb and its colour: many show two
  EXPECT_EQ(DisplayWidth("\U0001F1E8\U0001F1ED"), 2U);  // a flag
  EXPECT_EQ(DisplayWidth("\U0001FAE0"), 2U);
}

TEST(VisibleText, ACutLeavesMarksWithTheirCharacter) {
  EXPECT_EQ(VisibleText("ae\u0301bcd", 3), std::string("ae\u0301") + kEllipsis);
  EXPECT_EQ(VisibleText("a\u2764\uFE0Fbcd", 3), std::string("a") + kEllipsis);
  EXPECT_EQ(VisibleText("a\u2764\uFE0Fbcd", 4), std::string("a\u2764\uFE0F") + kEllipsis);
}

TEST(VisibleText, InvisibleCharactersOfAllKindsAreSpelledOut) {
  EXPECT_EQ(VisibleText("\u00AD"), "\\u{00AD}");
  EXPECT_EQ(VisibleText("\u3164"), "\\u{3164}");
  EXPECT_EQ(VisibleText("\U000E0041"), "\\u{E0041}");
  EXPECT_EQ(VisibleText("\u2066"), "\\u{2066}");
  // Signs of numbers are seen, though they count as format characters.
  EXPECT_EQ(VisibleText("\u0600"), "\u0600");
}

TEST(WrappedText, BreaksAtBlanks) {
  EXPECT_EQ(WrappedText("one two three", 20), "one two three\n");
  EXPECT_EQ(WrappedText("one two three", 7), "one two\n  three\n");
  EXPECT_EQ(WrappedText("one enormously two", 6), "one\n  enormously\n  two\n");
  EXPECT_EQ(WrappedText("", 6), "\n");
}

}  // namespace
}  // namespace cli
