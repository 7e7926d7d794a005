// Records of UTF-16 files: units, line ends in both byte orders, odd bytes, units in two blocks.
#include <random>

#include <gtest/gtest.h>

#include "reading/RecordReader.h"
#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using testing_support::kPath;
using testing_support::Strings;
using namespace std::string_literals;

constexpr std::size_t kBlockSizes[] = {1, 2, 3, 7, 64, 0};

const std::string kLittleMark = "\xFF\xFE"s;
const std::string kBigMark = "\xFE\xFF"s;

std::string Little(std::string_view ascii) {
  std::string units;
  for (const char ch : ascii) units.append({ch, '\0'});
  return units;
}
std::string Big(std::string_view ascii) {
  std::string units;
  for (const char ch : ascii) units.append({'\0', ch});
  return units;
}

// The records of `file`, and the position of each.
Strings Read(const std::string& file, bool keepEmpty, std::size_t blockSize,
             std::vector<std::int64_t>* positions = nullptr) {
  const embedded::ScopedBlockSize blocks(blockSize);
  const embedded::ScopedMemoryFiles files(kPath, file);
  QANT_FileStream stream;
  EXPECT_TRUE(stream.Open(kPath, "", "rb"));
  RecordReader reader(stream);
  reader.HandleByteOrderMark();
  EXPECT_TRUE(reader.isUtf16());
  Strings records;
  while (reader.Read(keepEmpty)) {
    records.emplace_back(reader.record());
    if (positions) positions->push_back(reader.recordPosition());
  }
  EXPECT_FALSE(reader.failed());
  return records;
}

void ExpectRecords(const std::string& file, bool keepEmpty, const Strings& expected) {
  for (const std::size_t blockSize : kBlockSizes) {
    EXPECT_EQ(Read(file, keepEmpty, blockSize), expected) << "block size " << blockSize;
  }
}

TEST(RecordReader16, LinesEndInEitherByteOrder) {
  ExpectRecords(kLittleMark + Little("ab\r\ncd\r\n"), true, {Little("ab"), Little("cd")});
  ExpectRecords(kBigMark + Big("ab\r\ncd\r\n"), true, {Big("ab"), Big("cd")});
  ExpectRecords(kLittleMark + Little("a\nb\rc"), true, {Little("a"), Little("b"), Little("c")});
  ExpectRecords(kBigMark + Big("a\nb\rc"), true, {Big("a"), Big("b"), Big("c")});
}

TEST(RecordReader16, AUnitThatIsALineEndInTheOtherOrderEndsALineToo) {
  // U+0A00 and U+0D00 of the file's own order.
  ExpectRecords(kLittleMark + "a\0\x00\x0A"s + Little("b"), true, {Little("a"), Little("b")});
  ExpectRecords(kLittleMark + "a\0\x00\x0D"s + Little("b"), true, {Little("a"), Little("b")});
  ExpectRecords(kBigMark + "\0a\x0A\x00"s + Big("b"), true, {Big("a"), Big("b")});
}

TEST(RecordReader16, OnlyALineFeedOfTheFilesOrderBelongsToACarriageReturn) {
  // CR, then U+0A00: two line ends.
  ExpectRecords(kLittleMark + Little("a\r") + "\x00\x0A"s + Little("b"), true,
                {Little("a"), "", Little("b")});
  // A CR of the other order and a LF of the file's: one.
  ExpectRecords(kLittleMark + Little("a") + "\x00\x0D"s + Little("\nb"), true,
                {Little("a"), Little("b")});
  ExpectRecords(kBigMark + Big("a\r") + "\x0A\x00"s + Big("b"), true, {Big("a"), "", Big("b")});
}

TEST(RecordReader16, ABytePairAcrossUnitsIsNoLineEnd) {
  // 01 0A 00 01: the bytes of a line feed lie in two units.
  ExpectRecords(kLittleMark + "\x01\x0A\x00\x01"s, true, {"\x01\x0A\x00\x01"s});
}

TEST(RecordReader16, EmptyLinesVanishUnlessKept) {
  ExpectRecords(kLittleMark + Little("a\n\n\r\nb"), false, {Little("a"), Little("b")});
  ExpectRecords(kLittleMark + Little("a\n\n\r\nb"), true, {Little("a"), "", "", Little("b")});
}

TEST(RecordReader16, AMarkAloneIsAnEmptyFile) {
  ExpectRecords(kLittleMark, true, {});
  ExpectRecords(kBigMark, true, {});
}

TEST(RecordReader16, AnOddLastByteIsAUnitOfThatByteAndFF) {
  ExpectRecords(kLittleMark + Little("a") + "b", true, {Little("a") + "b\xFF"});
  ExpectRecords(kLittleMark + Little("a\n") + "\x0A", true, {Little("a"), "\x0A\xFF"});
  // FF and the missing byte are the end of the file.
  ExpectRecords(kLittleMark + Little("a") + "\xFF", true, {Little("a")});
}

TEST(RecordReader16, OnlyBytesThatWereReadAreGivenBackBehindACarriageReturn) {
  ExpectRecords(kLittleMark + Little("a\r"), true, {Little("a")});
  ExpectRecords(kLittleMark + Little("a\r") + "b", true, {Little("a"), "b\xFF"});
  ExpectRecords(kBigMark + Big("a\r"), true, {Big("a")});
  ExpectRecords(kBigMark + Big("a\r") + "b", true, {Big("a"), "b\xFF"});
}

TEST(RecordReader16, AUnitFFFFHasTheEffectOfTheEndOfTheFile) {
  // It ends the record; an empty one then means that there is no more.
  ExpectRecords(kLittleMark + Little("a") + "\xFF\xFF" + Little("b"), true,
                {Little("a"), Little("b")});
  ExpectRecords(kLittleMark + Little("a\n") + "\xFF\xFF" + Little("b"), true, {Little("a")});
}

TEST(RecordReader16, TheTextOfALineEndsAtAZeroUnit) {
  ExpectRecords(kLittleMark + Little("ab") + "\0\0"s + Little("c\nd"), false,
                {Little("ab"), Little("d")});
  // A line without text is an empty line.
  ExpectRecords(kLittleMark + "\0\0"s + Little("c\nd"), false, {Little("d")});
  ExpectRecords(kLittleMark + "\0\0"s + Little("c\nd"), true, {"", Little("d")});
}

TEST(RecordReader16, TellsWhereEachRecordBegan) {
  for (const std::size_t blockSize : kBlockSizes) {
    std::vector<std::int64_t> positions;
    Read(kLittleMark + Little("ab\r\n\ncd"), false, blockSize, &positions);
    EXPECT_EQ(positions, (std::vector<std::int64_t>{2, 12}));
  }
}

// Unit by unit, as plainly as the rules are.
Strings NaiveRecords(const std::string& units, unsigned lineFeed, bool keepEmpty) {
  std::size_t at = 0;
  const auto next = [&](std::size_t* read) {
    unsigned value = 0xFFFF;
    *read = std::min<std::size_t>(2, units.size() - at);
    for (std::size_t k = 0; k < *read; ++k) {
      const unsigned byte = static_cast<unsigned char>(units[at++]);
      value = k == 0 ? (value & 0xFF00) | byte : (value & 0x00FF) | byte << 8;
    }
    return value;
  };
  Strings records;
  for (;;) {
    std::string record;
    bool cut = false;
    bool ended = false;
    for (;;) {
      std::size_t read = 0;
      const unsigned value = next(&read);
      if (value == 0xFFFF) {
        ended = true;
        break;
      }
      if (value == 0x000A || value == 0x0A00) break;
      if (value == 0x000D || value == 0x0D00) {
        if (next(&read) != lineFeed) at -= read;
        break;
      }
      cut = cut || value == 0;
      if (!cut) {
        record.push_back(static_cast<char>(value & 0xFF));
        record.push_back(static_cast<char>(value >> 8));
      }
    }
    if (!record.empty() || (keepEmpty && !ended)) {
      records.push_back(record);
    } else if (ended) {
      return records;
    }
  }
}

TEST(RecordReader16, RandomFilesGiveTheSameRecordsInBlocksOfAnySize) {
  std::mt19937 random(11);
  constexpr std::string_view kBytes("\n\r\0\0\0\xFF\0ab\0\x0A\x0D\xFF", 13);
  for (int round = 0; round < 400; ++round) {
    std::string units(random() % 200, ' ');
    for (char& byte : units) byte = kBytes[random() % kBytes.size()];
    for (const bool keepEmpty : {false, true}) {
      const Strings little = NaiveRecords(units, 0x000A, keepEmpty);
      const Strings big = NaiveRecords(units, 0x0A00, keepEmpty);
      for (const std::size_t blockSize : kBlockSizes) {
        ASSERT_EQ(Read(kLittleMark + units, keepEmpty, blockSize), little) << blockSize;
        ASSERT_EQ(Read(kBigMark + units, keepEmpty, blockSize), big) << blockSize;
      }
    }
  }
}

}  // namespace
}  // namespace textwizard
