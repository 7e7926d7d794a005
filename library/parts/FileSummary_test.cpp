#include "library/parts/FileSummary.h"

#include <random>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/report/ImportWatch.h"
#include "library/rewriting/RewritingDevice.h"

namespace library {
namespace {

constexpr const char* kPath = "summary.txt";

FileSummarySettings Settings(const std::string& data, std::size_t columns,
                             const std::string& delimiters = ",") {
  FileSummarySettings settings;
  settings.path = kPath;
  settings.cut.settings.delimiters = delimiters;
  settings.cut.settings.qualifierSet = true;
  settings.cut.settings.qualifier = "\"";
  settings.cut.fields.resize(columns);
  settings.nulls = DefaultNullTexts();
  settings.end = static_cast<std::int64_t>(data.size());
  return settings;
}

PartSummary Summarize(const std::string& data, const FileSummarySettings& settings) {
  const embedded::ScopedMemoryFiles files(kPath, data);
  PartSummary summary;
  std::string problem;
  EXPECT_TRUE(SummarizeFile(settings, &summary, &problem)) << problem;
  return summary;
}

class FileSummaryTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
};

TEST_F(FileSummaryTest, CountsLinesRecordsAndColumns) {
  const std::string data = "id,town\n1,Graz\r\n\n2,\"a,b\"\r3,,,\n4,x,y\n5";
  FileSummarySettings settings = Settings(data, 2);
  settings.begin = 8;
  settings.linesBefore = 1;
  const PartSummary summary = Summarize(data, settings);
  EXPECT_EQ(summary.lines, 7);
  EXPECT_EQ(summary.records, 5);
  EXPECT_EQ(summary.surplus.count, 1) << "delimiters alone are no surplus";
  EXPECT_EQ(summary.surplus.line, 6);
  EXPECT_EQ(summary.surplus.text, "y");
  ASSERT_EQ(summary.columns.size(), 2u);
  EXPECT_EQ(summary.columns[0].Read(Reading::kPoint), 5);
  EXPECT_EQ(summary.columns[0].longest().line, 2);
  EXPECT_EQ(summary.columns[1].values(), 3);
  EXPECT_EQ(summary.columns[1].empties(), 2);
  EXPECT_EQ(summary.columns[1].groups()[0].values.line, 2);
  EXPECT_EQ(summary.columns[1].longest().text, "Graz");
}

TEST_F(FileSummaryTest, FieldsMayBePassedOver) {
  const std::string data = "1||2\n3|x|4\n";
  FileSummarySettings settings = Settings(data, 3, "|");
  settings.cut.fields[1].imported = false;
  const PartSummary summary = Summarize(data, settings);
  ASSERT_EQ(summary.columns.size(), 2u);
  EXPECT_EQ(summary.columns[1].Read(Reading::kPoint), 2);
  EXPECT_EQ(summary.unexpected.count, 1);
  EXPECT_EQ(summary.unexpected.line, 2);
  EXPECT_EQ(summary.unexpected.text, "x");
}

TEST_F(FileSummaryTest, FixedColumns) {
  const std::string data = "12abc\n3\n\n45de\n";
  FileSummarySettings settings = Settings(data, 2);
  settings.cut.settings.arrangement = textwizard::kFixedColumns;
  settings.cut.fields = {{true, 0, 2}, {true, 2, 3}};
  const PartSummary summary = Summarize(data, settings);
  EXPECT_EQ(summary.records, 3);
  EXPECT_EQ(summary.columns[0].Read(Reading::kPoint), 3);
  EXPECT_EQ(summary.columns[1].values(), 2);
  EXPECT_EQ(summary.columns[1].empties(), 1);
}

TEST_F(FileSummaryTest, OnlyTheFirstLinesCount) {
  const std::string data = "a\n1\n2\n\n3\nx\ny\n";
  FileSummarySettings settings = Settings(data, 1);
  settings.begin = 2;
  settings.linesBefore = 1;
  settings.lastLine = 5;
  const PartSummary summary = Summarize(data, settings);
  EXPECT_EQ(summary.lines, 5);
  EXPECT_EQ(summary.columns[0].values(), 3);
  settings.lastLine = 100;
  EXPECT_EQ(Summarize(data, settings).lines, 7);
}

TEST_F(FileSummaryTest, BytesThatAreNoCharacterAreNoted) {
  const std::string data = "a,b\nc,\xFF\n\xC3,d\n";
  const PartSummary summary = Summarize(data, Settings(data, 2));
  EXPECT_EQ(summary.undecodable.count, 2);
  EXPECT_EQ(summary.undecodable.line, 2);
}

TEST_F(FileSummaryTest, NothingToRead) {
  const PartSummary summary = Summarize("", Settings("", 3));
  EXPECT_EQ(summary.records, 0);
  EXPECT_EQ(summary.lines, 0);
  EXPECT_EQ(summary.columns.size(), 3u);
}

std::string RandomData(std::mt19937_64& random, bool withNuls) {
  const std::vector<std::string> pieces = {
      ",",          "\n", "\r\n", "\r",      "\"",       "a,b", "12",  "1.5",
      "2020-01-02", "NA", "x y",  "\"q,r\"", "\xC3\xA9", ",,",  "007", "1,234"};
  std::string data;
  for (std::size_t count = random() % 80; count > 0; --count) {
    data += pieces[random() % pieces.size()];
    if (withNuls && random() % 20 == 0) data += '\0';
  }
  return data;
}

// The summary is the same wherever the file is cut into parts, and however many threads read them.
TEST_F(FileSummaryTest, TheSameForAnyPartsAndThreads) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 150; ++round) {
    const std::string data = RandomData(random, round % 3 == 0);
    SCOPED_TRACE(testing::PrintToString(data));
    FileSummarySettings settings = Settings(data, 3);
    settings.threads = 1;
    const PartSummary whole = Summarize(data, settings);
    for (const std::int64_t bytes : {1, 2, 3, 7, 50}) {
      settings.partBytes = bytes;
      settings.threads = 1 + static_cast<int>(random() % 3);
      const embedded::ScopedBlockSize blocks(1 + random() % 9);
      ASSERT_EQ(Summarize(data, settings), whole) << bytes;
    }
  }
}

TEST_F(FileSummaryTest, TheSameForAnyPartsOfUtf16) {
  std::mt19937_64 random(6);
  for (int round = 0; round < 60; ++round) {
    const bool bigEndian = round % 2 == 0;
    std::string data = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char byte : RandomData(random, false)) {
      if (static_cast<unsigned char>(byte) >= 0x80) continue;
      if (bigEndian) data += '\0';
      data += byte;
      if (!bigEndian) data += '\0';
    }
    SCOPED_TRACE(testing::PrintToString(data));
    FileSummarySettings settings = Settings(data, 3);
    settings.begin = 2;
    settings.threads = 1;
    const PartSummary whole = Summarize(data, settings);
    for (const std::int64_t bytes : {2, 4, 6, 50}) {
      settings.partBytes = bytes;
      ASSERT_EQ(Summarize(data, settings), whole) << bytes;
    }
  }
}

TEST_F(FileSummaryTest, JoinedLinesAreCountedAsTheFileHasThem) {
  const std::string data = "h\n1,\"a\nb\r\nc\"\n\nx,\"\n\"\n9,y\n";
  QuoteRules rules;
  rules.delimiters = {","};
  rules.linesBefore = 1;
  rules.options.joinQuotedLines = true;
  const StandIns standIns;
  for (const std::int64_t bytes : {std::int64_t{1000}, std::int64_t{3}}) {
    const auto index = std::make_shared<QuoteIndex>(QuoteRewriter(rules, standIns), 4);
    embedded::SetStreamDeviceOpener([&](const char*) {
      return std::make_unique<RewritingDevice>(std::make_unique<embedded::MemoryDevice>(data),
                                               index);
    });
    FileSummarySettings settings = Settings(data, 2);
    settings.begin = 2;
    settings.linesBefore = 1;
    settings.standIns = &standIns;
    settings.partBytes = bytes;
    PartSummary summary;
    std::string problem;
    ASSERT_TRUE(SummarizeFile(settings, &summary, &problem)) << problem;
    embedded::SetStreamDeviceOpener(nullptr);
    EXPECT_EQ(summary.lines, 8);
    EXPECT_EQ(summary.records, 3);
    EXPECT_EQ(summary.columns[0].Unread(Reading::kPoint).line, 6);
    EXPECT_EQ(summary.columns[1].longest().line, 2);
    EXPECT_EQ(summary.controls[1], 3);
    EXPECT_EQ(summary.controls[2], 1);
  }
}

TEST_F(FileSummaryTest, AReadThatFailsIsSaid) {
  const auto faults = std::make_shared<embedded::StreamFaults>();
  std::string data;
  for (int line = 0; line < 10000; ++line) data += "1,2\n";
  for (const int threads : {1, 3}) {
    faults->failAt = 20000;
    const embedded::ScopedMemoryFiles files(kPath, data, faults);
    FileSummarySettings settings = Settings(data, 2);
    settings.partBytes = 1000;
    settings.threads = threads;
    PartSummary summary;
    std::string problem;
    EXPECT_FALSE(SummarizeFile(settings, &summary, &problem));
    EXPECT_EQ(problem, "reading the file failed");
  }
}

TEST_F(FileSummaryTest, AFileThatIsNotThereIsSaid) {
  const embedded::ScopedMemoryFiles files("other", "");
  PartSummary summary;
  std::string problem;
  EXPECT_FALSE(SummarizeFile(Settings("x", 1), &summary, &problem));
  EXPECT_EQ(problem, "the file cannot be opened");
}

TEST_F(FileSummaryTest, TheUserMayInterrupt) {
  std::string data;
  for (int line = 0; line < 200000; ++line) data += "1,2\n";
  const auto faults = std::make_shared<embedded::StreamFaults>();
  faults->beforeRead = [](std::int64_t offset) {
    if (offset > 1000) embedded::RequestAttention();
  };
  faults->mostBytes = 64;
  const embedded::ScopedMemoryFiles files(kPath, data, faults);
  FileSummarySettings settings = Settings(data, 2);
  settings.partBytes = 1000;
  PartSummary summary;
  std::string problem = "not yet";
  const bool done = SummarizeFile(settings, &summary, &problem);
  embedded::ClearAttention();
  // Where all was read before anyone looked, nothing was interrupted.
  EXPECT_TRUE(done || problem.empty()) << problem;
}

TEST_F(FileSummaryTest, ProgressGrowsToTheWhole) {
  std::string data;
  for (int line = 0; line < 300000; ++line) data += "1,2\n";
  const embedded::ScopedMemoryFiles files(kPath, data);
  FileSummarySettings settings = Settings(data, 2);
  settings.partBytes = 10000;
  std::int64_t last = 0;
  settings.progress = [&](std::int64_t bytes) {
    EXPECT_GE(bytes, last);
    EXPECT_LE(bytes, settings.end);
    last = bytes;
  };
  PartSummary summary;
  std::string problem;
  EXPECT_TRUE(SummarizeFile(settings, &summary, &problem));
  EXPECT_EQ(summary.records, 300000);
}

}  // namespace
}  // namespace library
