#include "HostFramework/embedded/messages/Catalogue.h"

#include <cstdio>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using embedded::Catalogue;
using testing::HasSubstr;
using testing::IsEmpty;

struct Parsed {
  explicit Parsed(std::string_view text) { catalogue = Catalogue::Parse(text, &problems); }
  std::string Text(long id) const {
    const std::string* text = catalogue.Find(id);
    return text ? *text : "none";
  }
  std::string problems;
  Catalogue catalogue;
};

TEST(Catalogue, TakesNumberBlankText) {
  const Parsed parsed("7 [7] First.\n2258 [2258] not\n");
  EXPECT_THAT(parsed.problems, IsEmpty());
  EXPECT_EQ(parsed.Text(7), "[7] First.");
  EXPECT_EQ(parsed.Text(2258), "[2258] not");
  EXPECT_EQ(parsed.Text(8), "none");
}

TEST(Catalogue, SkipsEmptyLinesMarksAndCarriageReturns) {
  const Parsed parsed("\xEF\xBB\xBF\r\n\n7 [7] First.\r\n8 [8] Last");
  EXPECT_THAT(parsed.problems, IsEmpty());
  EXPECT_EQ(parsed.Text(7), "[7] First.");
  EXPECT_EQ(parsed.Text(8), "[8] Last");
}

TEST(Catalogue, NamesTheLinesThatAreNoEntries) {
  for (const char* line : {"text", "7", "7 ", "7\t[7] x", "-7 [-7] x", "0 [0] x", " 7 [7] x",
                           "99999999999999999999 [99999999999999999999] x"}) {
    const Parsed parsed("\n" + std::string(line) + "\n9 [9] Good.\n");
    EXPECT_THAT(parsed.problems, HasSubstr("line 2")) << line;
    EXPECT_EQ(parsed.Text(9), "[9] Good.") << line;
    EXPECT_EQ(parsed.Text(7), "none") << line;
  }
}

TEST(Catalogue, ATextBeginsWithItsNumber) {
  const Parsed parsed("7 [8] Wrong.\n8 Wrong.\n");
  EXPECT_THAT(parsed.problems, HasSubstr("line 1, message 7"));
  EXPECT_THAT(parsed.problems, HasSubstr("line 2, message 8"));
  EXPECT_EQ(parsed.Text(7), "none");
  EXPECT_EQ(parsed.Text(8), "none");
}

TEST(Catalogue, TheFirstTextOfANumberStays) {
  const Parsed parsed("7 [7] First.\n7 [7] Second.\n");
  EXPECT_THAT(parsed.problems, HasSubstr("line 2, message 7"));
  EXPECT_EQ(parsed.Text(7), "[7] First.");
}

TEST(Catalogue, APercentSignInAPlainTextIsOne) {
  const Parsed parsed("2258 [2258] 100 %s %n %\n");
  EXPECT_THAT(parsed.problems, IsEmpty());
  EXPECT_EQ(parsed.Text(2258), "[2258] 100 %s %n %");
}

TEST(Catalogue, TakesThePlaceholdersThatTheCallersFill) {
  const Parsed parsed(
      "2271 [2271] %d\n2272 [2272] %i%%\n2273 [2273] %d\n2274 [2274] %d\n2279 [2279] %d, %i\n"
      "2284 [2284] %s\n2285 [2285] %s\n2287 [2287] %s\n2288 [2288] %s\n2289 [2289] %s\n"
      "2291 [2291] %s\n2293 [2293] %s\n2294 [2294] %s\n2296 [2296] %s\n2297 [2297] %%%s\n");
  EXPECT_THAT(parsed.problems, IsEmpty());
}

TEST(Catalogue, RefusesAnyOtherPlaceholderInAFormat) {
  for (const char* id : {"2271", "2272", "2273", "2274", "2279", "2284", "2285", "2287", "2288",
                         "2289", "2291", "2293", "2294", "2296", "2297"}) {
    for (const char* placeholders :
         {"",    "%",    "%d%d%d", "%s%s",  "%d%s", "%s%d", "%n",   "%f",
          "%ld", "%lld", "%*d",    "%d%*s", "%5d",  "%.3s", "%.*s", "%1$s",
          "%-d", "%c",   "%p",     "%m",    "%S",   "% d",  "%%"}) {
      const Parsed parsed(std::string(id) + " [" + id + "] " + placeholders + "\n9 [9] Good.\n");
      EXPECT_THAT(parsed.problems, HasSubstr(std::string("message ") + id)) << placeholders;
      EXPECT_THAT(parsed.problems, HasSubstr("placeholders")) << placeholders;
      EXPECT_EQ(parsed.Text(std::stol(id)), "none") << placeholders;
      EXPECT_EQ(parsed.Text(9), "[9] Good.");
    }
  }
}

TEST(Catalogue, AnIntegerIsNoStringAndAStringNoInteger) {
  const Parsed parsed("2271 [2271] %s\n2279 [2279] %d\n2297 [2297] %d\n");
  EXPECT_THAT(parsed.problems, HasSubstr("line 1, message 2271"));
  EXPECT_THAT(parsed.problems, HasSubstr("line 2, message 2279"));
  EXPECT_THAT(parsed.problems, HasSubstr("exactly %d and %d"));
  EXPECT_THAT(parsed.problems, HasSubstr("line 3, message 2297"));
}

TEST(Catalogue, RefusesTextsThatBuffersMayNotHold) {
  const Parsed parsed("7 [7] " + std::string(497, 'x') + "\n8 [8] " + std::string(496, 'x'));
  EXPECT_THAT(parsed.problems, HasSubstr("line 1, message 7"));
  EXPECT_EQ(parsed.Text(7), "none");
  EXPECT_EQ(parsed.Text(8).size(), 500u);
  EXPECT_EQ(Parsed(std::string("9 [9] a\0b", 9)).Text(9), "none");
}

}  // namespace
