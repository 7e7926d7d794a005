// What `textwizard run` reads of files beyond the command language: line breaks and escapes within
// quotes, UTF-16 without a mark, compressed files.

#include <gmock/gmock.h>

#include "library/input/testing/CompressedFile.h"
#include "tests/program/Program.h"

namespace program {
namespace {

using testing::HasSubstr;

class RunRewriting : public ProgramTest {};

std::string Import(const std::string& file, const std::string& variables = "id F3 text A20 n F3") {
  return "GET DATA /TYPE=TXT /FILE='" + file +
         "' /DELIMITERS=',' /QUALIFIER='\"' /FIRSTCASE=2 /VARIABLES=" + variables + ".\n";
}

constexpr char kQuoted[] =
    "id,text,n\n1,\"a\nb\",2\n2,\"c\r\nd \"\"q\"\"\",3\n\n3,\"say \\\"hi\\\" to C:\\\\new\",4\n";

TEST_F(RunRewriting, LineBreaksWithinQuotesStayInTheValue) {
  folder_.Write("q.csv", kQuoted);
  EXPECT_EQ(Quiet(Import("q.csv"), {"--cases", "-", "--join-quoted-lines"}).out,
            "id,text,n\n1,\"a\nb\",2\n2,\"c\r\nd \"\"q\"\"\",3\n3,say \\i\\ to C:\\\\new,4\n");
  EXPECT_EQ(Quiet(Import("q.csv"), {"--cases", "-", "--format", "jsonl", "--join-quoted-lines",
                                    "--backslash-escapes"})
                .out,
            "{\"id\":1,\"text\":\"a\\nb\",\"n\":2}\n"
            "{\"id\":2,\"text\":\"c\\r\\nd \\\"q\\\"\",\"n\":3}\n"
            "{\"id\":3,\"text\":\"say \\\"hi\\\" to C:\\\\new\",\"n\":4}\n");
}

TEST_F(RunRewriting, BothEnginesAndEveryWorkerCountAgree) {
  std::string data = "id,text,n\n";
  for (int i = 0; i < 20000; ++i) {
    data += std::to_string(i % 1000) + ",\"x\n" +
            std::string(static_cast<std::size_t>(i % 7), '\n') + "y\\\"\"," +
            std::to_string(i % 10) + "\n";
  }
  folder_.Write("q.csv", data);
  const std::vector<std::string> options = {"--cases", "-", "--join-quoted-lines",
                                            "--backslash-escapes"};
  std::string first;
  for (const char* workers : {"1", "2", "5"}) {
    std::vector<std::string> all = options;
    all.insert(all.end(), {"--workers", workers});
    const std::string out = Quiet(Import("q.csv"), all).out;
    if (first.empty()) first = out;
    // The difference of texts of so many lines takes more memory than there is.
    EXPECT_TRUE(out == first) << workers << " workers";
  }
  // Cases of a fixed number of values are read on one thread.
  const std::string counted =
      "GET DATA /TYPE=TXT /FILE='q.csv' /DELCASE=VARIABLES 3 /DELIMITERS=',' /QUALIFIER='\"' "
      "/FIRSTCASE=2 /VARIABLES=id F3 text A20 n F3.\n";
  EXPECT_TRUE(Quiet(counted, options).out == first);
}

TEST_F(RunRewriting, WithoutAQualifierTheCommandFails) {
  folder_.Write("q.csv", kQuoted);
  const Ended ended = Quiet("GET DATA /TYPE=TXT /FILE='q.csv' /DELIMITERS=',' /VARIABLES=id F3.\n",
                            {"--cases", "c.csv", "--join-quoted-lines"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("QUALIFIER"));
  EXPECT_FALSE(folder_.Holds("c.csv"));
}

TEST_F(RunRewriting, ACommandOfItsOwnFaultIsRefusedAsEver) {
  folder_.Write("q.csv", kQuoted);
  const Ended ended =
      Quiet("GET DATA /TYPE=TXT /FILE='q.csv' /FIRSTCASE=0 /DELIMITERS=',' /VARIABLES=id F3.\n",
            {"--join-quoted-lines"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("[2259]"));
}

TEST_F(RunRewriting, Utf16MayLackItsMark) {
  for (const bool bigEndian : {false, true}) {
    std::string wide;
    for (const char* at = "id,text,n\n7,\"a\nb\",2\n"; *at != '\0'; ++at) {
      wide += bigEndian ? '\0' : *at;
      wide += bigEndian ? *at : '\0';
    }
    // U+00FC.
    wide += bigEndian ? std::string("\0008\0,\0\xFC\0,\0009\0\n", 12)
                      : std::string("8\0,\0\xFC\0,\0009\0\n\0", 12);
    folder_.Write("w.csv", wide);
    EXPECT_EQ(Quiet(Import("w.csv"), {"--cases", "-", "--join-quoted-lines", "--byte-order-mark",
                                      bigEndian ? "utf-16be" : "utf-16le"})
                  .out,
              "id,text,n\n7,\"a\nb\",2\n8,\xC3\xBC,9\n");
  }
}

TEST_F(RunRewriting, CompressedFilesAreReadAsTheyAre) {
  using library::Compression;
  const std::string plain = Import("plain.csv");
  folder_.Write("plain.csv", "id,text,n\n1,a,2\n");
  const std::string expected = Quiet(plain, {"--cases", "-"}).out;
  for (const Compression compression : {Compression::kGzip, Compression::kBzip2, Compression::kXz,
                                        Compression::kZstd, Compression::kZip}) {
    folder_.Write("data", library::testing_support::Compressed("id,text,n\n1,a,2\n", compression));
    EXPECT_EQ(Quiet(Import("data"), {"--cases", "-"}).out, expected)
        << library::CompressionName(compression);
  }
}

TEST_F(RunRewriting, ADamagedFileIsSaid) {
  std::string gzip =
      library::testing_support::Compressed(std::string(100000, 'x'), library::Compression::kGzip);
  gzip.resize(gzip.size() - 9);
  folder_.Write("data.gz", gzip);
  const Ended ended = Quiet(Import("data.gz"), {});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("data.gz"));
  EXPECT_THAT(ended.err, HasSubstr("the gzip data is damaged: it ends too early"));
}

}  // namespace
}  // namespace program
