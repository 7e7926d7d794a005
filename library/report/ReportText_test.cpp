#include "library/report/ReportText.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace library {
namespace {

class ReportTextTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
};

TEST_F(ReportTextTest, EscapesControlCharactersAndNothingElse) {
  ReportText text;
  EXPECT_EQ(text.Escaped("a\tb\nc\rd"), "a\\tb\\nc\\rd");
  EXPECT_EQ(text.Escaped(std::string_view("\0\x1B\x7F", 3)), "\\x00\\x1B\\x7F");
  EXPECT_EQ(text.Escaped("\xC2\x85\xC2\xA0"), "\\u0085\xC2\xA0");
  EXPECT_EQ(text.Escaped("\"a\\b\" caf\xC3\xA9"), "\"a\\b\" caf\xC3\xA9");
  EXPECT_EQ(text.Escaped(""), "");
}

TEST_F(ReportTextTest, BytesThatAreNoCharacterAreReplaced) {
  ReportText text;
  EXPECT_EQ(text.Escaped("a\xFFz"), "a\xEF\xBF\xBDz");
}

TEST_F(ReportTextTest, HasAtMostTwoHundredCharacters) {
  ReportText text;
  EXPECT_EQ(text.Escaped(std::string(200, 'x')), std::string(200, 'x'));
  EXPECT_EQ(text.Escaped(std::string(5000, 'x')), std::string(200, 'x'));
  std::string wide;
  for (int count = 0; count < 300; ++count) wide += "\xF0\x9F\x98\x80";
  EXPECT_EQ(text.Escaped(wide), wide.substr(0, std::size_t{4} * 200));
}

TEST_F(ReportTextTest, NeverCutsAnEscape) {
  ReportText text;
  EXPECT_EQ(text.Escaped(std::string(199, 'x') + "\ty"), std::string(199, 'x'));
  EXPECT_EQ(text.Escaped(std::string(198, 'x') + "\ty"), std::string(198, 'x') + "\\t");
}

TEST_F(ReportTextTest, ConvertsTheHostsCodePage) {
  const embedded::InCodePage page("windows-1252");
  ReportText text;
  EXPECT_EQ(text.Escaped("caf\xE9 \x80"), "caf\xC3\xA9 \xE2\x82\xAC");
}

}  // namespace
}  // namespace library
