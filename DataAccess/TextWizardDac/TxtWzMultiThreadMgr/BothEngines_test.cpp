// The multi-threaded engine delivers what the single-thread iterator delivers: cases byte by byte,
// warnings, flags and counts, for any number of workers.
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "TxtWzMultiThreadMgr/testing/EngineTest.h"
#include "model/MessageText.h"
#include "reading/QANT_TextWizardIterator.h"

namespace textwizard {
namespace {

using namespace engine_test;

struct Import {
  std::string bytes;
  std::vector<Column> columns;
  ImportSettings settings;
};

Pass ReadOnOneThread(const DataFile& file, const Import& import) {
  const auto source = MakeSource(file.path(), 2, import.columns, import.settings);
  CaseBuffer buffer(*source);
  QANT_TextWizardIterator iterator(*source, buffer.obs());
  return ReadAll(*source, iterator, buffer);
}

void ExpectSame(const Import& import) {
  const DataFile file(import.bytes);
  const Pass expected = ReadOnOneThread(file, import);
  for (const int workers : {2, 3, 8, 64}) {
    SCOPED_TRACE(std::to_string(workers) + " workers");
    const auto source = MakeSource(file.path(), workers, import.columns, import.settings);
    const Pass pass = ReadAll(*source);
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

// Pieces of records that matter to the rules, and pieces that do not.
std::string RandomBytes(std::mt19937& random, std::size_t size, bool undecodable) {
  static const std::vector<std::string> kPieces = {"1",
                                                   "23.5",
                                                   "-4E2",
                                                   "abc",
                                                   "1,5",
                                                   "\"",
                                                   "\"\"",
                                                   ",",
                                                   ",",
                                                   ",",
                                                   ";",
                                                   " ",
                                                   "  ",
                                                   "\t",
                                                   "\n",
                                                   "\n",
                                                   "\r",
                                                   "\r\n",
                                                   "\n\n",
                                                   "x",
                                                   "31/12/1999",
                                                   "01312024",
                                                   "12:30:45",
                                                   "123045",
                                                   "$1.50",
                                                   "50%",
                                                   "JAN",
                                                   "long text that fills a column",
                                                   "\xC3\xA9",
                                                   "\xE2\x82\xAC",
                                                   "\xF0\x9F\x98\x80"};
  static const std::vector<std::string> kBad = {"\xFF", "\xC3", "\xE2\x82", "\x80",
                                                std::string(1, '\0')};
  std::string bytes;
  while (bytes.size() < size) {
    if (undecodable && random() % 40 == 0) {
      bytes += kBad[random() % kBad.size()];
    } else {
      bytes += kPieces[random() % kPieces.size()];
    }
  }
  return bytes;
}

Import RandomImport(std::mt19937& random, std::size_t size) {
  static const std::uint32_t kFormats[] = {kFormatSkip,  kFormatA,      kFormatA,    kFormatA,
                                           kFormatF,     kFormatF,      kFormatE,    kFormatComma,
                                           kFormatDot,   kFormatDollar, kFormatPct,  kFormatDate,
                                           kFormatADate, kFormatSDate,  kFormatTime, kFormatMonth};
  static const char* const kDelimiters[] = {",", ";", " ", ", ", ",;\t", "\t "};
  static const FileEncoding kEncodings[] = {kEncodingNone, kEncodingUtf8, kEncodingLocale};
  Import import;
  const std::size_t columns = 1 + random() % 8;
  for (std::size_t c = 0; c < columns; ++c) {
    Column column;
    column.format = kFormats[random() % (sizeof kFormats / sizeof *kFormats)];
    column.width = column.format == kFormatA ? 1 + static_cast<std::uint32_t>(random() % 20) : 8;
    import.columns.push_back(column);
  }
  ImportSettings& settings = import.settings;
  settings.delimiters = kDelimiters[random() % 6];
  settings.qualifierSet = random() % 4 != 0;
  settings.qualifier = settings.qualifierSet ? "\"" : "";
  settings.leadingSpaces = random() % 2 == 0;
  settings.multipleSpaces = random() % 2 == 0;
  settings.encoding = kEncodings[random() % 3];
  settings.firstCase = 1 + static_cast<std::int64_t>(random() % 3);
  if (random() % 8 == 0) {
    settings.importMode = kImportFirst;
    settings.caseLimit = 1 + static_cast<std::int64_t>(random() % 2000);
  }
  import.bytes = RandomBytes(random, size, random() % 2 == 0);
  return import;
}

// The workers do not mark a string as truncated whose field is enclosed and two bytes too long; the
// iterator does. A generated field must not run into that difference.
bool HasEnclosedString(const Import& import) {
  if (import.settings.qualifierSet) return import.bytes.find("\"\"") != std::string::npos;
  return import.bytes.find('"') != std::string::npos;
}

TEST(BothEngines, RandomFiles) {
  std::mt19937 random(4711);
  int compared = 0;
  for (int round = 0; round < 120; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    Import import = RandomImport(random, random() % 20 == 0 ? 600000 : random() % 30000);
    if (HasEnclosedString(import)) {
      // Wide strings only: then no field is exactly two bytes too long.
      for (Column& column : import.columns) {
        if (column.format == kFormatA) column.width = 5000;
      }
      if (import.bytes.size() > 100000) import.bytes.resize(100000);
    }
    ExpectSame(import);
    ++compared;
    if (HasFailure()) break;
  }
  EXPECT_EQ(compared, 120);
}

// Decoding makes texts longer, and a format that allows for it is wider than the variable's cells:
// the cells decide whether something was lost.
TEST(BothEngines, TextThatDecodingMadeTooLongIsMarked) {
  ASSERT_TRUE(embedded::SetLocaleCodePage("ISO-8859-1"));
  Import import;
  import.columns = {{kFormatA, 11, 33}, {kFormatA, 11, 33}, { kFormatF, 8 }};
  import.settings = CommaSettings();
  import.settings.encoding = kEncodingLocale;
  // "müßiggänger" has 11 characters and bytes, and 14 bytes in the host's UTF-8; "müßiggang" has 9,
  // and 11 there.
  import.bytes = "m\xFC\xDFigg\xE4nger,m\xFC\xDFiggang,1\n";
  ExpectSame(import);
  const DataFile file(import.bytes);
  const Pass pass = ReadOnOneThread(file, import);
  ASSERT_EQ(pass.cases.size(), 1u);
  EXPECT_EQ(pass.cases[0].substr(0, 32),
            "m\xC3\xBC\xC3\x9Figg\xC3\xA4n     m\xC3\xBC\xC3\x9Figgang     ");
  EXPECT_EQ(pass.flags, (std::vector<bool>{false, true, false, false, false, false}));
  embedded::SetLocaleCodePage(nullptr);
}

TEST(BothEngines, LargeFilesWithFlagsAndWarningsInManyBatches) {
  std::mt19937 random(815);
  Import import;
  import.columns = {{kFormatF, 8}, {kFormatA, 6}, {kFormatDate, 11}, {kFormatA, 40}, {
                      kFormatF,
                      8
                    }};
  import.settings = CommaSettings();
  import.settings.encoding = kEncodingNone;
  for (int i = 1; i <= 60000; ++i) {
    import.bytes += std::to_string(i) + ",\"s" + std::to_string(random() % 100000) + "\",";
    import.bytes += random() % 5000 == 0 ? "never" : "31-DEC-1999";
    import.bytes += ",text, with \"quotes\"";
    if (random() % 3000 == 0) import.bytes += "\xFE";
    import.bytes += "," + std::to_string(random() % 1000) + ".25\n";
  }
  ExpectSame(import);
}

// Every one of very many bytes has its warning.
TEST(BothEngines, LongLinesOfBytesThatAreNoCharacter) {
  Import import;
  import.columns = {{kFormatA, 8}, { kFormatA, 8 }};
  import.settings = CommaSettings();
  import.settings.encoding = kEncodingNone;
  import.bytes =
      "a,b\n" + std::string(150000, '\xFF') + ",\"" + std::string(50000, '\x80') + "\"\n";
  for (int i = 0; i < 40000; ++i) import.bytes += "\xE9.";
  import.bytes += "\n";
  ExpectSame(import);
  const DataFile file(import.bytes);
  const Pass pass = ReadOnOneThread(file, import);
  ASSERT_EQ(pass.warnings.size(), 240000u);
  EXPECT_EQ(pass.warnings.front(), UndecodableWarning(2, 0).text);
  EXPECT_EQ(pass.warnings[150000], UndecodableWarning(2, 150002).text);
  EXPECT_EQ(pass.warnings.back(), UndecodableWarning(3, 79998).text);
}

TEST(BothEngines, AnyBlockSize) {
  std::mt19937 random(99);
  for (const std::size_t block : {1u, 2u, 3u, 7u, 64u, 4096u}) {
    SCOPED_TRACE("blocks of " + std::to_string(block));
    const embedded::ScopedBlockSize size(block);
    for (int round = 0; round < 4; ++round) {
      Import import = RandomImport(random, 20000);
      for (Column& column : import.columns) {
        if (column.format == kFormatA) column.width = 3000;
      }
      ExpectSame(import);
    }
  }
}

TEST(BothEngines, ReadErrors) {
  Import import;
  import.columns = {{kFormatF, 8}, { kFormatA, 6 }};
  import.settings = CommaSettings();
  for (int i = 1; i <= 40000; ++i) import.bytes += std::to_string(i) + ",text\n";
  auto faults = std::make_shared<embedded::StreamFaults>();
  const DataFile file(import.bytes, faults);
  for (const std::int64_t offset : {0, 1, 5, 6, 7, 8, 124990, 300000}) {
    SCOPED_TRACE("fails at " + std::to_string(offset));
    faults->failAt = offset;
    const Pass expected = ReadOnOneThread(file, import);
    EXPECT_EQ(expected.errors.size(), 1u);
    for (const int workers : {2, 8}) {
      const auto source = MakeSource(file.path(), workers, import.columns, import.settings);
      EXPECT_TRUE(ReadAll(*source) == expected);
    }
  }
}

TEST(BothEngines, Utf16InBothOrders) {
  // The characters of the pieces are below U+0100 or from the symbols; none is a line end's twin.
  std::mt19937 random(1234);
  for (const bool big : {false, true}) {
    std::string bytes = big ? "\xFE\xFF" : "\xFF\xFE";
    for (int i = 0; i < 200000; ++i) {
      static constexpr char16_t kUnits[] = {'1',    '2',  ',', ',', '"', ' ', 'a', 0xE9,
                                            0x20AC, '\n', '.', 'x', 'y', '7', '8', 'b'};
      const char16_t unit = kUnits[random() % 16];
      const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
      bytes += big ? high : low;
      bytes += big ? low : high;
    }
    Import import;
    import.bytes = bytes;
    import.columns = {{kFormatF, 8}, {kFormatA, 3000}, { kFormatF, 8 }};
    import.settings = CommaSettings();
    for (const FileEncoding encoding : {kEncodingNone, kEncodingLocale, kEncodingUtf8}) {
      import.settings.encoding = encoding;
      ExpectSame(import);
    }
  }
}

TEST(BothEngines, HostInACodePage) {
  std::mt19937 random(77);
  for (const char* const page : {"windows-1252", "Shift_JIS"}) {
    const embedded::InCodePage host(page);
    for (const FileEncoding encoding : {kEncodingNone, kEncodingLocale, kEncodingUtf8}) {
      for (int round = 0; round < 6; ++round) {
        SCOPED_TRACE(std::string(page) + ", encoding " + std::to_string(encoding));
        Import import = RandomImport(random, 40000);
        import.settings.encoding = encoding;
        for (Column& column : import.columns) {
          if (column.format == kFormatA) column.width = 3000;
        }
        ExpectSame(import);
      }
    }
  }
}

}  // namespace
}  // namespace textwizard
