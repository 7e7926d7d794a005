#include "library/input/InputFiles.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "library/input/testing/CompressedFile.h"

namespace library {
namespace {

using testing_support::Compressed;
using testing_support::Zipped;

constexpr Compression kAll[] = {Compression::kGzip, Compression::kBzip2, Compression::kXz,
                                Compression::kZstd, Compression::kZip};

// Compresses to several blocks of the readers, but not much.
std::string Data() {
  std::string data;
  unsigned state = 1;
  for (int line = 0; line < 40000; ++line) {
    state = state * 1664525 + 1013904223;
    data += std::to_string(state) + ",x\n";
  }
  return data;
}

std::string ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

class InputFilesTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = testing::TempDir() + "input-files-" + std::to_string(getpid());
    std::filesystem::create_directories(folder_ + "/spool");
    const char* const before = std::getenv("TMPDIR");
    before_ = before != nullptr ? before : "";
    setenv("TMPDIR", (folder_ + "/spool").c_str(), 1);
  }
  void TearDown() override {
    if (before_.empty()) {
      unsetenv("TMPDIR");
    } else {
      setenv("TMPDIR", before_.c_str(), 1);
    }
    std::filesystem::remove_all(folder_);
  }

  std::string Write(const std::string& content, const std::string& name = "data") const {
    const std::string path = folder_ + "/" + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
  // The problem of a file of that content.
  std::string Problem(const std::string& content) const {
    InputFiles files;
    const std::string path = Write(content);
    const InputFiles::Input& input = files.Open(path);
    EXPECT_FALSE(std::filesystem::exists(input.path));
    EXPECT_NE(input.path.find(input.problem), std::string::npos);
    EXPECT_EQ(input.path.find(path), 0u) << "the message names the file";
    return input.problem;
  }

  std::string folder_;
  std::string before_;
};

TEST_F(InputFilesTest, AFileThatIsNotCompressedIsOpenedItself) {
  InputFiles files;
  const std::string path = Write("a,b\n1,2\n");
  EXPECT_EQ(files.Open(path).path, path);
  EXPECT_EQ(files.Open(path).compression, Compression::kNone);
  EXPECT_EQ(files.Open(path).problem, "");
  EXPECT_EQ(files.Open(folder_ + "/missing").path, folder_ + "/missing");
  EXPECT_EQ(files.Open(folder_).path, folder_);
}

TEST_F(InputFilesTest, EveryCompressionGivesTheDataAndTellsHowFarItIs) {
  const std::string data = Data();
  for (const Compression compression : kAll) {
    SCOPED_TRACE(CompressionName(compression));
    std::int64_t last = 0, total = 0;
    InputFiles files([&](std::int64_t read, std::int64_t size) {
      EXPECT_GE(read, last);
      last = read;
      total = size;
    });
    const std::string compressed = Compressed(data, compression);
    const std::string path = Write(compressed);
    const InputFiles::Input& input = files.Open(path);
    EXPECT_EQ(input.problem, "");
    EXPECT_EQ(input.compression, compression);
    EXPECT_EQ(input.compressedBytes, static_cast<std::int64_t>(compressed.size()));
    EXPECT_EQ(ContentOf(input.path), data);
    EXPECT_EQ(total, input.compressedBytes);
    EXPECT_GT(last, total / 2);
    EXPECT_LE(last, total);
    EXPECT_EQ(&files.Open(path), &input) << "decompressed once";
    EXPECT_TRUE(std::filesystem::is_empty(folder_ + "/spool")) << "the copy has no name";
  }
}

TEST_F(InputFilesTest, AnEmptyFileMayBeCompressed) {
  for (const Compression compression : kAll) {
    SCOPED_TRACE(CompressionName(compression));
    InputFiles files;
    const InputFiles::Input& input = files.Open(Write(Compressed("", compression)));
    EXPECT_EQ(input.problem, "");
    EXPECT_EQ(ContentOf(input.path), "");
  }
}

TEST_F(InputFilesTest, ConcatenatedStreamsAreOneFile) {
  for (const Compression compression :
       {Compression::kGzip, Compression::kBzip2, Compression::kXz, Compression::kZstd}) {
    SCOPED_TRACE(CompressionName(compression));
    InputFiles files;
    const InputFiles::Input& input =
        files.Open(Write(Compressed("a\n", compression) + Compressed("b\n", compression)));
    EXPECT_EQ(input.problem, "");
    EXPECT_EQ(ContentOf(input.path), "a\nb\n");
  }
}

TEST_F(InputFilesTest, AGzipFileMayEndWithZerosAndNothingElse) {
  const std::string gzip = Compressed("a\n", Compression::kGzip);
  InputFiles files;
  const InputFiles::Input& input = files.Open(Write(gzip + std::string(600000, '\0')));
  EXPECT_EQ(input.problem, "");
  EXPECT_EQ(ContentOf(input.path), "a\n");
  EXPECT_EQ(Problem(gzip + "garbage"),
            "the gzip data is followed by something else at byte " + std::to_string(gzip.size()));
  EXPECT_EQ(
      Problem(gzip + std::string(7, '\0') + gzip),
      "the gzip data is followed by something else at byte " + std::to_string(gzip.size() + 7));
}

TEST_F(InputFilesTest, DamageIsFoundWhereverItIs) {
  const std::string data = Data();
  for (const Compression compression : kAll) {
    SCOPED_TRACE(CompressionName(compression));
    const std::string whole = Compressed(data, compression);
    for (const std::size_t part : {3, 4, 5, 6, 7}) {
      std::string damaged = whole;
      char& byte = damaged[damaged.size() * part / 10];
      byte = static_cast<char>(byte ^ 0x10);
      // The writer of zstd puts no checksum behind its data: only what cannot be read is found.
      InputFiles files;
      const InputFiles::Input& input = files.Open(Write(damaged));
      const bool unnoticed = compression == Compression::kZstd && input.problem.empty();
      EXPECT_TRUE(unnoticed || input.problem.find("data is damaged") != std::string::npos)
          << part << ": " << input.problem;
    }
  }
}

TEST_F(InputFilesTest, ATruncatedFileIsDamaged) {
  const std::string data = Data();
  for (const Compression compression : kAll) {
    const std::string whole = Compressed(data, compression);
    EXPECT_NE(Problem(whole.substr(0, whole.size() / 2)).find("data is damaged"), std::string::npos)
        << CompressionName(compression);
  }
  const std::string gzip = Compressed(data, Compression::kGzip);
  for (const std::size_t missing : {1, 8, 9}) {
    EXPECT_EQ(Problem(gzip.substr(0, gzip.size() - missing)),
              "the gzip data is damaged: it ends too early");
  }
}

TEST_F(InputFilesTest, AZipArchiveHoldsOneFile) {
  InputFiles files;
  const InputFiles::Input& input = files.Open(Write(Zipped(
      {{"folder/", ""}, {"__MACOSX/folder/._data.csv", "note"}, {"folder/data.csv", "a\n"}})));
  EXPECT_EQ(input.problem, "");
  EXPECT_EQ(ContentOf(input.path), "a\n");
  EXPECT_EQ(Problem(Zipped({{"folder/", ""}})), "the zip archive holds no file");
  EXPECT_EQ(Problem(Zipped({{"a.csv", "x"}, {"b.csv", "y"}})),
            "the zip archive holds 2 files (a.csv, b.csv); extract the one to import");
  EXPECT_EQ(Problem(Zipped({{"a", "x"}, {"b", "y"}, {"c", "y"}, {"d", ""}, {"e", ""}})),
            "the zip archive holds 5 files (a, b, c, ...); extract the one to import");
}

TEST_F(InputFilesTest, AWorkbookIsNoArchiveOfFiles) {
  InputFiles files;
  const InputFiles::Input& input =
      files.Open(Write(Zipped({{"[Content_Types].xml", "x"}, {"xl/workbook.xml", "y"}})));
  EXPECT_EQ(input.problem, "a workbook (.xlsx), and no text");
  EXPECT_NE(input.wayOut.find("CSV"), std::string::npos) << input.wayOut;
  // Its first bytes may tell nothing.
  std::string noise;
  for (unsigned state = 1; noise.size() < 20000; state = state * 1664525 + 1013904223) {
    noise += static_cast<char>(state >> 24);
  }
  EXPECT_EQ(Problem(Zipped({{"a.xml", noise}, {"xl/workbook.xml", "y"}})),
            "it is a workbook of a spreadsheet program; save the sheet as CSV and import that");
}

TEST_F(InputFilesTest, APasswordIsSaid) {
  EXPECT_EQ(Problem(Zipped({{"data.csv", "a,b\n1,2\n"}}, "secret")),
            "data.csv in the zip archive is protected by a password; extract it first");
}

TEST_F(InputFilesTest, AFolderThatTakesNoCopyIsNamed) {
  setenv("TMPDIR", (folder_ + "/missing").c_str(), 1);
  const std::string problem = Problem(Compressed("a\n", Compression::kGzip));
  EXPECT_NE(problem.find(folder_ + "/missing"), std::string::npos) << problem;
  EXPECT_NE(problem.find("TMPDIR"), std::string::npos) << problem;
}

TEST_F(InputFilesTest, APipeMayBeCompressed) {
  const std::string pipe = folder_ + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer(
      [&] { std::ofstream(pipe, std::ios::binary) << Compressed("a\nb\n", Compression::kXz); });
  InputFiles files;
  const InputFiles::Input& input = files.Open(pipe);
  writer.join();
  EXPECT_EQ(input.problem, "");
  EXPECT_EQ(input.compression, Compression::kXz);
  EXPECT_EQ(ContentOf(input.path), "a\nb\n");
}

TEST_F(InputFilesTest, TheUserMayInterrupt) {
  const std::string path = Write(Compressed(Data(), Compression::kBzip2));
  embedded::RequestAttention();
  InputFiles files;
  EXPECT_EQ(files.Open(path).problem, "interrupted");
  embedded::ClearAttention();
}

TEST(CompressionOf, LooksAtMoreThanAWordOfText) {
  EXPECT_EQ(CompressionOf("BZhappy birthday"), Compression::kNone);
  EXPECT_EQ(CompressionOf("BZh9,1,2\n"), Compression::kNone);
  EXPECT_EQ(CompressionOf("PK,name\n"), Compression::kNone);
  EXPECT_EQ(CompressionOf(""), Compression::kNone);
}

TEST_F(InputFilesTest, ColumnsArePaddedOnce) {
  // Blocks of the copier end anywhere in it.
  std::string text = "\xC3\xA4 title\n";
  const auto first = static_cast<std::int64_t>(text.size());
  for (int i = 0; i < 60000; ++i)
    text +=
        "\xC3\xA4"
        "b" +
        std::to_string(i % 10) + "\n";
  const auto last = static_cast<std::int64_t>(text.size());
  text += "total\n";
  const std::string path = folder_ + "/columns.txt";
  std::ofstream(path, std::ios::binary) << text;

  InputFiles files;
  std::int64_t begin = first;
  std::int64_t end = last;
  const InputFiles::Input& input = files.PadColumns(path, {2}, {&begin, &end});
  EXPECT_EQ(input.problem, "");
  EXPECT_EQ(input.paddedAt, std::vector<std::int64_t>{2});
  std::string padded = "\xC3\xA4      title\n";
  EXPECT_EQ(begin, static_cast<std::int64_t>(padded.size()));
  for (int i = 0; i < 60000; ++i)
    padded +=
        "\xC3\xA4"
        "b     " +
        std::to_string(i % 10) + "\n";
  EXPECT_EQ(end, static_cast<std::int64_t>(padded.size()));
  padded += "to      tal\n";
  EXPECT_EQ(ContentOf(input.path), padded);
  // Lines and places lead back to the file, whichever is asked for.
  ASSERT_EQ(input.copies.size(), 1u);
  for (const int line : {0, 1, 17, 40000, 59999, 3}) {
    EXPECT_EQ(FileOffset(input.copies, begin + line * 10), first + line * 5);
    EXPECT_EQ(FileOffset(input.copies, begin + line * 10 + 8), first + line * 5 + 3);
  }
  EXPECT_EQ(FileOffset(input.copies, static_cast<std::int64_t>(padded.size())),
            static_cast<std::int64_t>(text.size()));
  EXPECT_EQ(files.PadColumns(path, {2}, {}).path, input.path);
  EXPECT_EQ(files.Open(path).path, input.path);
}

TEST_F(InputFilesTest, WhatIsConvertedCanBePaddedToo) {
  const std::string path = folder_ + "/wide.txt";
  std::ofstream(path, std::ios::binary) << std::string(
      "\xE4\0b\0"
      "1\0\n\0",
      8);
  InputFiles files;
  files.ConvertAll("UTF-16LE", {2});
  const InputFiles::Input& input = files.Open(path);
  EXPECT_EQ(input.problem, "");
  EXPECT_EQ(ContentOf(input.path),
            "\xC3\xA4"
            "b     1\n");
  EXPECT_TRUE(files.converts());
  ASSERT_EQ(input.copies.size(), 2u);
  EXPECT_EQ(FileOffset(input.copies, 2), 2);
  EXPECT_EQ(FileOffset(input.copies, 8), 4);
  EXPECT_EQ(FileOffset(input.copies, 10), 8);
  EXPECT_EQ(input.copies[0]->lineEnds().feed, std::string("\n\0", 2));
}

}  // namespace
}  // namespace library
