// Records of 8-bit files: line ends, NULs, empty lines, marks, positions, failures.
#include "reading/RecordReader.h"

#include <random>

#include <gtest/gtest.h>

#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using testing_support::kPath;
using testing_support::Strings;

// Opens a file in memory, read in blocks of `blockSize` bytes (0: the host's).
class OpenFile {
 public:
  explicit OpenFile(std::string bytes, std::size_t blockSize = 0,
                    std::shared_ptr<embedded::StreamFaults> faults = nullptr)
      : blocks_(blockSize), files_(kPath, std::move(bytes), std::move(faults)) {
    EXPECT_TRUE(stream_.Open(kPath, "", "rb"));
  }
  const QANT_FileStream& stream() const { return stream_; }

 private:
  embedded::ScopedBlockSize blocks_;
  embedded::ScopedMemoryFiles files_;
  QANT_FileStream stream_;
};

Strings AllRecords(RecordReader& reader, bool keepEmpty) {
  Strings records;
  while (reader.Read(keepEmpty)) records.emplace_back(reader.record());
  return records;
}

constexpr std::size_t kBlockSizes[] = {1, 2, 3, 7, 64, 0};

void ExpectRecords(const std::string& file, bool keepEmpty, const Strings& expected) {
  for (const std::size_t blockSize : kBlockSizes) {
    const OpenFile open(file, blockSize);
    RecordReader reader(open.stream());
    reader.HandleByteOrderMark();
    EXPECT_EQ(AllRecords(reader, keepEmpty), expected) << "block size " << blockSize;
    EXPECT_FALSE(reader.Read(keepEmpty));
    EXPECT_EQ(reader.record(), "");
    EXPECT_FALSE(reader.failed());
  }
}

TEST(RecordReader, EveryLineEndEndsALine) {
  ExpectRecords("a\r\nb\rc\n", false, {"a", "b", "c"});
  ExpectRecords("a\n\rb\n", true, {"a", "", "b"});
  ExpectRecords("a\r\r\nb", true, {"a", "", "b"});
}

TEST(RecordReader, EmptyLinesVanishUnlessKept) {
  ExpectRecords("a\n\n\nb", false, {"a", "b"});
  ExpectRecords("a\n\n\nb", true, {"a", "", "", "b"});
  ExpectRecords("\n\r\n\ra\n\n", false, {"a"});
}

TEST(RecordReader, ALastLineNeedsNoLineEnd) {
  ExpectRecords("a\nlast", false, {"a", "last"});
  ExpectRecords("a\nlast\n", true, {"a", "last"});
}

TEST(RecordReader, ACarriageReturnAtTheVeryEndEndsALine) {
  ExpectRecords("a\r", true, {"a"});
  ExpectRecords("a\n\r", true, {"a", ""});
}

TEST(RecordReader, NothingIsReadFromAnEmptyFileOrFromAMarkAlone) {
  ExpectRecords("", true, {});
  ExpectRecords("", false, {});
  ExpectRecords("\xEF\xBB\xBF", true, {});
}

TEST(RecordReader, NulBytesNeverReachARecord) {
  ExpectRecords(std::string("a\0b\0\0\nc\0", 9), false, {"ab", "c"});
  ExpectRecords(std::string("\0\0\0\nx", 5), false, {"x"});
  ExpectRecords(std::string("\0\0\0\nx", 5), true, {"", "x"});
  ExpectRecords(std::string(100, '\0'), true, {});
}

TEST(RecordReader, ACarriageReturnANulAndALineFeedAreTwoLineEnds) {
  ExpectRecords(std::string("a\r\0\nb", 5), true, {"a", "", "b"});
}

TEST(RecordReader, AnUtf8MarkIsSteppedOver) {
  ExpectRecords(
      "\xEF\xBB\xBF"
      "a\nb",
      false, {"a", "b"});
}

TEST(RecordReader, APartOfAMarkIsData) {
  ExpectRecords(
      "\xEF\xBB"
      "A\nb",
      false,
      {"\xEF\xBB"
       "A",
       "b"});
  ExpectRecords("\xEF", false, {"\xEF"});
  ExpectRecords("\xEF\xBB", false, {"\xEF\xBB"});
  ExpectRecords("\xFEz", false, {"\xFEz"});
  ExpectRecords("\xFF\xFF", false, {"\xFF\xFF"});
}

TEST(RecordReader, AMarkBehindAPartOfAnotherIsData) {
  for (const char* const text : {"\xEF\xFF\xFEz", "\xEF\xFE\xFFz", "\xEF\xBB\xFF\xFEz",
                                 "\xFE\xFE\xFFz", "\xFE\xEF\xBB\xBFz", "\xFF\xFF\xFEz"}) {
    ExpectRecords(text, false, {text});
  }
}

TEST(RecordReader, AMarkStaysKnownWhenTheStartIsLookedAtAgain) {
  const OpenFile open("\xEF\xBB\xBFx");
  RecordReader reader(open.stream());
  reader.HandleByteOrderMark();
  EXPECT_TRUE(reader.hasMark());
  EXPECT_EQ(reader.mark(), ByteOrderMark::kUtf8);
  // From behind the mark there is none, and reading starts over at offset 0.
  reader.HandleByteOrderMark();
  EXPECT_FALSE(reader.hasMark());
  EXPECT_EQ(reader.mark(), ByteOrderMark::kUtf8);
  ASSERT_TRUE(reader.Read(false));
  EXPECT_EQ(reader.record(), "\xEF\xBB\xBFx");
}

TEST(RecordReader, TellsWhereEachRecordBegan) {
  for (const std::size_t blockSize : kBlockSizes) {
    const OpenFile open("ab\r\n\n\ncd\re", blockSize);
    RecordReader reader(open.stream());
    std::vector<std::int64_t> positions;
    while (reader.Read(false)) positions.push_back(reader.recordPosition());
    EXPECT_EQ(positions, (std::vector<std::int64_t>{0, 6, 9}));
    ASSERT_TRUE(reader.SeekTo(6));
    ASSERT_TRUE(reader.Read(false));
    EXPECT_EQ(reader.record(), "cd");
    ASSERT_TRUE(reader.SeekBegin());
    ASSERT_TRUE(reader.Read(false));
    EXPECT_EQ(reader.record(), "ab");
  }
}

TEST(RecordReader, SkipsLinesUpToTheFirstCaseAndCountsEmptyOnes) {
  const auto firstAfter = [](std::int64_t count, std::int64_t firstCase) {
    const OpenFile open("1\n\n3\n4\n");
    RecordReader reader(open.stream());
    reader.SkipLines(count, firstCase);
    return reader.Read(true) ? std::string(reader.record()) : "end";
  };
  EXPECT_EQ(firstAfter(1, 1), "1");
  EXPECT_EQ(firstAfter(1, 2), "");
  EXPECT_EQ(firstAfter(1, 3), "3");
  EXPECT_EQ(firstAfter(0, 1), "");
  EXPECT_EQ(firstAfter(1, 5), "end");
  EXPECT_EQ(firstAfter(1, 1000000000000), "end");
}

TEST(RecordReader, StopsAsIfTheDataEndedWhenAskedTo) {
  for (const std::size_t blockSize : kBlockSizes) {
    const OpenFile open("a\nb\nc", blockSize);
    RecordReader reader(open.stream());
    std::atomic<std::int32_t> stop{0};
    reader.SetStop(&stop);
    ASSERT_TRUE(reader.Read(false));
    stop = 1;
    EXPECT_FALSE(reader.Read(false));
    EXPECT_EQ(reader.record(), "");
    EXPECT_FALSE(reader.failed());
  }
}

// Whether a long line is read or empty lines are skipped.
TEST(RecordReader, StopsAtTheNextBlock) {
  for (const char everywhere : {'x', '\n'}) {
    const auto faults = std::make_shared<embedded::StreamFaults>();
    std::atomic<std::int32_t> stop{0};
    std::int64_t farthest = 0;
    faults->beforeRead = [&](std::int64_t offset) {
      farthest = offset;
      if (offset >= 40) stop = 1;
    };
    const OpenFile open(std::string(100000, everywhere), 10, faults);
    RecordReader reader(open.stream());
    reader.SetStop(&stop);
    EXPECT_FALSE(reader.Read(false));
    EXPECT_EQ(reader.record(), "");
    EXPECT_LE(farthest, 60);
  }
}

TEST(RecordReader, MillionsOfEmptyLinesAreSkippedWithoutRecursion) {
  const OpenFile open(std::string(5000000, '\n') + "end");
  RecordReader reader(open.stream());
  ASSERT_TRUE(reader.Read(false));
  EXPECT_EQ(reader.record(), "end");
  EXPECT_EQ(reader.recordPosition(), 5000000);
}

TEST(RecordReader, AReadErrorEndsTheDataAndIsTold) {
  const auto faults = std::make_shared<embedded::StreamFaults>();
  faults->failAt = 5;
  const OpenFile open("ab\ncd\nef\n", 2, faults);
  RecordReader reader(open.stream());
  EXPECT_EQ(AllRecords(reader, false), (Strings{"ab", "cd"}));
  EXPECT_TRUE(reader.failed());
  // The rest is not read as if nothing had happened, even if it could be again.
  faults->failAt = -1;
  EXPECT_FALSE(reader.Read(false));
  EXPECT_TRUE(reader.failed());
}

TEST(RecordReader, AStreamThatCannotBeOpenedAgainIsAFailure) {
  const auto faults = std::make_shared<embedded::StreamFaults>();
  const OpenFile open("a\n", 0, faults);
  faults->duplicatesLeft = 0;
  RecordReader reader(open.stream());
  EXPECT_TRUE(reader.failed());
  EXPECT_FALSE(reader.Read(false));
}

// Byte by byte, as plainly as the rules are.
Strings NaiveRecords(const std::string& file, bool keepEmpty) {
  Strings records;
  std::string record;
  for (std::size_t i = 0; i < file.size(); ++i) {
    const char ch = file[i];
    if (ch != '\n' && ch != '\r') {
      if (ch != '\0') record += ch;
      continue;
    }
    if (ch == '\r' && i + 1 < file.size() && file[i + 1] == '\n') ++i;
    if (keepEmpty || !record.empty()) records.push_back(record);
    record.clear();
  }
  if (!record.empty()) records.push_back(record);
  return records;
}

TEST(RecordReader, RandomFilesGiveTheSameRecordsInBlocksOfAnySize) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::string file(random() % 300, ' ');
    for (char& ch : file) ch = std::string_view("ab\n\r\n\r\0c,\xC3\xA9xyzuvw", 17)[random() % 17];
    for (const bool keepEmpty : {false, true}) {
      const Strings expected = NaiveRecords(file, keepEmpty);
      for (const std::size_t blockSize : kBlockSizes) {
        const OpenFile open(file, blockSize);
        RecordReader reader(open.stream());
        ASSERT_EQ(AllRecords(reader, keepEmpty), expected) << blockSize;
      }
    }
  }
}

// Records copied in runs, one read now and then, are the records read one by one.
TEST(RecordReader, RunsHoldTheRecordsThatReadWouldGive) {
  std::mt19937 random(5);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  std::size_t inRuns = 0, alone = 0;
  for (int round = 0; round < 2000; ++round) {
    std::string file;
    const std::string ends[] = {"\n", "\n", "\n", "\n", "\r\n", "\r", "\n\n", std::string(1, '\0')};
    const std::size_t longest = round % 10 == 0 ? 6000 : 12;
    for (std::size_t lines = below(40); lines > 0; --lines) {
      file += std::string(below(longest), static_cast<char>('a' + below(26)));
      file += ends[below(round % 3 == 0 ? 1 : std::size(ends))];
    }
    const OpenFile open(file, kBlockSizes[below(std::size(kBlockSizes))]);
    RecordReader whole(open.stream());
    const Strings expected = AllRecords(whole, false);
    RecordReader reader(open.stream());
    Strings records;
    for (bool more = true; more;) {
      const std::size_t room = below(4) ? below(40) : below(20'000);
      const auto most = static_cast<std::uint32_t>(below(3) ? 1000 : below(4));
      std::string out(room, '#');
      std::uint32_t count = 0;
      const std::size_t bytes = reader.ReadRun(out.data(), room, most, &count);
      ASSERT_TRUE(bytes < room || bytes == 0);
      ASSERT_LE(count, most);
      EXPECT_EQ(reader.record(), "");
      // As the file has it.
      out.resize(bytes);
      ASSERT_EQ(out, file.substr(static_cast<std::size_t>(reader.recordPosition()), bytes));
      const Strings copied = NaiveRecords(out, false);
      ASSERT_EQ(copied.size(), count);
      records.insert(records.end(), copied.begin(), copied.end());
      inRuns += count;
      more = reader.Read(false);
      if (more) records.emplace_back(reader.record());
      alone += more;
    }
    ASSERT_EQ(records, expected);
    EXPECT_FALSE(reader.failed());
  }
  EXPECT_GT(inRuns, 5000U);
  EXPECT_GT(alone, 5000U);
}

TEST(RecordReader, ARunGoesOnUntilTheNextRecordWouldFillItsRoom) {
  const OpenFile open("ab\ncd\nef\n\ngh");
  RecordReader reader(open.stream());
  char out[16];
  std::uint32_t count = 0;
  EXPECT_EQ(reader.ReadRun(out, 6, 9, &count), 3U);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(reader.ReadRun(out, 4, 9, &count), 3U);
  EXPECT_EQ(std::string_view(out, 3), "cd\n");
  EXPECT_EQ(reader.ReadRun(out, 3, 9, &count), 0U);
  EXPECT_EQ(reader.ReadRun(out, 16, 0, &count), 0U);
  EXPECT_EQ(reader.ReadRun(out, 16, 9, &count), 3U);
  // An empty line, and then a record without a line end.
  EXPECT_EQ(reader.ReadRun(out, 16, 9, &count), 0U);
  EXPECT_EQ(count, 0U);
  ASSERT_TRUE(reader.Read(false));
  EXPECT_EQ(reader.record(), "gh");
}

TEST(RecordReader, ARunTakesEveryLineEndAndTheEmptyLines) {
  const OpenFile open("ab\r\ncd\re\n\r\n\nf\r\n");
  RecordReader reader(open.stream());
  char out[32];
  std::uint32_t count = 0;
  const std::size_t bytes = reader.ReadRun(out, 32, 9, &count);
  EXPECT_EQ(std::string_view(out, bytes), "ab\r\ncd\re\n\r\n\nf\r\n");
  EXPECT_EQ(count, 4U);
  EXPECT_FALSE(reader.Read(false));
}

// Behind a run, a line feed that belongs to its last line makes no empty line.
TEST(RecordReader, ARunNeverEndsInsideALineEnd) {
  for (std::size_t room = 1; room < 12; ++room) {
    const OpenFile open("ab\r\ncd\r\n\r\nef");
    RecordReader reader(open.stream());
    std::uint32_t count = 0;
    std::string out(room, '#');
    out.resize(reader.ReadRun(out.data(), room, 9, &count));
    Strings lines = AllRecords(reader, true);
    EXPECT_EQ(NaiveRecords(out, true).size() + lines.size(), 4U) << room;
  }
}

TEST(RecordReader, PositionsAreThoseOfRecordsBehindEmptyLines) {
  const OpenFile open("\n\r\nab\n\n\ncd", 3);
  RecordReader reader(open.stream());
  ASSERT_TRUE(reader.Read(false));
  EXPECT_EQ(reader.recordPosition(), 3);
  ASSERT_TRUE(reader.Read(false));
  EXPECT_EQ(reader.record(), "cd");
  EXPECT_EQ(reader.recordPosition(), 8);
  EXPECT_FALSE(reader.Read(false));
}

TEST(RecordReader, AStoppedReaderCopiesNoRun) {
  const OpenFile open("ab\ncd\n");
  RecordReader reader(open.stream());
  std::atomic<std::int32_t> stop{1};
  reader.SetStop(&stop);
  char out[16];
  std::uint32_t count = 7;
  EXPECT_EQ(reader.ReadRun(out, 16, 9, &count), 0U);
  EXPECT_EQ(count, 0U);
}

}  // namespace
}  // namespace textwizard
