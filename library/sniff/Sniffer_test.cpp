// Whole files: every setting, what is said of it, how sure it is, and files that are hard to take.

#include "library/sniff/Sniffer.h"

#include <string>

#include <gmock/gmock.h>

#include "library/sniff/SniffEvidence.h"
#include "library/sniff/SniffJson.h"
#include "library/sniff/testing/SniffTest.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using SnifferTest = SniffTest;

constexpr std::string_view kPlain =
    "id,town,people,founded\n1,Rome,2800000,1953-04-21\n2,Oslo,700000,1948-01-01\n"
    "3,Bern,134000,1991-05-05\n4,Graz,290000,1928-06-07\n5,Lyon,516000,1943-10-10\n"
    "6,Bari,320000,1971-04-15\n";

TEST_F(SnifferTest, SaysEverySettingAndWhy) {
  const SniffResult result = Sniffed(kPlain);
  EXPECT_EQ(result.encoding.value, "UTF-8");
  EXPECT_EQ(result.lineEnd.value, LineEnd::kLf);
  EXPECT_EQ(result.lineEnd.evidence, "7 LF");
  EXPECT_EQ(result.arrangement.value, Arrangement::kDelimited);
  EXPECT_EQ(result.delimiter.value, ",");
  EXPECT_EQ(result.delimiter.evidence, "7 of 7 records have 4 fields");
  EXPECT_FALSE(result.delimiter.given);
  EXPECT_EQ(result.qualifier.value, "");
  EXPECT_EQ(result.headerLines.value, 1);
  EXPECT_EQ(result.firstDataLine.value, 2);
  EXPECT_EQ(result.lastDataLine, 7);
  EXPECT_THAT(Names(result), ElementsAre("id", "town", "people", "founded"));
  EXPECT_THAT(Formats(result), ElementsAre("F1", "A4", "F7", "SDATE10"));
  EXPECT_EQ(result.verdict, Verdict::kCertain);
  EXPECT_TRUE(result.runnerUp.has_value());
  EXPECT_GT(result.margin, 0.5);
  EXPECT_THAT(result.advice, IsEmpty());
}

TEST_F(SnifferTest, GivenSettingsAreNotFound) {
  SniffSettings settings;
  settings.encoding = "windows-1252";
  settings.delimiter = ";";
  settings.qualifier = "'";
  settings.decimal = DecimalCharacter::kComma;
  const SniffResult result = Sniffed("a;b\n'x;y';1\nz;2\n", settings);
  EXPECT_TRUE(result.encoding.given);
  EXPECT_TRUE(result.delimiter.given);
  EXPECT_TRUE(result.qualifier.given);
  EXPECT_TRUE(result.decimal.given);
  EXPECT_EQ(result.columns.size(), 2U);
  EXPECT_EQ(result.decimal.value, DecimalCharacter::kComma);
}

TEST_F(SnifferTest, GivenColumnsAreFixed) {
  SniffSettings settings;
  settings.fixed = {{1, 3}, {4, 8}, {9, 0}};
  const SniffResult result = Sniffed("001Anna 12.5\n002Bob   7.5\n003Carol9.25\n", settings);
  EXPECT_EQ(result.arrangement.value, Arrangement::kFixed);
  EXPECT_TRUE(result.arrangement.given);
  EXPECT_TRUE(result.delimiter.given) << "no delimiter was looked for";
  ASSERT_EQ(result.columns.size(), 3U);
  EXPECT_EQ(result.columns[1].range, (CharacterRange{4, 8}));
  EXPECT_EQ(result.columns[0].format, "A3");
}

TEST_F(SnifferTest, ASettingThatCannotBeUsedIsRefused) {
  SniffSettings settings;
  settings.encoding = "no-such-encoding";
  EXPECT_EQ(Refusal("a,b\n", settings), "there is no encoding no-such-encoding");
  settings = {};
  settings.delimiter = "\n";
  EXPECT_EQ(Refusal("a,b\n", settings), "a line end cannot be the delimiter");
}

TEST_F(SnifferTest, ASampleLooksAtTheFirstLinesOnly) {
  SniffSettings settings;
  settings.sampleLines = 4;
  const SniffResult result = Sniffed("a,b\n1,2\n3,4\n5,6\nx,y\nz,u\nv,w\n", settings);
  EXPECT_EQ(result.delimiter.evidence, "4 of 4 records have 2 fields");
  EXPECT_FALSE(result.lastDataLine.has_value());
  EXPECT_THAT(Formats(result), ElementsAre("F1", "F1"));
}

TEST_F(SnifferTest, QuotesThatAreDataAreToldOfAndKept) {
  const SniffResult result = Sniffed("size,n\n5\" pipe,1\n7\" pipe,2\nHe said \"hi\" there,3\n");
  EXPECT_EQ(result.qualifier.value, "\"");
  EXPECT_TRUE(result.strayQualifiers);
  EXPECT_THAT(result.qualifier.evidence, HasSubstr("4 inside fields are data"));
  EXPECT_EQ(result.columns.size(), 2U);
}

TEST_F(SnifferTest, BlanksBehindDelimitersAreNoPartOfTheValues) {
  const SniffResult result = Sniffed("id, name, n\n1, \"Anna, B\", 5\n2, \"Bob\", 6\n3, Li, 7\n");
  EXPECT_TRUE(result.leadingBlanks);
  EXPECT_EQ(result.qualifier.value, "\"");
  EXPECT_THAT(Names(result), ElementsAre("id", "name", "n"));
  EXPECT_FALSE(Sniffed("id,name\n1,Anna B\n2,Bob C\n").leadingBlanks);
}

TEST_F(SnifferTest, WhatIsNotSureIsNotCalledCertain) {
  EXPECT_NE(Sniffed("a,b\n").verdict, Verdict::kCertain);
  EXPECT_NE(Sniffed("x\n").verdict, Verdict::kCertain);
  EXPECT_NE(Sniffed("alpha beta\ngamma delta\n").verdict, Verdict::kCertain);
  EXPECT_NE(Sniffed("red,green\nblue,white\nred,black\n").verdict, Verdict::kCertain);
  const SniffResult guess = Sniffed("one two\nthree\nfour five six\n");
  EXPECT_EQ(guess.verdict, Verdict::kGuess);
  EXPECT_THAT(guess.advice, HasSubstr("give --"));
}

TEST_F(SnifferTest, ColumnsWhoseBordersCutWordsAreAGuess) {
  std::string text;
  for (int i = 0; i < 60; ++i) text += "green hill  " + std::to_string(100 + i) + "  north\n";
  EXPECT_NE(Sniffed(text).verdict, Verdict::kGuess);
  const SniffResult result = Sniffed(text + "a long street in town 7\n" + text);
  ASSERT_EQ(result.arrangement.value, Arrangement::kFixed);
  EXPECT_EQ(result.verdict, Verdict::kGuess);
  EXPECT_THAT(result.advice, HasSubstr("--fixed"));
}

TEST_F(SnifferTest, SaysWhyThereAreNoColumns) {
  EXPECT_EQ(WhyNoColumns(Sniffed("")), "it is empty");
  EXPECT_EQ(WhyNoColumns(Sniffed("\xEF\xBB\xBF")), "it holds nothing but a byte-order mark");
  EXPECT_EQ(WhyNoColumns(Sniffed("\n \n\n")), "it holds nothing but blank lines");
}

TEST_F(SnifferTest, NamesThatAreValuesAsWellAreAGuess) {
  const std::string data = "red,small\nblue,large\nred,large\nblue,small\nred,small\n";
  EXPECT_EQ(Sniffed("blue,large\n" + data).verdict, Verdict::kLikely);
  EXPECT_EQ(Sniffed("blue,size\n" + data).verdict, Verdict::kGuess);
  EXPECT_EQ(Sniffed("blue,huge\n" + data).verdict, Verdict::kGuess);
}

TEST_F(SnifferTest, SmallFilesAreTaken) {
  EXPECT_EQ(Sniffed("").columns.size(), 0U);
  EXPECT_EQ(Sniffed("").firstDataLine.value, 1);
  EXPECT_EQ(Sniffed("x").columns.size(), 1U);
  EXPECT_EQ(Sniffed("\n").columns.size(), 0U);
  EXPECT_EQ(Sniffed("\xEF\xBB\xBF").columns.size(), 0U);
  EXPECT_TRUE(Sniffed("\xEF\xBB\xBF").byteOrderMark);
  const SniffResult header = Sniffed("id,name,day\n");
  EXPECT_EQ(header.headerLines.value, 1);
  EXPECT_EQ(header.firstDataLine.value, 2);
  EXPECT_FALSE(header.lastDataLine.has_value());
  EXPECT_THAT(Names(header), ElementsAre("id", "name", "day"));
}

TEST_F(SnifferTest, FilesThatAreNoTextAreNamed) {
  EXPECT_THAT(Refusal("\x89PNG\r\n\x1A\n" + std::string(100, '\x01')), HasSubstr("PNG"));
  EXPECT_THAT(Refusal(std::string("\x1F\x8B\x08\0", 4)), HasSubstr("gzip"));
  EXPECT_THAT(Refusal("\x7F"
                      "ELF" +
                      std::string(100, '\x02')),
              HasSubstr("a program"));
  EXPECT_THAT(Refusal("MZ" + std::string(100, '\x02')), HasSubstr("a program"));
  std::string noise;
  for (int i = 0; i < 4000; ++i) noise += static_cast<char>(i * 2654435761U >> 11);
  EXPECT_THAT(Refusal(noise), HasSubstr("control characters"));
}

TEST_F(SnifferTest, NulsInATextAreDropped) {
  std::string text(kPlain);
  text.insert(30, 1, '\0');
  text.insert(60, 2, '\0');
  const SniffResult result = Sniffed(text);
  EXPECT_EQ(result.delimiter.value, ",");
  EXPECT_EQ(result.columns.size(), 4U);
  EXPECT_EQ(result.firstDataLine.value, 2);
}

TEST_F(SnifferTest, PlainTextBehindManyNulsIsTaken) {
  const std::string nuls(4000, '\0');
  const SniffResult result = Sniffed(nuls + std::string(kPlain));
  EXPECT_EQ(result.delimiter.value, ",");
  EXPECT_EQ(result.columns.size(), 4U);
  EXPECT_THAT(Refusal(nuls), HasSubstr("control characters"));
  EXPECT_THAT(Refusal(nuls + std::string(90, '\xFF')), HasSubstr("control characters"));
  EXPECT_THAT(Refusal(nuls + "a\x02" + std::string(90, 'b')), HasSubstr("control characters"));
}

TEST_F(SnifferTest, MixedLineEndsAreTold) {
  const SniffResult result = Sniffed("a,b\r\n1,2\n3,4\r5,6\r\n");
  EXPECT_EQ(result.lineEnd.value, LineEnd::kMixed);
  EXPECT_EQ(result.lineEnd.evidence, "1 LF, 2 CR LF, 1 CR");
  EXPECT_EQ(result.lastDataLine, 4);
}

TEST_F(SnifferTest, OneEndlessLineIsTaken) {
  EXPECT_EQ(Sniffed(std::string(10'000'000, 'x')).columns.size(), 1U);
  EXPECT_EQ(Sniffed(std::string(5'000'000, ' ')).firstDataLine.value, 2);
  EXPECT_EQ(Sniffed(std::string(200'000, '"')).columns.size(), 1U);
}

TEST_F(SnifferTest, AHundredThousandColumnsAreTaken) {
  std::string text;
  for (int row = 0; row < 4; ++row) {
    for (int i = 0; i < 100'000; ++i) {
      if (i > 0) text += ',';
      text += row == 0 ? "c" + std::to_string(i) : std::to_string(i % 97 + row);
    }
    text += '\n';
  }
  const SniffResult result = Sniffed(text);
  EXPECT_EQ(result.columns.size(), 100'000U);
  EXPECT_EQ(result.headerLines.value, 1);
  EXPECT_EQ(result.columns.back().name, "c99999");
}

TEST_F(SnifferTest, AnOpenQuoteSpoilsItsLineOnly) {
  std::string text = "a,b\n\"1,2\n";
  for (int i = 0; i < 3000; ++i) text += std::to_string(i) + ",4\n";
  const SniffResult result = Sniffed(text);
  EXPECT_EQ(result.delimiter.value, ",");
  EXPECT_EQ(result.columns.size(), 2U);
  EXPECT_EQ(result.lineBreaksInQuotes.count, 0);
  EXPECT_NE(result.verdict, Verdict::kCertain);
}

TEST_F(SnifferTest, ALargeFileIsUnderstoodFromItsParts) {
  std::string text = "id,name,amount\n";
  for (int i = 0; text.size() < (6U << 20); ++i) {
    text += std::to_string(i) + ",name " + std::to_string(i % 7) + "," + std::to_string(i) + ".5\n";
  }
  const std::size_t dataEnd = text.size();
  text += "Source: made for this test\n";
  const SniffResult result = Sniffed(text);
  EXPECT_FALSE(result.readWhole);
  EXPECT_EQ(result.delimiter.value, ",");
  EXPECT_EQ(result.firstDataLine.value, 2);
  EXPECT_FALSE(result.lastDataLine.has_value());
  EXPECT_EQ(result.footerLines, 1);
  EXPECT_EQ(result.dataEndOffset, dataEnd);
}

TEST_F(SnifferTest, TheBeginningOfAStreamSaysNothingOfItsEnd) {
  MemorySource source(kPlain, false);
  SniffResult result;
  std::string problem;
  ASSERT_TRUE(Sniff(source, {}, &result, &problem)) << problem;
  EXPECT_FALSE(result.readWhole);
  EXPECT_FALSE(result.lastDataLine.has_value());
  EXPECT_EQ(result.firstDataLine.value, 2);
}

TEST_F(SnifferTest, AReadThatFailsIsSaid) {
  class Broken final : public ByteSource {
   public:
    std::uint64_t Size() const override { return 10; }
    bool IsWhole() const override { return true; }
    bool ReadAt(std::uint64_t, char*, std::size_t, std::size_t*, std::string* problem) override {
      *problem = "the disk is gone";
      return false;
    }
  };
  Broken source;
  SniffResult result;
  std::string problem;
  EXPECT_FALSE(Sniff(source, {}, &result, &problem));
  EXPECT_EQ(problem, "the disk is gone");
}

TEST_F(SnifferTest, TheJsonHasWhatItPromises) {
  const auto json = SniffJson("data.csv", Sniffed(kPlain));
  EXPECT_EQ(json["file"], "data.csv");
  for (const char* key :
       {"encoding", "byte_order_mark", "arrangement", "line_end", "delimiter", "qualifier",
        "escape", "multiple_blanks", "preamble_lines", "header_lines", "first_data_line",
        "last_data_line", "decimal", "line_breaks_in_quotes", "names", "columns", "confidence"}) {
    EXPECT_TRUE(json.contains(key)) << key;
  }
  EXPECT_EQ(json["arrangement"], "delimited");
  EXPECT_EQ(json["line_end"], "lf");
  EXPECT_EQ(json["escape"], "none");
  EXPECT_EQ(json["decimal"], "point");
  EXPECT_EQ(json["last_data_line"], 7);
  EXPECT_EQ(json["line_breaks_in_quotes"]["count"], 0);
  EXPECT_EQ(json["names"].size(), 4U);
  EXPECT_EQ(json["columns"][0]["name"], "id");
  EXPECT_EQ(json["columns"][0]["label"], "id");
  EXPECT_FALSE(json["columns"][0].contains("from"));
  EXPECT_EQ(json["confidence"]["verdict"], "certain");
  EXPECT_TRUE(json["confidence"]["runner_up"].is_object());
}

TEST_F(SnifferTest, TheJsonOfFixedColumnsHasTheirPlaces) {
  const auto json = SniffJson(
      "f", Sniffed("Anna Maria   Sankt Gallen   1200\nBob          New York         35\n"
                   "Carol Anne   Rome              7\nLi           San Francisco  4500\n"));
  EXPECT_EQ(json["arrangement"], "fixed");
  EXPECT_EQ(json["delimiter"], "");
  ASSERT_EQ(json["columns"].size(), 3U);
  EXPECT_EQ(json["columns"][0]["from"], 1);
  EXPECT_EQ(json["columns"][1]["from"], 14);
  EXPECT_EQ(json["columns"][2]["to"], 32);
}

}  // namespace
}  // namespace library
