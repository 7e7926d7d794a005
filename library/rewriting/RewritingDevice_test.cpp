#include "library/rewriting/RewritingDevice.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"

namespace library {
namespace {

constexpr StandIns kStandIns{'\x01', '\x02', '\x03'};

QuoteRules Rules() {
  QuoteRules rules;
  rules.delimiters = {","};
  rules.options = {true, true, true};
  return rules;
}

// Many fields with line breaks and escapes at all kinds of offsets.
std::string Text() {
  std::string text;
  for (int i = 0; i < 60; ++i) {
    text += std::string(static_cast<std::size_t>(i % 7), 'a') + ",\"b" +
            std::string(static_cast<std::size_t>(i % 5), '\n') + "\\\"c\\d\",5\" pipe\r\n";
  }
  return text;
}

std::string Rewritten(std::string text, const QuoteRules& rules) {
  const QuoteRewriter rewriter(rules, kStandIns);
  QuotePosition position = rewriter.Begin();
  const auto mark = static_cast<std::size_t>(rules.markBytes);
  rewriter.Rewrite(text.data() + mark,
                   (text.size() - mark) / rewriter.unitBytes() * rewriter.unitBytes(), {},
                   position);
  return text;
}

std::shared_ptr<QuoteIndex> Index(const QuoteRules& rules, std::int64_t spacing) {
  return std::make_shared<QuoteIndex>(QuoteRewriter(rules, kStandIns), spacing);
}

std::string ReadAll(embedded::StreamDevice& device, std::size_t block) {
  std::string text;
  std::string buffer(block, '\0');
  for (;;) {
    const std::ptrdiff_t got =
        device.ReadAt(static_cast<std::int64_t>(text.size()), buffer.data(), block);
    EXPECT_GE(got, 0);
    if (got <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(got));
  }
}

// `text` reads rewritten at every block size, from every offset, whatever was read before.
void ExpectRewritten(const std::string& text, const QuoteRules& rules) {
  const std::string expected = Rewritten(text, rules);
  for (const std::size_t block : {1, 2, 3, 7, 64, 4096}) {
    RewritingDevice device(std::make_unique<embedded::MemoryDevice>(text), Index(rules, 32));
    EXPECT_EQ(ReadAll(device, block), expected) << "block of " << block;
    EXPECT_EQ(device.Size(), static_cast<std::int64_t>(text.size()));
  }
  RewritingDevice device(std::make_unique<embedded::MemoryDevice>(text), Index(rules, 32));
  const std::unique_ptr<embedded::StreamDevice> copy = device.Duplicate();
  char buffer[11];
  for (std::size_t step = 0; step < text.size(); ++step) {
    const std::size_t offset = step * 37 % text.size();
    for (embedded::StreamDevice* reader :
         {static_cast<embedded::StreamDevice*>(&device), copy.get()}) {
      const std::ptrdiff_t got =
          reader->ReadAt(static_cast<std::int64_t>(offset), buffer, sizeof buffer);
      ASSERT_GT(got, 0);
      EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(got)),
                expected.substr(offset, static_cast<std::size_t>(got)))
          << "at " << offset;
    }
  }
}

TEST(RewritingDevice, ShowsTheSameWhereTheWalkHasBeen) {
  // Blocks with nothing to replace before, between and behind those that have something.
  std::string text = std::string(100, 'a') + ",\"b\nc\"\n" + Text();
  for (int i = 0; i < 40; ++i) text += "plain,\"quoted, plainly\",1\n";
  text += "a,\"\\\"b\n\"\n" + std::string(100, 'z');
  const auto index = Index(Rules(), 32);
  embedded::MemoryDevice file(text);
  QuotePosition end;
  ASSERT_TRUE(index->Find(file.Size(), file, &end));
  EXPECT_EQ(index->UntouchedUntil(1), 96);
  EXPECT_EQ(index->UntouchedUntil(97), 97);
  const std::string expected = Rewritten(text, Rules());
  for (const std::size_t block : {1, 7, 64, 4096}) {
    RewritingDevice device(std::make_unique<embedded::MemoryDevice>(text), index);
    EXPECT_EQ(ReadAll(device, block), expected) << "block of " << block;
    char buffer[11];
    for (std::size_t step = 0; step < text.size(); ++step) {
      const std::size_t offset = step * 37 % text.size();
      const std::ptrdiff_t got =
          device.ReadAt(static_cast<std::int64_t>(offset), buffer, sizeof buffer);
      ASSERT_GT(got, 0);
      EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(got)),
                expected.substr(offset, static_cast<std::size_t>(got)))
          << "at " << offset;
    }
  }
}

TEST(RewritingDevice, ShowsTheSameWhereverAndHoweverItIsRead) { ExpectRewritten(Text(), Rules()); }

TEST(RewritingDevice, KeepsTheMarkOutOfTheFirstField) {
  QuoteRules rules = Rules();
  rules.markBytes = 3;
  const std::string text = "\xEF\xBB\xBF\"a\nb\",c\n" + Text();
  ASSERT_NE(Rewritten(text, rules).find("\"a\x01"), std::string::npos);
  ExpectRewritten(text, rules);
}

TEST(RewritingDevice, Utf16IsRewrittenByUnitsThoughReadByBytes) {
  QuoteRules rules = Rules();
  rules.units = FileUnits::kUtf16LittleEndian;
  rules.markBytes = 2;
  rules.delimiters = {std::string(",\0", 2)};
  std::string text = "\xFF\xFE";
  for (const char byte : Text()) (text += byte) += '\0';
  ExpectRewritten(text, rules);
  ExpectRewritten(text + "x", rules);
}

TEST(RewritingDevice, AReadThatFailsIsNoEndOfTheFile) {
  const auto faults = std::make_shared<embedded::StreamFaults>();
  faults->failAt = 101;
  RewritingDevice device(std::make_unique<embedded::FaultyDevice>(
                             std::make_unique<embedded::MemoryDevice>(Text()), faults),
                         Index(Rules(), 32));
  char buffer[64];
  EXPECT_LT(device.ReadAt(101, buffer, sizeof buffer), 0);
  EXPECT_EQ(device.ReadAt(64, buffer, sizeof buffer), 37);
  faults->failAt = 40;
  // The bytes are there, but what stands before them cannot be known.
  RewritingDevice later(std::make_unique<embedded::FaultyDevice>(
                            std::make_unique<embedded::MemoryDevice>(Text()), faults),
                        Index(Rules(), 32));
  EXPECT_LT(later.ReadAt(100, buffer, sizeof buffer), 0);
}

TEST(RewritingDevice, ReadsThatReturnLittleAreWholeAllTheSame) {
  const auto faults = std::make_shared<embedded::StreamFaults>();
  faults->mostBytes = 1;
  QuoteRules rules = Rules();
  rules.units = FileUnits::kUtf16BigEndian;
  rules.delimiters = {std::string("\0,", 2)};
  std::string text;
  for (const char byte : Text()) (text += '\0') += byte;
  RewritingDevice device(std::make_unique<embedded::FaultyDevice>(
                             std::make_unique<embedded::MemoryDevice>(text), faults),
                         Index(rules, 32));
  EXPECT_EQ(ReadAll(device, 64), Rewritten(text, rules));
}

TEST(JoinedLines, CountsTheLineEndsThatEndNoRecord) {
  const std::string text = "a,\"b\nc\r\nd\",e\nf,\"\n\"\n";
  const auto index = Index(Rules(), 4);
  JoinedLines lines(std::make_unique<embedded::MemoryDevice>(text), index);
  const auto expected = [&](std::size_t offset) {
    return offset > 16 ? 3 : offset > 6 ? 2 : offset > 4 ? 1 : 0;
  };
  for (std::size_t offset = 0; offset <= text.size(); ++offset) {
    EXPECT_EQ(lines.Before(static_cast<std::int64_t>(offset)), expected(offset)) << offset;
  }
  for (std::size_t offset = text.size(); offset > 0; --offset) {
    EXPECT_EQ(lines.Before(static_cast<std::int64_t>(offset)), expected(offset)) << offset;
  }
}

TEST(MarkedDevice, ShowsAMarkInFrontOfTheFile) {
  const MarkedDevice device(std::make_unique<embedded::MemoryDevice>(std::string("abc")),
                            "\xFF\xFE");
  EXPECT_EQ(device.Size(), 5);
  const std::unique_ptr<embedded::StreamDevice> copy = device.Duplicate();
  for (const std::size_t block : {1, 2, 3, 64})
    EXPECT_EQ(ReadAll(*copy, block),
              "\xFF\xFE"
              "abc");
  char byte = 0;
  EXPECT_LT(copy->ReadAt(-1, &byte, 1), 0);
}

TEST(RewritingDevice, ShowsTheSameFromAKnownPlaceOn) {
  const std::string text = Text();
  const std::string expected = Rewritten(text, Rules());
  const QuoteRewriter rewriter(Rules(), kStandIns);
  for (std::size_t offset = 1; offset < text.size(); offset += 13) {
    QuotePosition position = rewriter.Begin();
    rewriter.Advance({text.data(), offset}, position);
    const QuoteAnchor anchor{static_cast<std::int64_t>(offset), position};
    RewritingDevice device(std::make_unique<embedded::MemoryDevice>(text),
                           std::make_shared<QuoteIndex>(rewriter, anchor, 32));
    EXPECT_EQ(ReadAll(device, 64), expected) << "known at " << offset;
    EXPECT_EQ(ReadAll(device, 7), expected) << "known at " << offset;
  }
}

TEST(RewritingDevice, WhatIsBeforeAKnownPlaceIsNotReadBehindIt) {
  QuoteRules rules = Rules();
  rules.options = {true, false, false};
  // Wrong where it is known: the place goes for all that is behind it, and for nothing before.
  const std::string text = "a,\"b\nc\",d\na,\"b\nc\",d\n";
  QuotePosition inside;
  inside.state = QuotePosition::kQualified;
  const std::size_t second = text.find("\na") + 1;
  RewritingDevice device(
      std::make_unique<embedded::MemoryDevice>(text),
      std::make_shared<QuoteIndex>(QuoteRewriter(rules, kStandIns),
                                   QuoteAnchor{static_cast<std::int64_t>(second), inside}));
  EXPECT_EQ(ReadAll(device, 4096),
            "a,\"b\x01"
            "c\",d\na,\"b\nc\",d\x01");
}

}  // namespace
}  // namespace library
