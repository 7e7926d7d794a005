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

}  // namespace
}  // namespace cli
