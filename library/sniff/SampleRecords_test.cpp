// Lines into records.

#include "library/sniff/SampleRecords.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::ElementsAre;

std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::vector<std::string> Texts(const SampleRecords& joined) {
  std::vector<std::string> texts;
  for (const SampleRecord& record : joined.records) texts.emplace_back(record.text);
  return texts;
}

const Dialect kQuoted{",", false, "\"", Escape::kNone, {}};

TEST(SampleRecords, ALineBreakWithinAQualifiedFieldStays) {
  const auto lines = Lines("a,b\n1,\"x\ny\"\n2,z\n");
  const SampleRecords joined = JoinRecords(lines, lines.size(), kQuoted);
  EXPECT_THAT(Texts(joined), ElementsAre("a,b", "1,\"x\ny\"", "2,z"));
  EXPECT_EQ(joined.lineBreaks, 1);
  EXPECT_EQ(joined.firstLineBreak, 1U);
  EXPECT_EQ(joined.records[2].line, 3U);
  EXPECT_EQ(joined.records[1].lines, 2U);
}

TEST(SampleRecords, EmptyLinesMakeNoRecordUnlessTheyAreQualified) {
  const auto lines = Lines("a\n\n\"b\n\nc\"\n");
  const SampleRecords joined = JoinRecords(lines, lines.size(), kQuoted);
  EXPECT_THAT(Texts(joined), ElementsAre("a", "\"b\n\nc\""));
}

TEST(SampleRecords, AFieldThatNothingClosesEndsWithItsLine) {
  const auto lines = Lines("1,\"a\n2,b\n3,c\n");
  const SampleRecords joined = JoinRecords(lines, lines.size(), kQuoted);
  EXPECT_THAT(Texts(joined), ElementsAre("1,\"a", "2,b", "3,c"));
  EXPECT_EQ(joined.unclosed, 1);
  EXPECT_EQ(joined.lineBreaks, 0);
}

TEST(SampleRecords, OnlySoManyLinesAreLookedAt) {
  const auto lines = Lines("a\nb\nc\n");
  EXPECT_THAT(Texts(JoinRecords(lines, 2, kQuoted)), ElementsAre("a", "b"));
}

}  // namespace
}  // namespace library
