#include "library/report/ProblemWriter.h"

#include <iterator>
#include <random>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using testing::StartsWith;
using Kind = ImportProblemKind;

class ProblemWriterTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  std::string Written(ProblemFormat format, const std::vector<ImportProblem>& problems,
                      std::int64_t limit = 100) {
    TextSink sink;
    ProblemWriter writer(format, variables_, limit, sink);
    writer.WriteHeader();
    for (const ImportProblem& problem : problems) writer.Write(problem);
    writer.Flush();
    return sink.text;
  }
  std::vector<nlohmann::json> Rows(const std::vector<ImportProblem>& problems) {
    std::istringstream lines(Written(ProblemFormat::kJsonLines, problems));
    std::vector<nlohmann::json> rows;
    for (std::string line; std::getline(lines, line);) rows.push_back(nlohmann::json::parse(line));
    return rows;
  }

  const ReportVariables variables_ = {{"fee", "F8.2", 5, 0}, {"a \"b\", c", "A5", 1, 5}};
};

TEST_F(ProblemWriterTest, CsvHasAHeaderAndARowAProblem) {
  EXPECT_EQ(Written(ProblemFormat::kCsv, {}), "kind,case,line,byte,variable,format,text,detail\n");
  EXPECT_EQ(Written(ProblemFormat::kCsv, {Problem(Kind::kNul, -1, "a,b", 1)}),
            "kind,case,line,byte,variable,format,text,detail\n"
            "nul,1,2,10,,,\"a,b\",1 NUL byte was dropped; a file full of them is most often UTF-16 "
            "without a byte-order mark\n");
}

TEST_F(ProblemWriterTest, OfSeveralFilesTheFirstColumnNamesTheFile) {
  for (const ProblemFormat format : {ProblemFormat::kCsv, ProblemFormat::kJsonLines}) {
    TextSink sink;
    ProblemWriter writer(format, variables_, 100, sink, ProblemWriter::Files::kSeveral);
    writer.WriteHeader();
    writer.BeginFile("a,1.csv");
    writer.Write(Problem(Kind::kUnreadable, 0, "x"));
    writer.BeginFile("b.csv");
    writer.Write(Problem(Kind::kUnreadable, 0, "y"));
    writer.Flush();
    if (format == ProblemFormat::kCsv) {
      EXPECT_THAT(sink.text, StartsWith("file,kind,case,"));
      EXPECT_THAT(sink.text, testing::HasSubstr("\n\"a,1.csv\",unreadable,1,2,10,fee,F8.2,x,"));
      EXPECT_THAT(sink.text, testing::HasSubstr("\nb.csv,unreadable,1,2,10,fee,F8.2,y,"));
    } else {
      EXPECT_THAT(sink.text, StartsWith("{\"file\":\"a,1.csv\",\"kind\":\"unreadable\","));
      EXPECT_THAT(sink.text, testing::HasSubstr("\n{\"file\":\"b.csv\",\"kind\""));
    }
  }
}

TEST_F(ProblemWriterTest, CsvQuotesOnlyWhereNeeded) {
  const std::string text = Written(
      ProblemFormat::kCsv,
      {Problem(Kind::kUnreadable, 0, "say \"no\""), Problem(Kind::kCut, 1, "two words", 9)});
  EXPECT_THAT(text, testing::HasSubstr("\nunreadable,1,2,10,fee,F8.2,\"say \"\"no\"\"\",\""));
  EXPECT_THAT(text, testing::HasSubstr("\ncut,1,2,10,\"a \"\"b\"\", c\",A5,two words,\""));
}

TEST_F(ProblemWriterTest, JsonLinesHoldTheSame) {
  const auto rows = Rows({Problem(Kind::kCut, 1, "tab\there \"and\" \\", 12)});
  ASSERT_EQ(rows.size(), 1U);
  const nlohmann::json& row = rows[0];
  EXPECT_EQ(row["kind"], "cut");
  EXPECT_EQ(row["case"], 1);
  EXPECT_EQ(row["line"], 2);
  EXPECT_EQ(row["byte"], 10);
  EXPECT_EQ(row["variable"], "a \"b\", c");
  EXPECT_EQ(row["format"], "A5");
  EXPECT_EQ(row["text"], "tab\\there \"and\" \\");
  EXPECT_THAT(row["detail"].get<std::string>(), StartsWith("the text is longer than the 5 bytes"));
  EXPECT_EQ(row.size(), 8U);
}

TEST_F(ProblemWriterTest, OfARecordWithoutACaseThereIsNoCaseAndNoVariable) {
  ImportProblem problem = Problem(Kind::kIncompleteCase, -1, "1,2", 3);
  problem.caseNumber = 0;
  const auto rows = Rows({problem});
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_FALSE(rows[0].contains("case"));
  EXPECT_TRUE(rows[0]["variable"].is_null());
  EXPECT_TRUE(rows[0]["format"].is_null());
  EXPECT_THAT(Written(ProblemFormat::kCsv, {problem}),
              testing::HasSubstr("\nincomplete-case,,2,10,,,\"1,2\","));
}

TEST_F(ProblemWriterTest, WritesTheFirstRowsUpToTheLimit) {
  const std::vector<ImportProblem> three = {Problem(Kind::kNul, -1, "1", 1),
                                            Problem(Kind::kNul, -1, "2", 1),
                                            Problem(Kind::kNul, -1, "3", 1)};
  const std::string two = Written(ProblemFormat::kCsv, three, 2);
  EXPECT_EQ(std::count(two.begin(), two.end(), '\n'), 3);
  EXPECT_EQ(two.find("10,,,3,"), std::string::npos);
  EXPECT_EQ(Written(ProblemFormat::kCsv, three, 0),
            "kind,case,line,byte,variable,format,text,detail\n");
}

TEST_F(ProblemWriterTest, HandsOnRowsAsItsBufferFills) {
  TextSink sink;
  ProblemWriter writer(ProblemFormat::kCsv, variables_, 100000, sink);
  for (int count = 0; count < 5000; ++count) writer.Write(Problem(Kind::kNul, -1, "1", 1));
  EXPECT_NE(sink.text, "");
}

// However many are written at once, of however many places, new texts among known ones.
TEST_F(ProblemWriterTest, SeveralAtOnceAreWrittenAsOneByOne) {
  std::vector<std::string> texts = {"", std::string(64, 'x'), std::string(65, 'x')};
  for (int n = 0; n < 40; ++n) texts.push_back("x" + std::to_string(n * n));
  std::mt19937 random(11);
  const auto draw = [&random](std::size_t below) { return random() % below; };
  for (const ProblemFormat format : {ProblemFormat::kCsv, ProblemFormat::kJsonLines}) {
    for (const std::int64_t limit : {std::int64_t{100000}, std::int64_t{1234}}) {
      TextSink together, alone;
      ProblemWriter writer(format, variables_, limit, together);
      ProblemWriter oneByOne(format, variables_, limit, alone);
      std::int64_t line = 9000;
      for (int call = 0; call < 300; ++call) {
        // Texts come in one after another, so that some of a call are known and others are not.
        const std::size_t known =
            std::min<std::size_t>(texts.size(), 3 + static_cast<std::size_t>(call) / 6);
        std::vector<ImportProblem> problems;
        for (std::size_t count = draw(70); count > 0; --count) {
          const Kind kind = draw(8) == 0 ? Kind::kCut : Kind::kUnreadable;
          ImportProblem problem = Problem(kind, static_cast<std::int32_t>(draw(3)) - 1,
                                          texts[draw(known)], static_cast<std::int64_t>(draw(2)));
          if (draw(12) == 0) ++line;
          problem.caseNumber = problem.line = line;
          problem.byte = 10 * line + static_cast<std::int64_t>(draw(9));
          problems.push_back(problem);
        }
        writer.WriteAll(problems.data(), problems.size());
        for (const ImportProblem& problem : problems) oneByOne.Write(problem);
      }
      writer.Flush();
      oneByOne.Flush();
      EXPECT_TRUE(together.text == alone.text);
      EXPECT_GE(std::count(alone.text.begin(), alone.text.end(), '\n'), 1234);
    }
  }
}

// However often texts come again, each row is that of its own problem.
TEST_F(ProblemWriterTest, ATextThatComesAgainIsWrittenAsTheFirstTime) {
  const ReportVariables variables = {
      {"fee", "F8.2", 5, 0}, {"day", "ADATE10", 23, 0}, {"name", "A5", 1, 5}};
  constexpr Kind kKinds[] = {Kind::kUnreadable,  Kind::kRounded,   Kind::kCut,
                             Kind::kUndecodable, Kind::kOpenQuote, Kind::kShortRecord,
                             Kind::kSurplus};
  std::vector<std::string> texts = {"", std::string(63, 'x'), std::string(64, 'x'),
                                    std::string(65, 'x')};
  for (int n = 0; n < 9000; ++n) texts.push_back("x\"" + std::to_string(n));
  std::mt19937 random(7);
  const auto draw = [&random](std::size_t below) { return random() % below; };
  for (const ProblemFormat format : {ProblemFormat::kCsv, ProblemFormat::kJsonLines}) {
    TextSink written, expected;
    ProblemWriter writer(format, variables, 100000, written);
    ProblemRows rows(variables);
    for (int n = 0; n < 30000; ++n) {
      // Most are one of a few.
      const std::string& text = texts[draw(n % 3 == 0 ? texts.size() : 12)];
      ImportProblem problem =
          Problem(kKinds[draw(std::size(kKinds))], static_cast<std::int32_t>(draw(4)) - 1, text,
                  static_cast<std::int64_t>(1 + draw(2)));
      problem.caseNumber = n;
      problem.line = n + 2;
      problem.byte = 40 * n;
      writer.Write(problem);
      // Another writer meets nothing twice.
      ProblemWriter once(format, variables, 1, expected);
      once.WriteRow(rows.Of(problem));
      once.Flush();
    }
    writer.Flush();
    EXPECT_TRUE(written.text == expected.text);
  }
}

}  // namespace
}  // namespace library
