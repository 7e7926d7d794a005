// Records into fields by the dialect.

#include "library/sniff/RecordCutter.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace library {
namespace {

using testing::ElementsAre;

class RecordCutterTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  static Dialect Of(const char* delimiter, const char* qualifier = "\"") {
    Dialect dialect;
    dialect.delimiter = delimiter;
    dialect.qualifier = qualifier;
    return dialect;
  }
  std::vector<std::string> Cut(const Dialect& dialect, std::string_view record) {
    RecordCutter cutter(dialect);
    std::vector<RecordCutter::Field> fields;
    unfit_ = cutter.Cut(record, &fields);
    std::vector<std::string> texts;
    qualified_.clear();
    for (const RecordCutter::Field& field : fields) {
      texts.emplace_back(field.text);
      qualified_.push_back(field.qualified);
    }
    return texts;
  }

  std::size_t unfit_ = 0;
  std::vector<bool> qualified_;
};

TEST_F(RecordCutterTest, CutsAtDelimitersOutsideOfQualifiedText) {
  EXPECT_THAT(Cut(Of(","), R"(1,"a, ""b""",c)"), ElementsAre("1", "a, \"b\"", "c"));
  EXPECT_THAT(qualified_, ElementsAre(false, true, false));
}

TEST_F(RecordCutterTest, StrayQualifiersAreData) {
  EXPECT_THAT(Cut(Of(","), R"(5" pipe,He said "hi, there",x)"),
              ElementsAre("5\" pipe", "He said \"hi", " there\"", "x"));
}

TEST_F(RecordCutterTest, LineBreaksStayInQualifiedFields) {
  EXPECT_THAT(Cut(Of(","), "1,\"a\nb\",2"), ElementsAre("1", "a\nb", "2"));
}

TEST_F(RecordCutterTest, ABackslashEscapesTheQualifier) {
  Dialect dialect = Of(",");
  dialect.escape = Escape::kBackslash;
  EXPECT_THAT(Cut(dialect, R"("say \"hi\", you",2)"), ElementsAre("say \"hi\", you", "2"));
}

TEST_F(RecordCutterTest, ADelimiterAtTheEndBeginsOneMoreField) {
  EXPECT_THAT(Cut(Of(","), "a,b,"), ElementsAre("a", "b", ""));
  EXPECT_THAT(Cut(Of(","), ",,"), ElementsAre("", "", ""));
  EXPECT_THAT(Cut(Of(","), "\"a,\""), ElementsAre("a,"));
}

TEST_F(RecordCutterTest, RunsOfBlanksAreOneDelimiter) {
  Dialect dialect = Of(" ", "");
  dialect.multipleBlanks = true;
  EXPECT_THAT(Cut(dialect, "  C    0.5   1.25  "), ElementsAre("C", "0.5", "1.25"));
}

TEST_F(RecordCutterTest, ADelimiterOfSeveralCharactersTakesThemTogether) {
  EXPECT_THAT(Cut(Of("||"), "a||b||"), ElementsAre("a", "b", ""));
  EXPECT_EQ(unfit_, 0U);
  Cut(Of("||"), "a|b||c");
  EXPECT_GT(unfit_, 0U);
}

TEST_F(RecordCutterTest, FixedColumnsCountCharacters) {
  Dialect dialect;
  dialect.columns = {{1, 4}, {5, 7}, {8, 0}};
  EXPECT_THAT(Cut(dialect, "Käß 12 Ünd"), ElementsAre("Käß ", "12 ", "Ünd"));
  EXPECT_THAT(Cut(dialect, "Kä"), ElementsAre("Kä", "", ""));
}

TEST_F(RecordCutterTest, WithoutADelimiterThereIsOneField) {
  EXPECT_THAT(Cut(Of("", ""), "a,b;c"), ElementsAre("a,b;c"));
}

}  // namespace
}  // namespace library
