#include "library/rewriting/QuoteRewriter.h"

#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace library {
namespace {

// Stand-ins that a test shows as letters of their own.
constexpr StandIns kStandIns{'\x01', '\x02', '\x03'};

QuoteRules Rules(const RewritingOptions& options, std::vector<std::string> delimiters = {","}) {
  QuoteRules rules;
  rules.delimiters = std::move(delimiters);
  rules.options = options;
  return rules;
}

constexpr RewritingOptions kJoin{.joinQuotedLines = true};
constexpr RewritingOptions kEscapes{.backslashEscapes = true};
constexpr RewritingOptions kJoinStrays{.joinQuotedLines = true, .keepStrayQualifiers = true};

// The text rewritten, with stand-ins shown as N (line feed), R (carriage return) and 0 (nothing).
// It is also rewritten in two pieces, cut anywhere.
std::string Rewritten(const std::string& text, QuoteRules rules, QuotePosition* end = nullptr) {
  const QuoteRewriter rewriter(std::move(rules), kStandIns);
  const std::size_t unit = rewriter.unitBytes();
  std::string whole = text;
  QuotePosition position = rewriter.Begin();
  rewriter.Rewrite(whole.data(), whole.size(), {}, position);
  for (std::size_t cut = 0; cut <= text.size(); cut += unit) {
    std::string pieces = text;
    QuotePosition cutPosition = rewriter.Begin();
    const std::string following = text.substr(cut, unit);
    rewriter.Rewrite(pieces.data(), cut, following, cutPosition);
    rewriter.Rewrite(pieces.data() + cut, pieces.size() - cut, {}, cutPosition);
    EXPECT_EQ(pieces, whole) << "cut at " << cut;
    EXPECT_EQ(cutPosition, position) << "cut at " << cut;
    QuotePosition watched = rewriter.Begin();
    rewriter.Advance(std::string_view(text).substr(0, cut), watched);
    rewriter.Advance(std::string_view(text).substr(cut), watched);
    EXPECT_EQ(watched, position) << "looked at, cut at " << cut;
  }
  if (end != nullptr) *end = position;
  EXPECT_EQ(whole.size(), text.size());
  for (char& byte : whole) {
    if (byte == kStandIns.lineFeed) byte = 'N';
    if (byte == kStandIns.carriageReturn) byte = 'R';
    if (byte == kStandIns.nothing) byte = '0';
  }
  return whole;
}

std::string Wide(const std::string& text, bool bigEndian) {
  std::string wide;
  for (const char byte : text) {
    if (bigEndian) wide += '\0';
    wide += byte;
    if (!bigEndian) wide += '\0';
  }
  return wide;
}

TEST(QuoteRewriter, LineBreaksInsideQualifiedFieldsAreReplaced) {
  QuotePosition end;
  EXPECT_EQ(Rewritten("a,\"b\nc\",d\ne\n", Rules(kJoin), &end), "a,\"bNc\",d\ne\n");
  EXPECT_EQ(end.joinedLines, 1);
  EXPECT_EQ(Rewritten("\"a\r\nb\rc\",\"\n\n\"\r\n", Rules(kJoin), &end), "\"aRNbRc\",\"NN\"\r\n");
  EXPECT_EQ(end.joinedLines, 4) << "CR LF is one";
  EXPECT_EQ(end.longestJoin, 2);
  EXPECT_EQ(end.feeds, 3);
  EXPECT_EQ(end.returns, 2);
  EXPECT_FALSE(end.IsOpen());
  EXPECT_EQ(end.state, QuotePosition::kStart);
}

TEST(QuoteRewriter, WithoutTheOptionALineBreakEndsTheRecordAndItsQualifiedField) {
  const std::string text = "a,\"b\nc\",d\n\"e\\\"\n";
  EXPECT_EQ(Rewritten(text, Rules({.keepStrayQualifiers = true})), text);
}

TEST(QuoteRewriter, DoubledQualifiersStayInTheField) {
  EXPECT_EQ(Rewritten("\"a\"\"\n\"\"b\",\"\"\"\n\"\nc", Rules(kJoin)),
            "\"a\"\"N\"\"b\",\"\"\"N\"\nc");
  EXPECT_EQ(Rewritten("\"\"\n\"\",\"\"\n", Rules(kJoin)), "\"\"\n\"\",\"\"\n");
}

TEST(QuoteRewriter, TextBehindAClosingQualifierIsUnqualified) {
  EXPECT_EQ(Rewritten("\"a\"b\nc\n", Rules(kJoin)), "\"a\"b\nc\n");
  EXPECT_EQ(Rewritten("\"a\" \"b\nc\n", Rules(kJoin)), "\"a\" \"bNcN");
  EXPECT_EQ(Rewritten("\"a\" \"b\nc\n", Rules(kJoinStrays)), "\"a\" \"bNcN")
      << "the field is no unqualified one";
  EXPECT_EQ(Rewritten("\"a\" b c \"d\n\",\"e\"f,g\"\n", Rules(kJoinStrays)),
            "\"a\" b c \"dN\",\"e\"f,g\"\n");
}

TEST(QuoteRewriter, AStrayQualifierQualifiesUnlessItIsKept) {
  QuotePosition end;
  EXPECT_EQ(Rewritten("5\" pipe,x\ny\n", Rules(kJoin), &end), "5\" pipe,xNyN");
  EXPECT_EQ(end.strays, 1);
  EXPECT_EQ(Rewritten("5\" pipe,x\nHe said \"hi\" there,\"y\nz\"\n", Rules(kJoinStrays), &end),
            "5\" pipe,x\nHe said \"hi\" there,\"yNz\"\n");
  EXPECT_EQ(end.strays, 3);
}

TEST(QuoteRewriter, BlanksInFrontOfAQualifierDoNotMakeItStray) {
  EXPECT_EQ(Rewritten("a,  \"b\nc\"\n", Rules(kJoinStrays)), "a,  \"bNc\"\n");
  EXPECT_EQ(Rewritten("   \"b\nc\"\n", Rules(kJoinStrays, {"\t"})), "   \"bNc\"\n");
  EXPECT_EQ(Rewritten("a \"b\nc\"\n", Rules(kJoinStrays, {" "})), "a \"bNc\"\n");
  EXPECT_EQ(Rewritten("a b \"c\nd\"\n", Rules(kJoinStrays, {","})), "a b \"c\nd\"\n");
}

TEST(QuoteRewriter, AnEscapedQualifierBecomesADoubledOne) {
  QuotePosition end;
  EXPECT_EQ(Rewritten("\"a \\\"b\\\" c\",d\n", Rules(kEscapes), &end), "\"a \"\"b\"\" c\",d\n");
  EXPECT_EQ(end.escapes, 2);
}

TEST(QuoteRewriter, OfAnyOtherEscapeTheBackslashGoesAndTheNextCharacterStays) {
  EXPECT_EQ(Rewritten("\"C:\\\\new\\,x\\\\\",\\a\n", Rules(kEscapes)), "\"C:0\\new0,x0\\\",\\a\n");
  QuotePosition end;
  EXPECT_EQ(Rewritten("\"a\\\"b\\c\\\nd\\\\\"\n", Rules(kEscapes), &end), "\"a\"\"b0c0Nd0\\\"\n");
  EXPECT_EQ(end.removed, 3);
  EXPECT_EQ(Rewritten("\"a\\", Rules(kEscapes)), "\"a\\") << "nothing follows";
}

TEST(QuoteRewriter, AnEscapedLineBreakStaysInTheValue) {
  QuotePosition end;
  EXPECT_EQ(Rewritten("\"a\\\nb\\\r\nc\nd\n", Rules(kEscapes), &end), "\"a0Nb0RNc\nd\n");
  EXPECT_EQ(end.joinedLines, 2);
}

TEST(QuoteRewriter, WithoutTheOptionABackslashIsData) {
  EXPECT_EQ(Rewritten("\"a\\\"\nb\\\"\n", Rules(kJoin)), "\"a\\\"\nb\\\"N");
}

TEST(QuoteRewriter, ThePreambleIsPassedAsItIs) {
  QuoteRules rules = Rules(kJoin);
  rules.linesBefore = 3;
  EXPECT_EQ(Rewritten("it's \"so\r\nx\"\"\"\r\r\n\"a\nb\"\n", rules),
            "it's \"so\r\nx\"\"\"\r\r\n\"aNb\"\n")
      << "CR LF ends one line, a CR alone too";
  EXPECT_EQ(Rewritten("\"x\n\"y\n\r\r\n\"a\nb\"\n", rules), "\"x\n\"y\n\r\r\n\"aNb\"\n");
}

TEST(QuoteRewriter, NulsCountForNothing) {
  const std::string text("a,\0\"b\nc\0\"\0,d\n", 14);
  EXPECT_EQ(Rewritten(text, Rules(kJoin)), std::string("a,\0\"bNc\0\"\0,d\n", 14));
}

// Long texts are passed in blocks, byte for byte only what asks for it.
TEST(QuoteRewriter, ATextIsTheSameInOnePieceAsByteByByte) {
  constexpr std::string_view kPieces[] = {
      "a",  "bc", "word", "\"",  "\"\"",       "\"x\"",       "\"x,y\"",      "\"x\ny\"",
      ",",  ",",  " ",    ",\"", "\",",        "\n",          "\n",           "\r\n",
      "\r", "\\", "\\\"", "0",   "0123456789", "a,b,c,d,e\n", "\"a\",\"b\"\n"};
  std::mt19937 random(20260);
  const auto draw = [&random](std::size_t below) { return random() % below; };
  for (int round = 0; round < 3000; ++round) {
    // Few kinds of pieces, so that long runs of what is plain come about, too.
    std::vector<std::string_view> kinds;
    for (std::size_t i = 2 + draw(8); i > 0; --i)
      kinds.push_back(kPieces[draw(std::size(kPieces))]);
    std::string text;
    while (text.size() < 700) {
      if (draw(300) == 0) text += '\0';
      text += kinds[draw(kinds.size())];
    }
    QuoteRules rules =
        Rules({draw(2) == 0, draw(4) == 0, draw(2) == 0},
              draw(3) == 0 ? std::vector<std::string>{" ", ","} : std::vector<std::string>{","});
    rules.linesBefore = static_cast<std::int64_t>(draw(3));
    const QuoteRewriter rewriter(rules, kStandIns);
    std::string whole = text;
    QuotePosition position = rewriter.Begin();
    rewriter.Rewrite(whole.data(), whole.size(), {}, position);
    std::string single = text;
    QuotePosition stepped = rewriter.Begin();
    for (std::size_t at = 0; at < text.size(); ++at) {
      rewriter.Rewrite(single.data() + at, 1, std::string_view(text).substr(at + 1, 1), stepped);
    }
    ASSERT_EQ(whole, single) << text;
    ASSERT_EQ(position, stepped) << text;
  }
}

TEST(QuoteRewriter, SeveralDelimitersAndOtherQualifiers) {
  QuoteRules rules = Rules(kJoin, {";", "|", "\t"});
  rules.qualifier = '\'';
  EXPECT_EQ(Rewritten("a;'b\nc'|\"d\ne\"\t'\n'\n", rules), "a;'bNc'|\"d\ne\"\t'N'\n");
}

TEST(QuoteRewriter, DelimitersOfSeveralBytes) {
  const QuoteRules rules = Rules(kJoinStrays, {"\xC2\xA7", "\xE2\x80\xA2"});
  EXPECT_EQ(Rewritten("a\xC2\xA7\"b\nc\"\xE2\x80\xA2\"d\ne\"\xC2\xA8\"\nf\n", rules),
            "a\xC2\xA7\"bNc\"\xE2\x80\xA2\"dNe\"\xC2\xA8\"NfN");
}

TEST(QuoteRewriter, Utf16InBothOrders) {
  for (const bool bigEndian : {false, true}) {
    QuoteRules rules;
    rules.units = bigEndian ? FileUnits::kUtf16BigEndian : FileUnits::kUtf16LittleEndian;
    rules.delimiters = {Wide(",", bigEndian),
                        std::string(bigEndian ? "\xD8\x3D\xDE\x00" : "\x3D\xD8\x00\xDE", 4)};
    rules.options = {true, true, true};
    rules.linesBefore = 1;
    const std::string text = "\"x\r\na,\"b\r\nc\\\"\\d\"\n5\",e\n";
    EXPECT_EQ(Rewritten(Wide(text, bigEndian), rules),
              Wide("\"x\r\na,\"bRNc\"\"0d\"\n5\",e\n", bigEndian));
    // A delimiter of two units.
    EXPECT_EQ(
        Rewritten(Wide("x\na", bigEndian) + rules.delimiters[1] + Wide("\"b\nc\"\n", bigEndian),
                  rules),
        Wide("x\na", bigEndian) + rules.delimiters[1] + Wide("\"bNc\"\n", bigEndian));
  }
}

TEST(QuoteRewriter, ALineEndOfTheOtherOrderEndsTheRecordEvenInQuotes) {
  QuoteRules rules;
  rules.units = FileUnits::kUtf16LittleEndian;
  rules.delimiters = {Wide(",", false)};
  rules.options = kJoin;
  const std::string swapped("\x00\x0A", 2);
  const std::string text = Wide("\"a", false) + swapped + Wide("b\nc\n", false);
  EXPECT_EQ(Rewritten(text, rules), text);
}

TEST(QuoteRewriter, SecondBytesThatLookLikeDelimiters) {
  const embedded::InCodePage page("Shift_JIS");
  QuoteRules rules = Rules({true, true, true}, {"|"});
  rules.page = embedded::CodePage::Find("Shift_JIS");
  ASSERT_NE(rules.page, nullptr);
  // 83 7C and 83 5C are characters of two bytes.
  EXPECT_EQ(Rewritten("\x83|\"a\nb\"|\"\x83\\\"\n|\"\x83|\nc\"\n", rules),
            "\x83|\"a\nb\"|\"\x83\\\"\n|\"\x83|Nc\"\n");
}

// --- The rules of a command

textwizard::ImportSettings Settings() {
  textwizard::ImportSettings settings;
  settings.delimiters = ",;";
  settings.qualifierSet = true;
  settings.qualifier = "'";
  settings.firstCase = 3;
  return settings;
}

TEST(QuoteRules, AreThoseOfTheCommandAndTheMark) {
  const embedded::InCodePage host(nullptr);
  QuoteRules rules;
  std::string problem;
  ASSERT_TRUE(
      MakeQuoteRules(Settings(), textwizard::ByteOrderMark::kUtf8, kJoin, &rules, &problem));
  EXPECT_EQ(rules.units, FileUnits::kBytes);
  EXPECT_EQ(rules.markBytes, 3);
  EXPECT_EQ(rules.linesBefore, 2);
  EXPECT_EQ(rules.delimiters, (std::vector<std::string>{",", ";"}));
  EXPECT_EQ(rules.qualifier, '\'');
  EXPECT_EQ(rules.page, nullptr);

  textwizard::ImportSettings counted = Settings();
  counted.arrangement = textwizard::kDelimitedCount;
  ASSERT_TRUE(
      MakeQuoteRules(counted, textwizard::ByteOrderMark::kUtf16BigEndian, kJoin, &rules, &problem));
  EXPECT_EQ(rules.units, FileUnits::kUtf16BigEndian);
  EXPECT_EQ(rules.markBytes, 2);
  EXPECT_EQ(rules.linesBefore, 2);
  EXPECT_EQ(rules.delimiters, (std::vector<std::string>{std::string("\0,", 2), {"\0;", 2}}));
}

TEST(QuoteRules, DelimitersAreInTheEncodingOfTheFile) {
  const embedded::InCodePage locale(nullptr, "windows-1252");
  textwizard::ImportSettings settings = Settings();
  settings.delimiters = "\xC2\xA7,";
  settings.encoding = textwizard::kEncodingLocale;
  QuoteRules rules;
  std::string problem;
  ASSERT_TRUE(MakeQuoteRules(settings, textwizard::ByteOrderMark::kNone, kJoin, &rules, &problem));
  EXPECT_EQ(rules.delimiters, (std::vector<std::string>{"\xA7", ","}));
  settings.encoding = textwizard::kEncodingUtf8;
  ASSERT_TRUE(MakeQuoteRules(settings, textwizard::ByteOrderMark::kNone, kJoin, &rules, &problem));
  EXPECT_EQ(rules.delimiters, (std::vector<std::string>{"\xC2\xA7", ","}));
}

TEST(QuoteRules, AreNotToBeHadWithoutAnAsciiQualifier) {
  const embedded::InCodePage host(nullptr);
  QuoteRules rules;
  std::string problem;
  textwizard::ImportSettings settings = Settings();
  settings.qualifierSet = false;
  EXPECT_FALSE(MakeQuoteRules(settings, textwizard::ByteOrderMark::kNone, kJoin, &rules, &problem));
  EXPECT_NE(problem.find("QUALIFIER"), std::string::npos) << problem;
  settings = Settings();
  settings.qualifier = "\xC2\xAB";
  EXPECT_FALSE(MakeQuoteRules(settings, textwizard::ByteOrderMark::kNone, kJoin, &rules, &problem));
  EXPECT_NE(problem.find("ASCII"), std::string::npos) << problem;
  settings = Settings();
  settings.arrangement = textwizard::kFixedColumns;
  EXPECT_FALSE(MakeQuoteRules(settings, textwizard::ByteOrderMark::kNone, kJoin, &rules, &problem));
  EXPECT_NE(problem.find("fixed"), std::string::npos) << problem;
}

}  // namespace
}  // namespace library
