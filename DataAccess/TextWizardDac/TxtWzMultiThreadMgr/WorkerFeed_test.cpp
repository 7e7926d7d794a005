// Cases that are not lines are converted by the workers as one thread converts them, whatever the
// iterator is asked for: cases byte by byte, warnings, flags, counts, and where it goes on by
// itself when it leaps.
#include "TxtWzMultiThreadMgr/WorkerFeed.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "TxtWzMultiThreadMgr/testing/EngineTest.h"
#include "reading/QANT_TextWizardIterator.h"

namespace textwizard {
namespace {

using namespace engine_test;

// A source that counts the feeds that it makes.
class CountingSource : public QANT_TextWizardSrc {
 public:
  using QANT_TextWizardSrc::QANT_TextWizardSrc;
  std::unique_ptr<CaseFeed> MakeCaseFeed(QANT_InputCaseIterator& iterator) const override {
    std::unique_ptr<CaseFeed> feed = QANT_TextWizardSrc::MakeCaseFeed(iterator);
    feeds += feed ? 1 : 0;
    return feed;
  }
  mutable int feeds = 0;
};

struct Import {
  std::string bytes;
  std::vector<Column> columns;
  ImportSettings settings;
};

std::unique_ptr<CountingSource> SourceOf(const DataFile& file, const Import& import, int workers) {
  return MakeSource<CountingSource>(file.path(), workers, import.columns, import.settings);
}

Pass ReadOnOneThread(const DataFile& file, const Import& import) {
  const auto source = SourceOf(file, import, 2);
  CaseBuffer buffer(*source);
  QANT_TextWizardIterator iterator(*source, buffer.obs());
  Pass pass = ReadAll(*source, iterator, buffer);
  EXPECT_EQ(source->feeds, 0);
  return pass;
}

// `fed`: the workers make the cases.
void ExpectSame(const Import& import, bool fed = true) {
  const DataFile file(import.bytes);
  const Pass expected = ReadOnOneThread(file, import);
  for (const int workers : {2, 3, 8}) {
    SCOPED_TRACE(std::to_string(workers) + " workers");
    const auto source = SourceOf(file, import, workers);
    const Pass pass = ReadAll(*source);
    EXPECT_EQ(source->feeds, fed ? 1 : 0);
    ASSERT_EQ(pass.cases.size(), expected.cases.size());
    for (std::size_t i = 0; i < pass.cases.size(); ++i) {
      ASSERT_EQ(pass.cases[i], expected.cases[i]) << "case " << i + 1;
    }
    EXPECT_EQ(pass.warnings, expected.warnings);
    EXPECT_EQ(pass.errors, expected.errors);
    EXPECT_EQ(pass.flags, expected.flags);
    EXPECT_EQ(pass.rowCount, expected.rowCount);
  }
}

// What an iterator is asked for: to go to a case, unless it is kOn, and to deliver some.
constexpr long long kOn = -1000;
struct Step {
  long long seek;
  int cases;
};

std::vector<std::string> Walk(QANT_InputCaseIterator& iterator, const CaseBuffer& buffer,
                              const std::vector<Step>& steps) {
  MessageKeeper monitor;
  iterator.SetErrorMonitor(&monitor);
  std::vector<std::string> seen;
  for (const Step& step : steps) {
    if (step.seek != kOn) iterator.Seek(step.seek);
    for (int i = 0; i < step.cases; ++i) {
      const bool found = iterator.Next();
      seen.push_back(std::to_string(iterator.Tell()) + (found ? ":" + buffer.Bytes() : " end"));
    }
  }
  for (const std::string& warning : monitor.Texts(kMessageWarning)) seen.push_back(warning);
  for (const std::string& error : monitor.Texts(kMessageError)) seen.push_back(error);
  iterator.SetErrorMonitor(nullptr);
  return seen;
}

void ExpectSameWalk(const Import& import, const std::vector<Step>& steps, bool fed = true) {
  const DataFile file(import.bytes);
  const auto alone = SourceOf(file, import, 2);
  CaseBuffer aloneBuffer(*alone);
  QANT_TextWizardIterator iterator(*alone, aloneBuffer.obs());
  const std::vector<std::string> expected = Walk(iterator, aloneBuffer, steps);
  const auto source = SourceOf(file, import, 3);
  CaseBuffer buffer(*source);
  const std::unique_ptr<QANT_InputCaseIterator> chosen(source->MakeIterator(buffer.obs()));
  ASSERT_NE(dynamic_cast<QANT_TextWizardIterator*>(chosen.get()), nullptr);
  const std::vector<std::string> seen = Walk(*chosen, buffer, steps);
  ASSERT_EQ(seen.size(), expected.size());
  for (std::size_t i = 0; i < seen.size(); ++i) ASSERT_EQ(seen[i], expected[i]) << i;
  EXPECT_EQ(source->feeds, fed ? 1 : 0);
}

ImportSettings FixedSettings(std::uint32_t recordsPerCase) {
  ImportSettings settings;
  settings.arrangement = kFixedColumns;
  settings.recordsPerCase = recordsPerCase;
  settings.encoding = kEncodingUtf8;
  return settings;
}

// Records for fixed columns: numbers, text and dates with line ends of every kind, empty and short
// ones, some bytes that are no character, some NULs.
std::string FixedBytes(std::mt19937& random, std::size_t size, bool odd) {
  static const char* const kEnds[] = {"\n", "\n", "\n", "\n", "\r\n", "\r", "\n\n", "\r\r", "\n\r"};
  static const char* const kPieces[] = {"12345678", "  1.5   ", "abcdefgh", "        ",
                                        "31.12.99", "x",        "-7",       "\xC3\xA4pfel  "};
  std::string bytes;
  while (bytes.size() < size) {
    for (std::size_t pieces = random() % 6; pieces > 0; --pieces) bytes += kPieces[random() % 8];
    if (odd && random() % 20 == 0) bytes += random() % 2 == 0 ? std::string(1, '\0') : "\xFF";
    bytes += kEnds[random() % 9];
    if (odd && random() % 40 == 0) bytes += std::string(1, '\0') + "\n";
  }
  if (random() % 2 == 0) bytes += "12345678";
  return bytes;
}

Import RandomFixed(std::mt19937& random, std::size_t size) {
  static const std::uint32_t kFormats[] = {kFormatSkip, kFormatA,     kFormatA,  kFormatF,
                                           kFormatF,    kFormatEDate, kFormatDot};
  Import import;
  import.settings = FixedSettings(1 + static_cast<std::uint32_t>(random() % 4));
  const std::size_t columns = random() % 8;
  for (std::size_t i = 0; i < columns; ++i) {
    Column column;
    column.format = kFormats[random() % 7];
    column.width = 1 + static_cast<std::uint32_t>(random() % 12);
    if (column.format == kFormatA && random() % 3 == 0) column.formatWidth = column.width + 4;
    column.start = static_cast<std::uint32_t>(random() % 30);
    // The last one is on a line that no case has.
    column.line = 1 + static_cast<std::uint32_t>(random() % import.settings.recordsPerCase);
    if (random() % 20 == 0) column.line = import.settings.recordsPerCase + 1;
    import.columns.push_back(column);
  }
  import.settings.firstCase = 1 + static_cast<std::int64_t>(random() % 3);
  import.settings.encoding = random() % 3 == 0 ? kEncodingLocale : kEncodingUtf8;
  if (random() % 6 == 0) {
    import.settings.importMode = kImportFirst;
    import.settings.caseLimit = 1 + static_cast<std::int64_t>(random() % 5000);
  }
  import.bytes = FixedBytes(random, size, random() % 2 == 0);
  return import;
}

// An import of a file of about so many bytes.
using MakeImport = Import (*)(std::mt19937& random, std::size_t size);

void ExpectSameOfRandomFiles(MakeImport make, int rounds) {
  std::mt19937 random(4711);
  for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    ExpectSame(make(random, random() % 10 == 0 ? 700000 : random() % 3000));
  }
}

void ExpectSameInAnyBlockSize(MakeImport make, unsigned seed) {
  std::mt19937 random(seed);
  for (const std::size_t block : {1u, 2u, 3u, 7u, 64u, 4096u}) {
    SCOPED_TRACE("blocks of " + std::to_string(block));
    const embedded::ScopedBlockSize size(block);
    for (int round = 0; round < 6; ++round) ExpectSame(make(random, 20000));
  }
}

TEST(WorkerFeed, RandomFilesOfFixedColumns) { ExpectSameOfRandomFiles(RandomFixed, 60); }

TEST(WorkerFeed, FixedColumnsInAnyBlockSize) { ExpectSameInAnyBlockSize(RandomFixed, 99); }

// Batches never end within a case, though a case is longer than a batch.
TEST(WorkerFeed, CasesOfManyAndOfLongLines) {
  for (const std::uint32_t lines : {1u, 3u, 999u, 1000u}) {
    Import import;
    import.settings = FixedSettings(lines);
    import.columns = {{kFormatF, 8, 0, 0, 1}, { kFormatA, 4, 0, 2, lines }};
    for (int i = 0; i < 3500; ++i) {
      import.bytes += std::to_string(10000000 + i);
      import.bytes += std::string(static_cast<std::size_t>(i % 500), '.') + "\n";
    }
    for (int i = 0; i < 10; ++i) import.bytes += "9" + std::string(200000, 'x') + "\n";
    ExpectSame(import);
  }
}

TEST(WorkerFeed, MoreLinesThanABatchMayHoldAreReadOnOneThread) {
  Import import;
  import.settings = FixedSettings(1001);
  import.columns = {{ kFormatF, 8, 0, 0, 1 }};
  import.bytes = NumberedLines(1, 2500);
  ExpectSame(import, false);
}

TEST(WorkerFeed, LeapsOverFixedColumns) {
  std::mt19937 random(31);
  for (int round = 0; round < 120 && !testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const Import import = RandomFixed(random, random() % 8 == 0 ? 300000 : 2000);
    std::vector<Step> steps = {{kOn, static_cast<int>(1 + random() % 50)}};
    for (std::size_t count = random() % 5; count > 0; --count) {
      const auto to = static_cast<long long>(random() % 120) - 3;
      steps.push_back({random() % 4 == 0 ? kOn : to, static_cast<int>(random() % 40)});
    }
    ExpectSameWalk(import, steps);
  }
}

TEST(WorkerFeed, WhoBeginsElsewhereReadsOnOneThread) {
  std::mt19937 random(5);
  ExpectSameWalk(RandomFixed(random, 5000), {{3, 5}, {0, 4}, {kOn, 500}}, false);
}

TEST(WorkerFeed, AfterTheEndIsNothingUntilALeap) {
  std::mt19937 random(6);
  ExpectSameWalk(RandomFixed(random, 3000), {{kOn, 3000}, {kOn, 2}, {1, 5}, {kOn, 3000}, {0, 9}});
}

TEST(WorkerFeed, ReadErrorsInFixedColumns) {
  Import import;
  import.settings = FixedSettings(2);
  import.columns = {{kFormatF, 8, 0, 0, 1}, { kFormatA, 6, 0, 0, 2 }};
  for (int i = 1; i <= 40000; ++i) import.bytes += std::to_string(i) + "\ntext\n";
  auto faults = std::make_shared<embedded::StreamFaults>();
  const DataFile file(import.bytes, faults);
  for (const std::int64_t offset : {0, 1, 2, 5, 6, 7, 124990, 300000}) {
    SCOPED_TRACE("fails at " + std::to_string(offset));
    faults->failAt = offset;
    const Pass expected = ReadOnOneThread(file, import);
    EXPECT_EQ(expected.errors.size(), 1u);
    for (const int workers : {2, 8}) {
      const auto source = SourceOf(file, import, workers);
      EXPECT_TRUE(ReadAll(*source) == expected);
    }
  }
}

std::string Utf16(std::u16string_view text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

// The unit FFFF ends the data, but not for the case that follows one of several lines.
TEST(WorkerFeed, Utf16IsReadAheadWhereALineIsACase) {
  for (const std::uint32_t lines : {1u, 2u}) {
    Import import;
    import.settings = FixedSettings(lines);
    import.columns = {{kFormatA, 6, 0, 0, 1}, { kFormatF, 2, 0, 1, lines }};
    import.bytes = Utf16(u"123\n4567\n\r\n\u00E4\u20AC\n89\n\uFFFF12\n34\n56\n");
    ExpectSame(import, lines == 1);
    ExpectSameWalk(import, {{kOn, 2}, {1, 2}, {0, 9}}, lines == 1);
  }
}

TEST(WorkerFeed, FixedColumnsInAHostWithACodePage) {
  std::mt19937 random(77);
  for (const char* const page : {"windows-1252", "Shift_JIS"}) {
    const embedded::InCodePage host(page);
    for (int round = 0; round < 6; ++round) ExpectSame(RandomFixed(random, 20000));
  }
}

ImportSettings CountedSettings() {
  ImportSettings settings = CommaSettings();
  settings.arrangement = kDelimitedCount;
  return settings;
}

// Values that run across lines: qualified ones, empty ones, blanks, bytes that are no character,
// NULs, line ends of every kind, some lines with many values.
std::string CountedBytes(std::mt19937& random, std::size_t size, bool odd) {
  static const char* const kPieces[] = {"1",
                                        "23.5",
                                        "abc",
                                        "\"q\"",
                                        "\"a,b\"",
                                        "\"",
                                        "a\"b",
                                        ",",
                                        ",",
                                        ",",
                                        ",",
                                        ",",
                                        ",",
                                        ";",
                                        " ",
                                        "  ",
                                        "\t",
                                        "\n",
                                        "\n",
                                        "\r\n",
                                        "\r",
                                        "\n\n",
                                        ",,",
                                        ",\n",
                                        "NA",
                                        "12:30:45",
                                        "31/12/1999",
                                        "\xC3\xA9",
                                        "long text that fills"};
  std::string bytes;
  while (bytes.size() < size) {
    if (odd && random() % 60 == 0) bytes += random() % 2 == 0 ? std::string(1, '\0') : "\xE2\x82";
    bytes += kPieces[random() % std::size(kPieces)];
    if (random() % 300 == 0) {
      for (int i = 0; i < 200; ++i) bytes += "7,";
    }
  }
  return bytes;
}

Import RandomCounted(std::mt19937& random, std::size_t size) {
  static const std::uint32_t kFormats[] = {kFormatSkip, kFormatA,    kFormatA,   kFormatF,
                                           kFormatF,    kFormatDate, kFormatTime};
  static const char* const kDelimiters[] = {",", ",;", " ", ", ", ",;\t"};
  Import import;
  for (std::size_t columns = 1 + random() % 9; columns > 0; --columns) {
    Column column;
    column.format = kFormats[random() % 7];
    column.width = column.format == kFormatA ? 1 + static_cast<std::uint32_t>(random() % 12) : 8;
    // A batch has room for a few of such cases.
    if (column.format == kFormatA && random() % 12 == 0) column.width = 30000;
    import.columns.push_back(column);
  }
  ImportSettings& settings = import.settings;
  settings = CountedSettings();
  settings.delimiters = kDelimiters[random() % 5];
  settings.qualifierSet = random() % 3 != 0;
  settings.qualifier = settings.qualifierSet ? "\"" : "";
  settings.leadingSpaces = random() % 3 == 0;
  settings.multipleSpaces = random() % 3 == 0;
  settings.encoding = random() % 3 == 0 ? kEncodingLocale : kEncodingUtf8;
  settings.firstCase = static_cast<std::int64_t>(random() % 4);
  if (random() % 6 == 0) {
    settings.importMode = kImportFirst;
    settings.caseLimit = 1 + static_cast<std::int64_t>(random() % 2000);
  }
  import.bytes = CountedBytes(random, size, random() % 2 == 0);
  return import;
}

// Behind the first batches of a pass come larger ones.
TEST(WorkerFeed, FilesOfManyBatches) {
  std::mt19937 random(23);
  ExpectSame(RandomFixed(random, 1300000));
  ExpectSame(RandomCounted(random, 1300000));
}

TEST(WorkerFeed, RandomFilesOfValuesAcrossLines) { ExpectSameOfRandomFiles(RandomCounted, 80); }

TEST(WorkerFeed, ValuesAcrossLinesInAnyBlockSize) { ExpectSameInAnyBlockSize(RandomCounted, 98); }

TEST(WorkerFeed, ValuesAcrossLinesInAHostWithACodePage) {
  std::mt19937 random(76);
  for (const char* const page : {"windows-1252", "Shift_JIS"}) {
    const embedded::InCodePage host(page);
    for (int round = 0; round < 8; ++round) ExpectSame(RandomCounted(random, 20000));
  }
}

TEST(WorkerFeed, LeapsOverValuesAcrossLines) {
  std::mt19937 random(32);
  for (int round = 0; round < 120 && !testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const Import import = RandomCounted(random, random() % 8 == 0 ? 300000 : 2000);
    std::vector<Step> steps = {{kOn, static_cast<int>(1 + random() % 50)}};
    for (std::size_t count = random() % 5; count > 0; --count) {
      const auto to = static_cast<long long>(random() % 120);
      steps.push_back({random() % 4 == 0 ? kOn : to, static_cast<int>(random() % 40)});
    }
    ExpectSameWalk(import, steps);
  }
}

// Lines of all lengths around those that go through the ring in parts; a case may need many lines,
// and a line may have very many cases.
TEST(WorkerFeed, ValuesInLongLines) {
  for (const std::size_t columns : {1u, 3u, 700u}) {
    Import import;
    import.settings = CountedSettings();
    import.columns = Numbers(columns);
    import.columns[0] = {kFormatA, 5};
    int number = 0;
    for (const std::size_t length : {10u, 3000000u, 0u, 130000u, 1u, 1048570u, 400000u, 5u}) {
      std::string line;
      while (line.size() < length) {
        line += std::to_string(++number % 1000);
        line += number % 5000 == 0 ? "\xFF," : ",";
      }
      import.bytes += line + "8\n";
      for (int i = 0; i < 400; ++i) import.bytes += "\xC3\xA4" + std::to_string(i) + "\n";
    }
    ExpectSame(import);
    ExpectSameWalk(import, {{kOn, 300}, {20, 5}, {100, 20}});
  }
}

TEST(WorkerFeed, ReadErrorsInValuesAcrossLines) {
  Import import;
  import.settings = CountedSettings();
  import.columns = {{kFormatF, 8}, {kFormatA, 6}, { kFormatF, 8 }};
  for (int i = 1; i <= 40000; ++i) import.bytes += std::to_string(i) + ",text\n";
  auto faults = std::make_shared<embedded::StreamFaults>();
  const DataFile file(import.bytes, faults);
  for (const std::int64_t offset : {0, 1, 2, 5, 6, 7, 124990, 300000}) {
    SCOPED_TRACE("fails at " + std::to_string(offset));
    faults->failAt = offset;
    const Pass expected = ReadOnOneThread(file, import);
    EXPECT_EQ(expected.errors.size(), 1u);
    for (const int workers : {2, 8}) {
      const auto source = SourceOf(file, import, workers);
      EXPECT_TRUE(ReadAll(*source) == expected);
    }
  }
}

TEST(WorkerFeed, ValuesAcrossLinesOfUtf16AreReadOnOneThread) {
  Import import;
  import.settings = CountedSettings();
  import.columns = Numbers(2);
  import.bytes = Utf16(u"1,2,3\n4\n\uFFFF5,6\n7,\n");
  ExpectSame(import, false);
}

}  // namespace
}  // namespace textwizard
