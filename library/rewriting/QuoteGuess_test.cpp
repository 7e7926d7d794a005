#include "library/rewriting/QuoteGuess.h"

#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"

namespace library {
namespace {

constexpr StandIns kStandIns{'\x01', '\x02', '\x03'};

QuoteRewriter Rewriter() {
  QuoteRules rules;
  rules.delimiters = {","};
  rules.options.joinQuotedLines = true;
  return {rules, kStandIns};
}

// How the walk from the guess on stands in front of `offset`.
QuotePosition Guessed(const QuoteRewriter& rewriter, const std::string& text, std::int64_t offset) {
  embedded::MemoryDevice file(text);
  const auto anchor = GuessQuotes(rewriter, file, offset);
  EXPECT_TRUE(anchor.has_value());
  if (!anchor) return {};
  EXPECT_LT(anchor->offset, offset);
  QuotePosition position = anchor->position;
  rewriter.Advance(text.substr(static_cast<std::size_t>(anchor->offset),
                               static_cast<std::size_t>(offset - anchor->offset)),
                   position);
  return position;
}

TEST(GuessQuotes, FindsTheStateAnywhereInAWellFormedFile) {
  const QuoteRewriter rewriter = Rewriter();
  std::string text;
  for (int i = 0; i < 40; ++i) {
    text += std::to_string(i) + ",\"town " + (i % 3 == 0 ? "of\nline " : "") +
            (i % 5 == 0 ? "\"\"so\"\" called" : "x, y") + "\",plain\n";
  }
  QuotePosition walked = rewriter.Begin();
  for (std::size_t offset = 0; offset < text.size(); ++offset) {
    // Behind a qualifier both are thinkable, and the next character tells.
    const bool tells = walked.state != QuotePosition::kAfter;
    if (offset > 3 && tells) {
      EXPECT_EQ(Guessed(rewriter, text, static_cast<std::int64_t>(offset)).IsOpen(),
                walked.IsOpen())
          << "at " << offset << ": " << text.substr(offset, 20);
    }
    rewriter.Advance({text.data() + offset, 1}, walked);
  }
}

TEST(GuessQuotes, IsOutsideWhereThereAreNoQuotes) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += std::to_string(i) + ",plain\n";
  EXPECT_FALSE(Guessed(Rewriter(), text, 500).IsOpen());
}

TEST(GuessQuotes, NeedsTheBytesBeforeWhereCharactersAreOfSeveral) {
  QuoteRules rules;
  rules.delimiters = {","};
  rules.page = embedded::CodePage::Find("Shift_JIS");
  ASSERT_NE(rules.page, nullptr);
  embedded::MemoryDevice file("a,b,c,d,e,f\n");
  EXPECT_FALSE(GuessQuotes({rules, kStandIns}, file, 6).has_value());
}

}  // namespace
}  // namespace library
