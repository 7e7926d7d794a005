// Which bytes are no character is what the host's decoder says, byte by byte.
#include "reading/UndecodableScan.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/HostText.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace textwizard {
namespace {

using Positions = std::vector<std::size_t>;

Positions Scanned(const std::string& text) {
  const embedded::Exact exact(text);
  Positions positions;
  for (std::size_t from = 0;;) {
    const UndecodableRun run = FindUndecodable(exact.view(), from);
    if (run.count == 0) return positions;
    // A run begins behind a character or the one before it would go on.
    EXPECT_TRUE(positions.empty() || positions.back() + 1 < run.position);
    for (std::size_t i = 0; i < run.count; ++i) positions.push_back(run.position + i);
    from = run.position + run.count;
  }
}

Positions Decoded(const std::string& text) {
  Positions positions;
  for (std::size_t at = 0; at < text.size();) {
    std::uint32_t ch = 0;
    const int length = QANTMBU32Get_A(&ch, text.c_str() + at, 0, 8);
    if (length < 1) positions.push_back(at);
    at += length < 1 ? 1 : static_cast<std::size_t>(length);
  }
  return positions;
}

class UndecodableScan : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }
};

TEST_F(UndecodableScan, EveryByteOfABrokenCharacterIsOne) {
  EXPECT_EQ(Scanned(""), Positions{});
  EXPECT_EQ(Scanned("plain text, \xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), Positions{});
  EXPECT_EQ(Scanned("\xFF\xFE"), (Positions{0, 1}));
  EXPECT_EQ(Scanned("a\xE2\x82z"), (Positions{1, 2}));
  EXPECT_EQ(Scanned("\xC3"), Positions{0});
  EXPECT_EQ(Scanned("\xC3\xC3\xA9\x80"), (Positions{0, 3}));
  // Overlong, a surrogate, above the last character.
  EXPECT_EQ(Scanned("\xC0\xAF\xE0\x80\xAF\xED\xA0\x80\xF4\x90\x80\x80").size(), 12u);
}

TEST_F(UndecodableScan, EveryPairAndTripleOfBytes) {
  for (unsigned first = 1; first < 256; ++first) {
    for (unsigned second = 1; second < 256; ++second) {
      std::string text = {static_cast<char>(first), static_cast<char>(second)};
      ASSERT_EQ(Scanned(text), Decoded(text)) << testing::PrintToString(text);
      for (const char third : {'\x7F', '\x80', '\x9F', '\xBF', '\xC2'}) {
        const std::string three = text + third;
        ASSERT_EQ(Scanned(three), Decoded(three)) << testing::PrintToString(three);
        ASSERT_EQ(Scanned(three + '\x80'), Decoded(three + '\x80'));
      }
    }
  }
}

TEST_F(UndecodableScan, RandomBytes) {
  std::mt19937 random(11);
  const std::vector<std::string> pieces = {"abcdefghij",       "x",    "\xC3\xA9", "\xE2\x82\xAC",
                                           "\xF0\x9F\x98\x80", "\xFF", "\xE2\x82", "\x80",
                                           "\xED\xA0"};
  for (int round = 0; round < 5000; ++round) {
    std::string text;
    for (std::size_t n = random() % 30; n > 0; --n) text += pieces[random() % pieces.size()];
    ASSERT_EQ(Scanned(text), Decoded(text)) << testing::PrintToString(text);
  }
}

}  // namespace
}  // namespace textwizard
