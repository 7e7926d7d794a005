#include "library/outputs/CaseWriter.h"

#include <charconv>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/outputs/CaseBatch.h"
#include "library/outputs/CasesFile.h"
#include "library/testing/TestFolder.h"
#include "library/testing/TestSource.h"

namespace library {
namespace {

// The text that cases of a source give.
std::string Written(CaseFormat format, const QANT_DataSource& source,
                    const std::vector<TestCase>& cases, ValueStyle style = ValueStyle::kDisplay) {
  const TestFolder folder;
  std::string error;
  const auto file = CasesFile::Open(folder / "cases", format, &error);
  EXPECT_NE(file, nullptr) << error;
  CaseSink& sink = file->Begin(source, {.values = style});
  std::int64_t before = 0;
  for (const TestCase& one : cases) sink.Take(sink.Make(one.obs(), 1, before++));
  sink.Finish();
  file->Finish({});
  EXPECT_TRUE(file->file().Finish() && file->file().Publish());
  return folder.Text("cases");
}

TEST(CaseWriter, CsvHasAHeaderAndALineACase) {
  TestSource source;
  source.Number("id").String("town", 20).Number("fee");
  EXPECT_EQ(Written(CaseFormat::kCsv, source,
                    {TestCase(source).Set(0, 1).Set(1, "Bern").Set(2, 2.5),
                     TestCase(source).Set(0, 2).Set(2, -7)}),
            "id,town,fee\n1,Bern,2.5\n2,,-7\n");
}

TEST(CaseWriter, CsvLeavesMissingNumbersEmpty) {
  TestSource source;
  source.Number("a").Number("b");
  EXPECT_EQ(Written(CaseFormat::kCsv, source, {TestCase(source).Set(1, 1)}), "a,b\n,1\n");
}

TEST(CaseWriter, CsvQuotesOnlyWhereNeeded) {
  TestSource source;
  source.String("text", 16).String("next", 8);
  EXPECT_EQ(Written(CaseFormat::kCsv, source,
                    {TestCase(source).Set(0, "a,b").Set(1, "plain"),
                     TestCase(source).Set(0, "say \"hi\"").Set(1, "a\tb"),
                     TestCase(source).Set(0, "two\nlines").Set(1, "cr\rx"),
                     TestCase(source).Set(0, "  lead").Set(1, "'q'")}),
            "text,next\n\"a,b\",plain\n\"say \"\"hi\"\"\",a\tb\n\"two\nlines\",\"cr\rx\"\n"
            "  lead,'q'\n");
}

TEST(CaseWriter, TsvQuotesTabsAndNotCommas) {
  TestSource source;
  source.String("text", 16).Number("n");
  EXPECT_EQ(Written(CaseFormat::kTsv, source,
                    {TestCase(source).Set(0, "a,b").Set(1, 1), TestCase(source).Set(0, "a\tb")}),
            "text\tn\na,b\t1\n\"a\tb\"\t\n");
}

TEST(CaseWriter, AnEmptyFieldAloneOnItsLineIsQuoted) {
  TestSource text;
  text.String("only", 8);
  EXPECT_EQ(Written(CaseFormat::kCsv, text, {TestCase(text)}), "only\n\"\"\n");
  TestSource number;
  number.Number("only");
  EXPECT_EQ(Written(CaseFormat::kCsv, number, {TestCase(number), TestCase(number).Set(0, 1)}),
            "only\n\"\"\n1\n");
}

// A text of bytes that writers look at, and of others, each word of it in turn.
std::string RandomText(std::mt19937_64& random, std::size_t most) {
  static constexpr std::string_view kBytes = "ab  \",\t\\\n\x1F\x7F\xC3\xA9,";
  const bool plain = random() % 2 == 0;
  std::string text;
  for (std::size_t length = random() % (most + 1); length > 0; --length) {
    text += plain && random() % 16 != 0 ? static_cast<char>('a' + random() % 26)
                                        : kBytes[random() % kBytes.size()];
  }
  return text;
}

std::string_view WithoutPadding(std::string_view text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

TEST(CaseWriter, StringsOfAnyWidthAreWrittenByTheirRules) {
  const embedded::InCodePage host(nullptr);
  std::mt19937_64 random(17);
  for (int round = 0; round < 4000; ++round) {
    TestSource source;
    const std::size_t width = 1 + random() % 90;
    source.String("s", static_cast<int>(width)).String("t", 8);
    const std::string text = RandomText(random, width);
    // Broken characters are another test's.
    Utf8Converter utf8;
    if (utf8.ToUtf8(text) != text) continue;
    const std::string shown(WithoutPadding(text));
    const TestCase one = TestCase(source).Set(0, text).Set(1, "x");
    for (const auto& [format, separator] :
         {std::pair(CaseFormat::kCsv, ','), std::pair(CaseFormat::kTsv, '\t')}) {
      std::string expected = shown;
      if (shown.find_first_of(std::string("\"\r\n") + separator) != std::string::npos) {
        expected = "\"";
        for (const char character : shown) expected.append(character == '"' ? 2 : 1, character);
        expected += '"';
      }
      ASSERT_EQ(Written(format, source, {one}),
                std::string("s") + separator + "t\n" + expected + separator + "x\n");
    }
    const std::string line = Written(CaseFormat::kJsonLines, source, {one});
    ASSERT_EQ(nlohmann::json::parse(line)["s"].get<std::string>(), shown);
    ASSERT_EQ(nlohmann::json::parse(line)["t"].get<std::string>(), "x");
  }
}

TEST(CaseWriter, ManyColumnsStandOneBehindTheOther) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  std::mt19937_64 random(23);
  for (int round = 0; round < 200; ++round) {
    TestSource source;
    const std::size_t columns = 2 + random() % 60;
    std::vector<bool> isText(columns);
    for (std::size_t i = 0; i < columns; ++i) {
      // Names of any length.
      const std::string name = std::string(random() % 24, 'n') + std::to_string(i);
      isText[i] = random() % 2 == 0;
      if (isText[i]) {
        source.String(name.c_str(), static_cast<int>(1 + random() % 200));
      } else {
        source.Number(name.c_str());
      }
    }
    TestCase one(source);
    std::string csv, json = "{";
    for (std::size_t i = 0; i < columns; ++i) {
      const QANT_Variable& variable = *source.GetVariable(i);
      const std::string comma = i == 0 ? "" : ",";
      csv += comma;
      json += comma + '"' + variable.GetName() + "\":";
      if (isText[i]) {
        const std::string text =
            random() % 4 == 0
                ? std::string("\xC3\xA9")
                : std::string(random() % (static_cast<std::size_t>(variable.GetType()) + 1), 'x');
        if (text.size() > static_cast<std::size_t>(variable.GetType())) {
          json += "\"\"";
          continue;
        }
        one.Set(i, text);
        csv += text;
        json += '"' + text + '"';
      } else if (random() % 4 == 0) {
        json += "null";
      } else {
        const double value = static_cast<double>(random() % 100000000) / 4;
        one.Set(i, value);
        char digits[64];
        const std::string number(
            digits, std::to_chars(digits, std::end(digits), value, std::chars_format::fixed).ptr);
        csv += number;
        json += number;
      }
    }
    const std::string written = Written(CaseFormat::kCsv, source, {one, one});
    ASSERT_EQ(written.substr(written.find('\n') + 1), csv + '\n' + csv + '\n');
    ASSERT_EQ(Written(CaseFormat::kJsonLines, source, {one, one}), json + "}\n" + json + "}\n");
  }
}

TEST(CaseWriter, StringsLoseTheBlanksThatPadThem) {
  TestSource source;
  source.String("wide", 255).String("exact", 3).String("blank", 9);
  EXPECT_EQ(Written(CaseFormat::kCsv, source,
                    {TestCase(source).Set(0, " in the  middle ").Set(1, "abc"),
                     TestCase(source).Set(0, "x        y")}),
            "wide,exact,blank\n in the  middle,abc,\nx        y,,\n");
}

TEST(CaseWriter, AStringEndsAtItsWidth) {
  TestSource source;
  source.String("three", 3).Number("n");
  EXPECT_EQ(Written(CaseFormat::kCsv, source, {TestCase(source).Set(0, "abcdefgh").Set(1, 1)}),
            "three,n\nabc,1\n");
}

TEST(CaseWriter, ValuesAreDisplayedOrRaw) {
  TestSource source;
  source.Number("day", 20, 11, 0).Number("at", 22, 20, 0).Number("long", 25, 12, 0);
  source.Number("weekday", 26, 9, 0).Number("pct", 31, 8, 2);
  const TestCase one = TestCase(source)
                           .Set(0, 12219379200)
                           .Set(1, 12219379200 + 60)
                           .Set(2, 90000.5)
                           .Set(3, 1)
                           .Set(4, 12.5);
  EXPECT_EQ(Written(CaseFormat::kCsv, source, {one}),
            "day,at,long,weekday,pct\n1970-01-01,1970-01-01T00:01:00,25:00:00.5,1,12.5\n");
  EXPECT_EQ(Written(CaseFormat::kCsv, source, {one}, ValueStyle::kRaw),
            "day,at,long,weekday,pct\n12219379200,12219379260,90000.5,1,12.5\n");
}

TEST(CaseWriter, JsonLinesKeepTheOrderOfTheVariables) {
  TestSource source;
  source.Number("z").String("a", 16).Number("day", 20, 11, 0).Number("gone");
  EXPECT_EQ(Written(CaseFormat::kJsonLines, source,
                    {TestCase(source).Set(0, 1.5).Set(1, "x \"y\" \\ \n").Set(2, 86400)}),
            "{\"z\":1.5,\"a\":\"x \\\"y\\\" \\\\ \\n\",\"day\":\"1582-10-15\",\"gone\":null}\n");
  EXPECT_EQ(
      Written(CaseFormat::kJsonLines, source, {TestCase(source).Set(2, 86400)}, ValueStyle::kRaw),
      "{\"z\":null,\"a\":\"\",\"day\":86400,\"gone\":null}\n");
}

TEST(CaseWriter, JsonEscapesEveryControlCharacter) {
  TestSource source;
  source.String("s", 32);
  std::string text;
  for (char character = 0; character < 32; ++character) text += character;
  const std::string line = Written(CaseFormat::kJsonLines, source, {TestCase(source).Set(0, text)});
  EXPECT_EQ(line.find_first_of(text), line.size() - 1);
  EXPECT_EQ(nlohmann::json::parse(line)["s"].get<std::string>(), text);
}

TEST(CaseWriter, WithoutVariablesEveryCaseIsStillThere) {
  const TestSource source;
  EXPECT_EQ(Written(CaseFormat::kJsonLines, source, {TestCase(source), TestCase(source)}),
            "{}\n{}\n");
  EXPECT_EQ(Written(CaseFormat::kCsv, source, {TestCase(source)}), "\n\n");
}

TEST(CaseWriter, BytesThatAreNotUtf8AreReplaced) {
  const embedded::InCodePage host(nullptr);
  TestSource source;
  source.String("s", 8).String("t", 8);
  EXPECT_EQ(Written(CaseFormat::kCsv, source,
                    {TestCase(source).Set(0, "a\xFF z").Set(1, "\xC3\xA9t\xC3\xA9")}),
            "s,t\na\xEF\xBF\xBD z,\xC3\xA9t\xC3\xA9\n");
}

TEST(CaseWriter, TextOfACodePageIsWrittenAsUtf8) {
  const embedded::InCodePage page("windows-1252");
  TestSource source;
  source.String("na\xEFve", 8);
  const std::string text =
      Written(CaseFormat::kCsv, source, {TestCase(source).Set(0, "\x80 \xE9,")});
  EXPECT_EQ(text, "na\xC3\xAFve\n\"\xE2\x82\xAC \xC3\xA9,\"\n");
}

TEST(CaseBatch, HandsOverEveryCaseInOrder) {
  const TestFolder folder;
  TestSource source;
  source.Number("n").String("s", 12);
  std::string error;
  const auto file = CasesFile::Open(folder / "cases", CaseFormat::kCsv, &error);
  CaseBatch batch(source.GetObsAreaSize(), file->Begin(source, {}));
  std::string expected = "n,s\n";
  for (int number = 0; number < 20000; ++number) {
    batch.Add(TestCase(source).Set(0, number).Set(1, "text").obs());
    expected += std::to_string(number) + ",text\n";
  }
  batch.Flush();
  ASSERT_TRUE(file->file().Finish() && file->file().Publish());
  EXPECT_EQ(folder.Text("cases"), expected);
  EXPECT_GT(batch.seconds(), 0);
}

}  // namespace
}  // namespace library
