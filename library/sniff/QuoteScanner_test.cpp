// What is qualified in a line, and agreement with the rewriting of streams on it.

#include "library/sniff/QuoteScanner.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/HostText.h"
#include "library/import/QuoteRewriter.h"

namespace library {
namespace {

Dialect Comma(const char* qualifier = "\"", Escape escape = Escape::kNone) {
  Dialect dialect;
  dialect.delimiter = ",";
  dialect.qualifier = qualifier;
  dialect.escape = escape;
  return dialect;
}

TEST(QuoteScanner, CountsFieldsThatBeginWithAQualifier) {
  QuoteScanner scanner(Comma());
  EXPECT_FALSE(scanner.Scan(R"("a",b, "c" ,"d,e")", nullptr));
  EXPECT_EQ(scanner.counts().qualified, 3);
  EXPECT_EQ(scanner.counts().needed, 1);
  EXPECT_EQ(scanner.counts().stray, 0);
  EXPECT_EQ(scanner.counts().behind, 0);
}

TEST(QuoteScanner, ADoubledQualifierDoesNotClose) {
  QuoteScanner scanner(Comma());
  EXPECT_FALSE(scanner.Scan(R"("a ""b"", c",d)", nullptr));
  EXPECT_EQ(scanner.counts().qualified, 1);
  EXPECT_EQ(scanner.counts().doubled, 2);
}

TEST(QuoteScanner, AQualifierWithinAnUnqualifiedFieldIsStray) {
  QuoteScanner scanner(Comma());
  std::vector<QuoteMark> marks;
  EXPECT_FALSE(scanner.Scan(R"(5" pipe,He said "hi" there)", &marks));
  EXPECT_EQ(scanner.counts().stray, 3);
  EXPECT_EQ(scanner.counts().qualified, 0);
  ASSERT_EQ(marks.size(), 3U);
  EXPECT_EQ(marks[0].position, 1U);
  EXPECT_EQ(marks[0].kind, QuoteMark::Kind::kStray);
}

TEST(QuoteScanner, TextBehindTheClosingQualifierIsCountedAndBlanksAreNot) {
  QuoteScanner scanner(Comma());
  EXPECT_FALSE(scanner.Scan(R"("a"x,"b"  ,c)", nullptr));
  EXPECT_EQ(scanner.counts().behind, 1);
}

TEST(QuoteScanner, ABackslashEscapesOnlyWhereItIsTheEscape) {
  QuoteScanner plain(Comma());
  EXPECT_FALSE(plain.Scan(R"("a\",b)", nullptr));
  QuoteScanner escaping(Comma("\"", Escape::kBackslash));
  EXPECT_TRUE(escaping.Scan(R"("a\",b)", nullptr));
  EXPECT_EQ(escaping.counts().escaped, 1);
}

TEST(QuoteScanner, AnOpenFieldGoesOnInTheNextLine) {
  QuoteScanner scanner(Comma());
  EXPECT_TRUE(scanner.Scan("1,\"first", nullptr));
  EXPECT_TRUE(scanner.Scan("second, \"\"quoted\"\"", nullptr));
  EXPECT_FALSE(scanner.Scan("third\",2", nullptr));
  EXPECT_EQ(scanner.counts().qualified, 1);
  EXPECT_EQ(scanner.counts().needed, 1);
}

TEST(QuoteScanner, WithoutAQualifierNothingIsQualified) {
  QuoteScanner scanner(Comma(""));
  EXPECT_FALSE(scanner.Scan("\"a,b", nullptr));
  EXPECT_EQ(scanner.counts().qualified, 0);
}

// Random lines, each as a whole file: the stream's rewriting and the scanner must agree on whether
// the last field is open and how many qualifiers are stray.
TEST(QuoteScanner, AgreesWithTheRewritingOfStreams) {
  embedded::SetCodePage(nullptr);
  std::mt19937 random(7);
  constexpr std::string_view kAlphabet = "a\", \\b\"";
  for (const bool backslash : {false, true}) {
    const Dialect dialect = Comma("\"", backslash ? Escape::kBackslash : Escape::kNone);
    QuoteRules rules;
    rules.delimiters = {","};
    rules.options = {true, backslash, true};
    const QuoteRewriter rewriter(rules, StandIns());
    for (int i = 0; i < 20000; ++i) {
      std::string line;
      const std::size_t length = random() % 14;
      while (line.size() < length) line += kAlphabet[random() % kAlphabet.size()];
      QuoteScanner scanner(dialect);
      const bool open = scanner.Scan(line, nullptr);
      QuotePosition position = rewriter.Begin();
      rewriter.Advance(line, position);
      const bool expected =
          position.state == QuotePosition::kQualified || position.state == QuotePosition::kEscape;
      ASSERT_EQ(open, expected) << line;
      ASSERT_EQ(scanner.counts().stray, position.strays) << line;
    }
  }
}

}  // namespace
}  // namespace library
