// Bytes of the sample, their lines and where those are in the file.

#include "library/sniff/SampleText.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::ElementsAre;

SampleBytes Bytes(std::string_view text, bool whole = true) {
  MemorySource source(text, whole);
  SampleBytes bytes;
  std::string problem;
  EXPECT_TRUE(bytes.Read(source, &problem)) << problem;
  return bytes;
}

TEST(SampleText, LinesEndWithLfCrLfOrCr) {
  const SampleBytes bytes = Bytes("a\nb\r\nc\rd");
  SampleText text;
  ASSERT_TRUE(text.Decode(bytes, "UTF-8", 0));
  EXPECT_THAT(text.head(), ElementsAre("a", "b", "c", "d"));
  EXPECT_EQ(text.lineEnd(), LineEnd::kMixed);
  EXPECT_EQ(text.lineEnds(LineEnd::kLf), 1);
  EXPECT_EQ(text.lineEnds(LineEnd::kCrLf), 1);
  EXPECT_EQ(text.lineEnds(LineEnd::kCr), 1);
  EXPECT_TRUE(text.headIsWhole());
}

TEST(SampleText, OffsetsAreThoseOfTheFile) {
  const SampleBytes bytes = Bytes(
      "\xEF\xBB\xBF"
      "a\r\nbc\n\nd\n");
  SampleText text;
  ASSERT_TRUE(text.Decode(bytes, "UTF-8", 3));
  EXPECT_THAT(text.head(), ElementsAre("a", "bc", "", "d"));
  EXPECT_EQ(text.OffsetOfLine(0, 0), 3U);
  EXPECT_EQ(text.OffsetOfLine(0, 1), 6U);
  EXPECT_EQ(text.OffsetOfLine(0, 3), 10U);
  EXPECT_EQ(text.OffsetOfLine(0, 4), 12U);
}

TEST(SampleText, SixteenBitLinesAreFoundInEitherByteOrder) {
  const std::string little("a\0\r\0\n\0b\0\n\0", 10);
  const std::string big("\0a\0\r\0\n\0b\0\n", 10);
  for (const auto& [raw, name] : {std::pair{little, "UTF-16LE"}, std::pair{big, "UTF-16BE"}}) {
    const SampleBytes bytes = Bytes(raw);
    SampleText text;
    ASSERT_TRUE(text.Decode(bytes, name, 0));
    EXPECT_THAT(text.head(), ElementsAre("a", "b"));
    EXPECT_EQ(text.OffsetOfLine(0, 1), 6U) << name;
  }
}

TEST(SampleText, NulsAreDroppedAndOtherEncodingsDecoded) {
  const SampleBytes bytes = Bytes(std::string("caf\xE9\0,1\n", 8));
  SampleText text;
  ASSERT_TRUE(text.Decode(bytes, "windows-1252", 0));
  EXPECT_THAT(text.head(), ElementsAre("café,1"));
}

TEST(SampleText, AnUnknownEncodingIsRefused) {
  const SampleBytes bytes = Bytes("a");
  SampleText text;
  EXPECT_FALSE(text.Decode(bytes, "no-such-encoding", 0));
}

TEST(SampleText, ABeginningLeavesOutTheLineThatItCuts) {
  const SampleBytes bytes = Bytes("one\ntwo\nthr", false);
  SampleText text;
  ASSERT_TRUE(text.Decode(bytes, "UTF-8", 0));
  EXPECT_THAT(text.head(), ElementsAre("one", "two"));
  EXPECT_FALSE(text.headIsWhole());
}

// A large source is looked at in ten places, and every line of a block is one of the file's.
TEST(SampleText, ALargeSourceIsReadInParts) {
  std::string large;
  for (int i = 0; large.size() < (6U << 20); ++i) large += "line " + std::to_string(i) + ",x\n";
  const SampleBytes bytes = Bytes(large);
  EXPECT_FALSE(bytes.whole());
  ASSERT_EQ(bytes.regions().size(), 2 + SampleBytes::kSpreadBlocks);
  EXPECT_EQ(bytes.regions().back().offset + bytes.regions().back().bytes.size(), large.size());
  SampleText text;
  ASSERT_TRUE(text.Decode(bytes, "UTF-8", 0));
  EXPECT_FALSE(text.headIsWhole());
  for (std::size_t region = 0; region < text.regions().size(); ++region) {
    const auto& lines = text.regions()[region].lines;
    ASSERT_FALSE(lines.empty());
    for (std::size_t i : {std::size_t{0}, lines.size() - 1}) {
      const std::uint64_t offset = text.OffsetOfLine(region, i);
      EXPECT_EQ(large.substr(offset, lines[i].size()), lines[i]);
      EXPECT_TRUE(offset == 0 || large[offset - 1] == '\n');
      EXPECT_TRUE(lines[i].starts_with("line "));
    }
  }
}

}  // namespace
}  // namespace library
