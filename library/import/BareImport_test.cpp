#include "library/import/BareImport.h"

#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/command/CommandText.h"
#include "library/import/CommandImport.h"
#include "library/import/RemarkText.h"
#include "library/import/RunLine.h"
#include "library/import/testing/KeptErrors.h"
#include "library/outputs/CaseWriter.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Keeps the cases as texts, "." where a number is missing.
class CaseTexts : public CaseReceiver {
 public:
  void Begin(const QANT_DataSource& source) override {
    columns_ = ColumnsOf(source, ValueStyle::kDisplay);
  }
  void Take(const OBS* obs) override {
    std::vector<std::string> texts;
    Utf8Converter hostText;
    for (const CaseColumn& column : columns_) {
      if (column.kind == ValueKind::kString) {
        texts.emplace_back(hostText.ToUtf8(StringAt(obs, column)));
      } else if (const double value = NumberAt(obs, column); IsMissing(value)) {
        texts.emplace_back(".");
      } else {
        char room[kValueTextRoom];
        texts.emplace_back(room, WriteValue(room, value, column.kind));
      }
    }
    cases.push_back(std::move(texts));
  }
  std::vector<std::vector<std::string>> cases;

 private:
  std::vector<CaseColumn> columns_;
};

class ABareImport : public testing::Test {
 protected:
  ABareImport() { settings_.nulls = DefaultNullTexts(); }
  ~ABareImport() override {
    embedded::SetCodePage(nullptr);
    SetHost({}, &problem_);
    embedded::ClearAttention();
  }

  bool Understand(const std::string& text, const std::string& name = "data.csv") {
    embedded::SetCodePage(nullptr);
    return UnderstandFile(folder_.Write(name, text), files_, settings_, &import_, &problem_);
  }
  // Runs the command that came of it.
  std::vector<std::vector<std::string>> Cases() {
    embedded::CommandReader reader(import_.command);
    embedded::ParsedCommand command;
    EXPECT_TRUE(reader.Next(command) && command.ok) << command.error << "\n" << import_.command;
    KeptErrors messages;
    WatchSettings watching;
    watching.keepStrayQualifiers = import_.rewriting.keepStrayQualifiers;
    watching.nullTexts = settings_.nulls;
    ImportWatch watch(watching);
    ImportOptions options;
    options.watch = &watch;
    options.rewriting = import_.rewriting;
    options.shownMark = import_.shownMark;
    options.standIns = import_.standIns;
    options.files = &files_;
    CommandImport run(options, messages);
    EXPECT_EQ(run.Open(command.tokens), ImportEnd::kDone);
    EXPECT_THAT(messages.errors, IsEmpty()) << import_.command;
    if (!messages.errors.empty()) return {};
    watch.Prepare(run.source(), {}, {});
    CaseTexts receiver;
    EXPECT_EQ(run.Read(receiver), ImportEnd::kDone);
    return receiver.cases;
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const BareColumn& column : import_.columns) names.push_back(column.name);
    return names;
  }
  std::vector<std::string> Formats() const {
    std::vector<std::string> formats;
    for (const BareColumn& column : import_.columns) {
      formats.push_back(FormatText(column.type.format));
    }
    return formats;
  }

  TestFolder folder_;
  InputFiles files_;
  BareImportSettings settings_;
  BareImport import_;
  std::string problem_;
};

constexpr char kTowns[] =
    "id,visited,town,income\n"
    "1,2020-01-02,Rome,1200.50\n"
    "2,2020-01-03,Oslo,NA\n"
    "3,2020-02-28,Bern,800.25\n";

TEST_F(ABareImport, IsACommandOfExplicitFormatsThatReadsEveryValue) {
  ASSERT_TRUE(Understand(kTowns)) << problem_;
  EXPECT_THAT(Names(), ElementsAre("id", "visited", "town", "income"));
  EXPECT_THAT(Formats(), ElementsAre("F1", "SDATE10", "A4", "F7.2"));
  EXPECT_THAT(import_.command, Not(HasSubstr("AUTO")));
  EXPECT_THAT(import_.command, HasSubstr("/FIRSTCASE=2\n"));
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("1", "2020-01-02", "Rome", "1200.5"),
                                   ElementsAre("2", "2020-01-03", "Oslo", "."),
                                   ElementsAre("3", "2020-02-28", "Bern", "800.25")));
  EXPECT_EQ(import_.summary.records, 3);
  EXPECT_EQ(RunLine(RunOptionsFor(import_, settings_.nulls), "import.sps"),
            "textwizard run import.sps");
}

TEST_F(ABareImport, NamesAreMadeValidAndKeepTheHeaderAsLabel) {
  ASSERT_TRUE(Understand("Full name,Full-name,2nd,delimiters\nAda,x,1,5\nBob,y,2,6\nEve,z,3,7\n"));
  EXPECT_THAT(Names(), ElementsAre("Full_name", "Full_name_2", "V2nd", "delimiters_1"));
  std::vector<std::string> labels;
  for (const BareColumn& column : import_.columns) labels.push_back(column.label);
  EXPECT_THAT(labels, ElementsAre("Full name", "Full-name", "2nd", "delimiters"));
  EXPECT_EQ(Cases().size(), 3U);
}

TEST_F(ABareImport, TakesNamesAndTypesThatAreGiven) {
  settings_.names = {"a", "b", "c", "d"};
  settings_.types = {{"A", "a5"}, {"d", "F12.3"}, {"b", "SDATE"}};
  ASSERT_TRUE(Understand(kTowns)) << problem_;
  EXPECT_THAT(Names(), ElementsAre("a", "b", "c", "d"));
  EXPECT_THAT(Formats(), ElementsAre("A5", "SDATE10", "A4", "F12.3"));
  EXPECT_TRUE(import_.columns[0].typeGiven);
  EXPECT_FALSE(import_.columns[2].typeGiven);
  EXPECT_EQ(Cases()[1], (std::vector<std::string>{"2", "2020-01-03", "Oslo", "."}));
}

TEST_F(ABareImport, RefusesNamesAndTypesThatCannotBe) {
  settings_.names = {"a", "b"};
  EXPECT_FALSE(Understand(kTowns));
  EXPECT_EQ(problem_, "2 names are given for 4 columns");
  settings_.names = {"a", "A", "c", "d"};
  EXPECT_FALSE(Understand(kTowns));
  EXPECT_EQ(problem_, "the name A is given twice");
  settings_.names = {"a", "1 b", "c", "d"};
  EXPECT_FALSE(Understand(kTowns));
  EXPECT_EQ(problem_, "1 b cannot be the name of a variable");
  settings_.names.clear();
  settings_.types = {{"nowhere", "F8"}};
  EXPECT_FALSE(Understand(kTowns));
  EXPECT_EQ(problem_, "there is no column nowhere");
  settings_.types = {{"id", "AUTO"}};
  EXPECT_FALSE(Understand(kTowns));
  EXPECT_EQ(problem_, "AUTO is no format that a column can have");
}

TEST_F(ABareImport, AGivenFormatThatCannotReadAValueSaysWhich) {
  settings_.types = {{"town", "F8.2"}};
  ASSERT_TRUE(Understand(kTowns)) << problem_;
  ASSERT_EQ(import_.columns[2].type.remarks.size(), 1U);
  const ColumnRemark& remark = import_.columns[2].type.remarks[0];
  EXPECT_EQ(remark.kind, ColumnRemark::kUnreadable);
  EXPECT_EQ(remark.values.count, 3);
  EXPECT_EQ(remark.values.line, 2);
  EXPECT_EQ(remark.values.text, "Rome");
}

TEST_F(ABareImport, FootersAreLeftOutByFirst) {
  ASSERT_TRUE(Understand("id,amount\n1,10\n2,20\n3,30\n4,40\nTotal,100\n")) << problem_;
  EXPECT_EQ(import_.sniff.footerLines, 1);
  EXPECT_THAT(import_.command, HasSubstr("/IMPORTCASE=FIRST 4\n"));
  EXPECT_THAT(Formats(), ElementsAre("F1", "F2"));
  EXPECT_EQ(Cases().size(), 4U);
}

TEST_F(ABareImport, LineBreaksWithinQuotesStayInTheValue) {
  ASSERT_TRUE(Understand("id,note\n1,\"two\nlines\"\n2,plain\n3,\"a\r\nb \"\"c\"\"\"\n"))
      << problem_;
  EXPECT_TRUE(import_.rewriting.joinQuotedLines);
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("1", "two\nlines"), ElementsAre("2", "plain"),
                                   ElementsAre("3", "a\r\nb \"c\"")));
  EXPECT_EQ(RunLine(RunOptionsFor(import_, settings_.nulls), "import.sps"),
            "textwizard run import.sps --join-quoted-lines");
}

TEST_F(ABareImport, StandInsAreNoCharactersOfTheFile) {
  ASSERT_TRUE(Understand("id,note\n1,\"two\nlines\"\n2,\"a\x01\x02\"\n3,\"b\nc\"\n")) << problem_;
  ASSERT_TRUE(import_.standIns.has_value());
  EXPECT_NE(import_.standIns->lineFeed, '\x01');
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("1", "two\nlines"), ElementsAre("2", "a\x01\x02"),
                                   ElementsAre("3", "b\nc")));
}

TEST_F(ABareImport, BackslashEscapes) {
  ASSERT_TRUE(Understand("id,note\n1,\"a \\\"b\\\" c\"\n2,\"d\"\n3,\"say \\\"e\\\"\"\n"))
      << problem_;
  EXPECT_TRUE(import_.rewriting.backslashEscapes);
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("1", "a \"b\" c"), ElementsAre("2", "d"),
                                   ElementsAre("3", "say \"e\"")));
}

TEST_F(ABareImport, AQualifierInTheMiddleOfAFieldIsData) {
  ASSERT_TRUE(
      Understand("id,note,size\n1,He said \"hi\" there,\"1,5\"\n2,5\" pipe,\"2,5\"\n"
                 "3,\"x\",\"3,5\"\n"))
      << problem_;
  EXPECT_TRUE(import_.rewriting.keepStrayQualifiers);
  const auto cases = Cases();
  ASSERT_EQ(cases.size(), 3U);
  EXPECT_EQ(cases[0][1], "He said \"hi\" there");
  EXPECT_EQ(cases[1][1], "5\" pipe");
  EXPECT_EQ(cases[2][1], "x");
}

TEST_F(ABareImport, TheDecimalCommaIsTheHosts) {
  ASSERT_TRUE(Understand("id;amount\n1;1,5\n2;22,75\n3;100,25\n")) << problem_;
  EXPECT_EQ(import_.host.decimal, DecimalCharacter::kComma);
  EXPECT_EQ(import_.types.decimalWitness.line, 2);
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("1", "1.5"), ElementsAre("2", "22.75"),
                                   ElementsAre("3", "100.25")));
  EXPECT_EQ(RunLine(RunOptionsFor(import_, settings_.nulls), "import.sps"),
            "textwizard run import.sps --decimal comma");
}

TEST_F(ABareImport, DayFirstIsDecidedByTheWholeColumn) {
  std::string text = "id,day\n";
  for (int line = 1; line <= 40; ++line) text += std::to_string(line) + ",01/02/2019\n";
  ASSERT_TRUE(Understand(text + "41,31/12/2019\n")) << problem_;
  EXPECT_THAT(Formats(), ElementsAre("F2", "EDATE10"));
  EXPECT_EQ(Cases()[0][1], "2019-02-01");
  // Nothing says it: read month first, and told.
  ASSERT_TRUE(Understand(text)) << problem_;
  EXPECT_THAT(Formats(), ElementsAre("F2", "ADATE10"));
  ASSERT_EQ(import_.columns[1].type.remarks.size(), 1U);
  EXPECT_EQ(import_.columns[1].type.remarks[0].kind, ColumnRemark::kDayOrMonth);
  ASSERT_TRUE(import_.columns[1].type.remarks[0].other.has_value());
  EXPECT_EQ(FormatText(*import_.columns[1].type.remarks[0].other), "EDATE10");
}

TEST_F(ABareImport, AFileInACodePageIsReadByItsLocale) {
  ASSERT_TRUE(
      Understand("id,town\n1,K\xF6ln\n2,M\xFCnchen\n3,D\xFCsseldorf\n4,N\xFCrnberg\n"
                 "5,Z\xFCrich\n6,Gen\xE8ve\n"))
      << problem_;
  EXPECT_FALSE(import_.host.localeCodePage.empty());
  EXPECT_THAT(import_.command, HasSubstr("/ENCODING='LOCALE'"));
  EXPECT_EQ(Cases()[1][1], "M\xC3\xBCnchen");
}

TEST_F(ABareImport, Utf16WithoutAMarkIsShownWithOne) {
  std::string text;
  for (const char* at = kTowns; *at != '\0'; ++at) text += {*at, '\0'};
  ASSERT_TRUE(Understand(text)) << problem_;
  EXPECT_EQ(import_.shownMark, "\xFF\xFE");
  const auto cases = Cases();
  ASSERT_EQ(cases.size(), 3U);
  EXPECT_EQ(cases[2], (std::vector<std::string>{"3", "2020-02-28", "Bern", "800.25"}));
  EXPECT_THAT(RunLine(RunOptionsFor(import_, settings_.nulls), "import.sps"),
              HasSubstr("--byte-order-mark utf-16le"));
}

TEST_F(ABareImport, WhatNoCommandCanNameIsConverted) {
  std::string text;
  for (const char* at = kTowns; *at != '\0'; ++at) text += {*at, '\0', '\0', '\0'};
  ASSERT_TRUE(Understand(text)) << problem_;
  EXPECT_EQ(import_.transcoding, "UTF-32LE");
  EXPECT_EQ(import_.sniff.encoding.value, "UTF-32LE");
  EXPECT_EQ(import_.sniff.fileSize, text.size());
  EXPECT_THAT(import_.sniff.encoding.evidence, HasSubstr("converted to UTF-8"));
  EXPECT_THAT(import_.command, HasSubstr("/ENCODING='UTF8'"));
  const auto cases = Cases();
  ASSERT_EQ(cases.size(), 3U);
  EXPECT_EQ(cases[2], (std::vector<std::string>{"3", "2020-02-28", "Bern", "800.25"}));
  EXPECT_EQ(RunLine(RunOptionsFor(import_, settings_.nulls), "import.sps"),
            "textwizard run import.sps --transcode UTF-32LE");
}

TEST_F(ABareImport, FixedColumnsCountCharacters) {
  settings_.sniff.fixed = {{1, 6}, {7, 9}};
  ASSERT_TRUE(Understand("K\xC3\xB6ln   12\nBern   345\nZ\xC3\xBCrich  7\n")) << problem_;
  EXPECT_FALSE(import_.countsBytes);
  EXPECT_FALSE(import_.host.codePage.empty());
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("K\xC3\xB6ln", "12"), ElementsAre("Bern", "34"),
                                   ElementsAre("Z\xC3\xBCrich", "7")));
}

// No code page has all these letters.
TEST_F(ABareImport, FixedColumnsCountCharactersOfAnyScript) {
  settings_.sniff.fixed = {{1, 4}, {5, 9}, {10, 0}};
  settings_.sniff.header = false;
  const std::string text =
      "\xE6\x9D\xB1\xE4\xBA\xAC     121.5\nBern  345-7\n\xF0\x9F\x98\x80\xC5\x81\xC3\xA5"
      "     7.25\n";
  ASSERT_TRUE(Understand(text)) << problem_;
  EXPECT_FALSE(import_.countsBytes);
  EXPECT_THAT(import_.host.codePage, IsEmpty());
  EXPECT_THAT(Formats(), ElementsAre("A8", "F5", "F5.2"));
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("\xE6\x9D\xB1\xE4\xBA\xAC", "12", "1.5"),
                                   ElementsAre("Bern", "345", "-7"),
                                   ElementsAre("\xF0\x9F\x98\x80\xC5\x81\xC3\xA5", "7", "0.25")));
  EXPECT_EQ(RunLine(RunOptionsFor(import_, settings_.nulls), "import.sps"),
            "textwizard run import.sps --pad-columns 5,10");
  EXPECT_THAT(RemarksOf(import_), Contains(HasSubstr("columns count characters")));
}

TEST_F(ABareImport, PaddedColumnsBeginBehindWhatStandsAboveThem) {
  std::string text = "A survey of \xE6\x9D\xB1\xE4\xBA\xAC, and of others\n\n";
  const std::string names[] = {"\xE6\x9D\xB1\xE4\xBA\xAC  ",
                               "\xC5\x81\xC3\xB3"
                               "d  ",
                               "\xC3\xA5rhus"};
  for (int i = 0; i < 60; ++i) {
    text += names[i % 3] + (i % 2 == 0 ? "     12  2020-01-02\n" : "    345  2021-11-12\n");
  }
  ASSERT_TRUE(Understand(text)) << problem_;
  ASSERT_FALSE(import_.paddedAt.empty());
  EXPECT_EQ(import_.sniff.firstDataLine.value, 3);
  const auto cases = Cases();
  ASSERT_EQ(cases.size(), 60U);
  EXPECT_THAT(cases[0], ElementsAre("\xE6\x9D\xB1\xE4\xBA\xAC", "12", "2020-01-02"));
  EXPECT_THAT(cases[59], ElementsAre("\xC3\xA5rhus", "345", "2021-11-12"));
}

// A sample has only some of its lines.
TEST_F(ABareImport, FixedColumnsAreThoseOfAllLines) {
  constexpr int kLines = 300'000;
  constexpr int kLong = 200'123;
  std::string text;
  for (int i = 0; i < kLines; ++i) {
    const std::string number = i % 5 == 0 ? "" : std::to_string(i % 1000);
    text += i == kLong
                ? "Averylongtownof    12    7.5\n"
                : fmt::format("Town{:02}       {:>8}  {:5}\n", i % 100, number, i % 7 + 0.25);
  }
  ASSERT_TRUE(Understand(text)) << problem_;
  ASSERT_FALSE(import_.sniff.readWhole);
  EXPECT_THAT(import_.sniff.arrangement.evidence, HasSubstr("borders moved"));
  const auto cases = Cases();
  ASSERT_EQ(cases.size(), std::size_t{kLines});
  EXPECT_THAT(cases[kLong], ElementsAre("Averylongtownof", "12", "7.5"));
  EXPECT_THAT(cases[kLines - 1], ElementsAre("Town99", "999", "0.25"));
}

TEST_F(ABareImport, TheLastFixedColumnIsAsWideAsItsLongestValue) {
  std::string text;
  for (int i = 0; i < 120; ++i) text += "  12  red\nBern   7  blue\n";
  text.replace(text.rfind("blue"), 4, "a very long colour");
  ASSERT_TRUE(Understand(text)) << problem_;
  EXPECT_EQ(Formats().back(), "A18");
  EXPECT_EQ(Cases().back().back(), "a very long colour");
}

TEST_F(ABareImport, FixedColumnsOfUtf16CountCharacters) {
  settings_.sniff.fixed = {{1, 6}, {7, 9}};
  std::string text = "\xFE\xFF";
  for (const char16_t unit :
       std::u16string(u"\u041A\u0438\u0435\u0432   12\n\u041E\u0448    345\n")) {
    text += static_cast<char>(unit >> 8);
    text += static_cast<char>(unit & 0xFF);
  }
  ASSERT_TRUE(Understand(text)) << problem_;
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("\u041A\u0438\u0435\u0432", "12"),
                                   ElementsAre("\u041E\u0448", "345")));
}

TEST_F(ABareImport, ADelimiterOfTwoCharactersBecomesSkippedFields) {
  settings_.sniff.delimiter = "::";
  ASSERT_TRUE(Understand("a::b::c\n1::x::2.5\n2::y::3.5\n")) << problem_;
  EXPECT_THAT(Names(), ElementsAre("a", "b", "c"));
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("1", "x", "2.5"), ElementsAre("2", "y", "3.5")));
}

TEST_F(ABareImport, TypesOfASampleAreOfItsLinesOnly) {
  settings_.sampleLines = 4;
  ASSERT_TRUE(Understand("town,x\nRome,5\nOslo,6\nBern,7\nParis,word\n")) << problem_;
  EXPECT_THAT(Formats(), ElementsAre("A4", "F1"));
  EXPECT_EQ(Cases().size(), 4U) << "all cases are read";
}

TEST_F(ABareImport, AFirstLookReadsTheSampleAndSniffsTheWhole) {
  std::string text = "id,note\n";
  for (int i = 0; i < 300; ++i) text += std::to_string(i % 10) + ",\"a b\"\n";
  text += "1234567,\"two\nlines\"\n";
  settings_.firstLook = true;
  settings_.sampleLines = 50;
  ASSERT_TRUE(Understand(text)) << problem_;
  EXPECT_EQ(FormatText(import_.columns[0].type.format), "F1");
  EXPECT_EQ(import_.summary.records, 49);
  EXPECT_EQ(import_.sniff.lineBreaksInQuotes.count, 1);
  EXPECT_TRUE(import_.rewriting.joinQuotedLines);
}

TEST_F(ABareImport, ASkippedColumnIsCountedAndLeftOut) {
  settings_.types = {{"b", "X"}};
  ASSERT_TRUE(Understand("a,b,c\n1,x,3\n4,y,6\n")) << problem_;
  EXPECT_TRUE(import_.columns[1].skipped);
  EXPECT_EQ(import_.summary.columns[1].values(), 2);
  EXPECT_THAT(import_.command, HasSubstr("a F1\n    b X1\n    c F1."));
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("1", "3"), ElementsAre("4", "6")));
}

TEST_F(ABareImport, ASkippedFixedColumnIsNotNamed) {
  settings_.sniff.fixed = {{1, 2}, {3, 5}, {6, 7}};
  settings_.names = {"a", "b", "c"};
  settings_.types = {{"b", "x"}};
  ASSERT_TRUE(Understand("12abc34\n56def78\n")) << problem_;
  EXPECT_THAT(import_.command, Not(HasSubstr(" b ")));
  EXPECT_THAT(Cases(), ElementsAre(ElementsAre("12", "34"), ElementsAre("56", "78")));
}

TEST_F(ABareImport, TellsWhatItKnowsSoFar) {
  std::string text = "id,name\n";
  for (int i = 0; text.size() < (std::size_t{24} << 20); ++i) {
    text += std::to_string(i) + ",some name that is rather long\n";
  }
  std::int64_t told = 0;
  settings_.grown = [&](const BareImport& soFar) {
    EXPECT_GT(soFar.summary.records, told);
    told = soFar.summary.records;
    EXPECT_EQ(soFar.columns.size(), 2U);
    EXPECT_EQ(FormatText(soFar.columns[1].type.format), "A29");
  };
  ASSERT_TRUE(Understand(text)) << problem_;
  EXPECT_GE(import_.summary.records, told);
}

TEST_F(ABareImport, NullTextsAreGiven) {
  settings_.nulls = {"-99", "none"};
  ASSERT_TRUE(Understand("id,x\n1,5\n2,-99\n3,none\n4,7\n")) << problem_;
  EXPECT_THAT(Formats(), ElementsAre("F1", "F1"));
  EXPECT_EQ(Cases()[1][1], ".");
  EXPECT_THAT(RunLine(RunOptionsFor(import_, settings_.nulls), "my file.sps"),
              "textwizard run 'my file.sps' --null -99,none");
}

TEST_F(ABareImport, AFileThatIsNoTextIsNamed) {
  EXPECT_FALSE(Understand(""));
  EXPECT_NE(problem_, "");
  EXPECT_FALSE(Understand("\x89PNG\r\n\x1A\n" + std::string(100, '\0'), "a.png"));
  EXPECT_THAT(problem_, HasSubstr("PNG"));
  EXPECT_FALSE(UnderstandFile(folder_ / "missing.csv", files_, settings_, &import_, &problem_));
  EXPECT_NE(problem_, "");
}

TEST_F(ABareImport, TheUserMayInterrupt) {
  embedded::RequestAttention();
  EXPECT_FALSE(Understand(kTowns));
  EXPECT_EQ(problem_, "");
}

}  // namespace
}  // namespace library
