#include "library/import/BareParts.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/data/StreamDevice.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/parts/testing/PartFiles.h"
#include "library/parts/testing/RandomParts.h"
#include "library/report/ImportWatch.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::AllOf;
using testing::HasSubstr;

struct Understood {
  bool ok = false;
  std::string problem;
  BareImport import;
};

class BarePartsTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  static BareImportSettings Settings() {
    BareImportSettings settings;
    settings.nulls = DefaultNullTexts();
    settings.threads = 1;
    return settings;
  }
  static Understood Whole(const std::string& path) {
    embedded::SetCodePage(nullptr);
    Understood whole;
    InputFiles files;
    whole.ok = UnderstandFile(path, files, Settings(), &whole.import, &whole.problem);
    return whole;
  }
  static FilePartSummary Part(const std::string& path, std::int64_t number, std::int64_t count) {
    embedded::SetCodePage(nullptr);
    FilePartSummary summary;
    InputFiles files;
    std::string problem;
    EXPECT_TRUE(SummarizeFilePart(path, number, count, files, Settings(), &summary, &problem))
        << problem;
    // As another machine reads it.
    FilePartSummary read;
    EXPECT_TRUE(ReadSummary(SummaryBytes(summary), &read));
    EXPECT_EQ(read, summary);
    return read;
  }
  static Understood Merged(const FilePartSummary& summary) {
    embedded::SetCodePage(nullptr);
    Understood merged;
    InputFiles files;
    merged.ok = UnderstandParts(summary, files, Settings(), &merged.import, &merged.problem);
    return merged;
  }
  static void ExpectSame(const Understood& whole, const Understood& merged,
                         const std::string& what) {
    ASSERT_TRUE(whole.ok) << whole.problem;
    ASSERT_TRUE(merged.ok) << what << ": " << merged.problem;
    EXPECT_EQ(whole.import.command, merged.import.command) << what;
    EXPECT_EQ(whole.import.summary, merged.import.summary) << what;
    EXPECT_EQ(whole.import.rewriting, merged.import.rewriting) << what;
    EXPECT_EQ(whole.import.standIns, merged.import.standIns) << what;
    EXPECT_EQ(whole.import.shownMark, merged.import.shownMark) << what;
  }

  TestFolder folder_;
};

std::vector<std::pair<std::string, std::string>> BareFiles() {
  std::string table = "id,town,visited,amount,share\n";
  std::string quoted = "id,text,n\n";
  std::string fixed;
  std::mt19937 random(3);
  for (int i = 1; i <= 60; ++i) {
    const auto draw = [&](int to) {
      return static_cast<int>(random() % static_cast<unsigned>(to));
    };
    table +=
        std::to_string(i) + ",Town " + std::string(static_cast<std::size_t>(draw(9)), 'x') + "," +
        (i == 50
             ? "31/12/2019"
             : "0" + std::to_string(1 + draw(9)) + "/0" + std::to_string(1 + draw(9)) + "/2020") +
        "," + (i == 7 ? "NA" : std::to_string(draw(1000000)) + ".5") + "," +
        std::to_string(draw(100)) + "%\n";
    quoted += std::to_string(i) + ",\"a" + (i % 4 == 0 ? "\n" : " ") + "b, " +
              std::to_string(draw(1000)) + "\"," + std::to_string(draw(50)) + "\r\n";
    std::string number = std::to_string(draw(100000));
    number.insert(0, 6 - number.size(), ' ');
    fixed += number + " abc" + std::to_string(100 + draw(900)) + "  20" +
             std::to_string(10 + draw(80)) + "\n";
  }
  return {{"table", table},
          {"tableCrLf", Replaced(table, "\n", "\r\n")},
          {"tableMark", "\xEF\xBB\xBF" + table},
          {"tableUtf16", Utf16(table, true)},
          {"tableUtf16NoMark", Utf16(table, false).substr(2)},
          {"tableFooter", table + "\nTotal: 60 rows\n"},
          {"quoted", quoted},
          {"fixed", fixed}};
}

TEST_F(BarePartsTest, MergeIntoWhatOneReaderFinds) {
  std::mt19937 random(11);
  for (const auto& [name, bytes] : BareFiles()) {
    const std::string path = folder_.Write(name + ".txt", bytes);
    const Understood whole = Whole(path);
    for (const std::int64_t count : {1, 2, 3, 8, 41}) {
      FilePartSummary merged = Part(path, 1, count);
      std::string problem;
      for (std::int64_t number = 2; number <= count; ++number) {
        ASSERT_TRUE(merged.Append(Part(path, number, count), &problem)) << problem;
      }
      ExpectSame(whole, Merged(merged), name + " in " + std::to_string(count) + " parts");
      if (HasFailure()) return;
    }
  }
}

TEST_F(BarePartsTest, CutAtRandomMergeIntoTheSame) {
  std::mt19937_64 random(5);
  for (const auto& [name, bytes] : BareFiles()) {
    const std::string path = folder_.Write(name + ".txt", bytes);
    const Understood whole = Whole(path);
    BareImportSettings settings = Settings();
    settings.sniffed = &whole.import.sniff;
    for (int round = 0; round < RandomCuts(); ++round) {
      FilePartSummary merged;
      std::string problem;
      const auto size = static_cast<std::int64_t>(bytes.size());
      for (const PartRange& range : RandomParts(size, random)) {
        embedded::SetCodePage(nullptr);
        InputFiles files;
        FilePartSummary part;
        ASSERT_TRUE(SummarizeFilePart(path, range, files, settings, &part, &problem)) << problem;
        if (merged.file.empty()) {
          merged = std::move(part);
        } else {
          ASSERT_TRUE(merged.Append(part, &problem)) << problem;
        }
      }
      ExpectSame(whole, Merged(merged), name);
      if (HasFailure()) return;
    }
  }
}

TEST_F(BarePartsTest, MergeInAnyGroupingToTheSame) {
  const std::string path = folder_.Write("table.csv", BareFiles()[0].second);
  std::vector<FilePartSummary> parts;
  for (std::int64_t number = 1; number <= 4; ++number) parts.push_back(Part(path, number, 4));
  std::string problem;
  FilePartSummary left = parts[0];
  for (std::size_t i = 1; i < 4; ++i) ASSERT_TRUE(left.Append(parts[i], &problem)) << problem;
  FilePartSummary front = parts[0];
  FilePartSummary back = parts[2];
  ASSERT_TRUE(front.Append(parts[1], &problem)) << problem;
  ASSERT_TRUE(back.Append(parts[3], &problem)) << problem;
  ASSERT_TRUE(front.Append(back, &problem)) << problem;
  EXPECT_EQ(front, left);
  EXPECT_TRUE(front.isWhole());
}

TEST_F(BarePartsTest, OfOtherFilesAndSettingsDoNotMerge) {
  const std::string path = folder_.Write("table.csv", BareFiles()[0].second);
  const FilePartSummary first = Part(path, 1, 3);
  const FilePartSummary last = Part(path, 3, 3);
  std::string problem;
  FilePartSummary merged = first;
  EXPECT_FALSE(merged.Append(last, &problem));
  EXPECT_THAT(problem, HasSubstr("is missing"));
  EXPECT_EQ(merged, first) << "and nothing was added";

  FilePartSummary other = Part(path, 2, 3);
  other.file = "else.csv";
  EXPECT_FALSE(merged.Append(other, &problem));
  EXPECT_THAT(problem, HasSubstr("it is of the file else.csv"));
  other = Part(path, 2, 3);
  ++other.state.modified;
  EXPECT_FALSE(merged.Append(other, &problem));
  EXPECT_THAT(problem, HasSubstr("changed between the summaries"));
  other = Part(path, 2, 3);
  other.cut += "x";
  EXPECT_FALSE(merged.Append(other, &problem));
  EXPECT_THAT(problem, HasSubstr("with other settings"));

  EXPECT_FALSE(Merged(first).ok);
  EXPECT_THAT(Merged(first).problem, HasSubstr("not all of them"));
}

TEST_F(BarePartsTest, ALaterFileIsNotThatOfTheSummary) {
  const std::string path = folder_.Write("table.csv", BareFiles()[0].second);
  const FilePartSummary whole = Part(path, 1, 1);
  folder_.Write("table.csv", BareFiles()[0].second + "61,x,01/01/2020,1,1%\n");
  EXPECT_FALSE(Merged(whole).ok);
  EXPECT_THAT(Merged(whole).problem, HasSubstr("changed since it was summed up"));
}

TEST_F(BarePartsTest, BytesThatAreNoSummaryAreRefused) {
  const std::string path = folder_.Write("table.csv", BareFiles()[0].second);
  const std::string bytes = SummaryBytes(Part(path, 1, 2));
  EXPECT_LT(bytes.size(), 16384U);
  FilePartSummary summary;
  ASSERT_TRUE(ReadSummary(bytes, &summary));
  for (std::size_t size = 0; size < bytes.size(); size += 1 + size / 16) {
    EXPECT_FALSE(ReadSummary(std::string_view(bytes).substr(0, size), &summary)) << size;
  }
  EXPECT_FALSE(ReadSummary("{}", &summary));
  std::mt19937 random(2);
  for (int round = 0; round < 2000; ++round) {
    // Whatever it is taken for, reading ends.
    std::string broken = bytes;
    broken[random() % broken.size()] = static_cast<char>(random());
    ReadSummary(broken, &summary);
  }
}

// Counts what is read of all files while it lives.
class ReadBytes {
 public:
  ReadBytes() {
    before_ = embedded::SetStreamDeviceOpener([this](const char* path) {
      return std::make_unique<Counting>(embedded::OpenPosixDevice(path), bytes_);
    });
  }
  ~ReadBytes() { embedded::SetStreamDeviceOpener(before_); }
  std::int64_t bytes() const { return bytes_; }

 private:
  class Counting : public embedded::StreamDevice {
   public:
    Counting(std::unique_ptr<embedded::StreamDevice> file, std::atomic<std::int64_t>& bytes)
        : file_(std::move(file)), bytes_(bytes) {}
    std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override {
      const std::ptrdiff_t got = file_->ReadAt(offset, buffer, bytes);
      bytes_ += std::max<std::ptrdiff_t>(got, 0);
      return got;
    }
    std::int64_t Size() const override { return file_->Size(); }
    std::unique_ptr<embedded::StreamDevice> Duplicate() const override {
      return std::make_unique<Counting>(file_->Duplicate(), bytes_);
    }

   private:
    const std::unique_ptr<embedded::StreamDevice> file_;
    std::atomic<std::int64_t>& bytes_;
  };

  std::atomic<std::int64_t> bytes_{0};
  embedded::StreamDeviceOpener before_;
};

std::string ManyQuoted(int rows) {
  std::string text = "id,text,n\n";
  for (int i = 1; i <= rows; ++i) {
    text += std::to_string(i) + ",\"a" + (i % 4 == 0 ? "\n" : " ") + "b, " +
            std::string(static_cast<std::size_t>(i % 90), 'x') + "\"," + std::to_string(i % 50) +
            "\n";
  }
  return text;
}

TEST_F(BarePartsTest, OfAFileWithLineBreaksWithinQuotesCostTheirBytes) {
  const std::string text = ManyQuoted(400'000);
  const std::string path = folder_.Write("quoted.csv", text);
  constexpr std::int64_t kParts = 40;
  const auto size = static_cast<std::int64_t>(text.size());
  ASSERT_GT(size, 20'000'000);
  FilePartSummary merged = Part(path, 1, kParts);
  for (std::int64_t number = 2; number <= kParts; ++number) {
    const ReadBytes read;
    FilePartSummary part = Part(path, number, kParts);
    // How the file is built is looked at; a megabyte is tried; the part is read for its lines, its
    // quotes and its values, by blocks of a megabyte at most.
    EXPECT_LT(read.bytes(), 6 * (size / kParts) + 6'000'000) << "part " << number;
    std::string problem;
    ASSERT_TRUE(merged.Append(part, &problem)) << problem;
  }
  const ReadBytes read;
  ExpectSame(Whole(path), Merged(merged), "quoted");
}

TEST_F(BarePartsTest, ThatBeginWithinALongValueAreNotTaken) {
  // More lines of a value than are tried, without a quote among them.
  std::string text = "id,text,n\n";
  for (int i = 1; i < 100; ++i) text += std::to_string(i) + ",\"a b\"," + std::to_string(i) + "\n";
  text += "100,\"";
  const auto begin = static_cast<std::int64_t>(text.size());
  for (int i = 0; i < 30; ++i) text += std::string(50'000, 'x') + ",y,z\n";
  text += "\",100\n";
  for (int i = 101; i < 300; ++i)
    text += std::to_string(i) + ",\"c\nd\"," + std::to_string(i) + "\n";
  const std::string path = folder_.Write("long.csv", text);
  const auto size = static_cast<std::int64_t>(text.size());
  const auto part = [&](std::int64_t from, std::int64_t to) {
    embedded::SetCodePage(nullptr);
    FilePartSummary summary;
    InputFiles files;
    std::string problem;
    EXPECT_TRUE(SummarizeFilePart(path, {from, to}, files, Settings(), &summary, &problem))
        << problem;
    return summary;
  };
  std::string problem;
  FilePartSummary merged = part(0, begin + 200'000);
  EXPECT_FALSE(merged.Append(part(begin + 200'000, size), &problem));
  EXPECT_THAT(problem, AllOf(HasSubstr("not certain at byte"), HasSubstr("the file is one part")));
  // Behind it the lines are certain again, and a part within the value has none.
  FilePartSummary others = part(0, begin + 1'400'000);
  ASSERT_TRUE(others.Append(part(begin + 1'400'000, size), &problem)) << problem;
  ExpectSame(Whole(path), Merged(others), "long");
}

TEST_F(BarePartsTest, OfAFileWhoseQuoteIsNeverClosedAreOnePart) {
  std::string text = "id,text,n\n";
  for (int i = 1; i < 400000; ++i) {
    text +=
        std::to_string(i) + (i == 250000 ? ",\"open," : ",\"closed\",") + std::to_string(i) + "\n";
  }
  const std::string path = folder_.Write("open.csv", text);
  FilePartSummary merged = Part(path, 1, 2);
  std::string problem;
  const bool joins = merged.Append(Part(path, 2, 2), &problem);
  Understood understood;
  if (joins) understood = Merged(merged);
  EXPECT_FALSE(understood.ok);
  EXPECT_THAT(problem + understood.problem, HasSubstr("the file is one part"));
  ExpectSame(Whole(path), Merged(Part(path, 1, 1)), "one part");
}

}  // namespace
}  // namespace library
