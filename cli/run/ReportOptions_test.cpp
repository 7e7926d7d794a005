#include "cli/run/ReportOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cli {
namespace {

using library::ProblemFormat;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

ReportOptions Parsed(std::vector<std::string> arguments) {
  ReportOptions options;
  CLI::App app;
  AddReportOptions(app, options);
  // Taken from the back.
  std::reverse(arguments.begin(), arguments.end());
  app.parse(arguments);
  return options;
}

TEST(ReportOptions, WithoutAnyAreTheContracts) {
  const ReportOptions options = Parsed({});
  EXPECT_EQ(options.problemLimit, 1000000);
  EXPECT_TRUE(options.problems.empty());
  EXPECT_TRUE(options.rejects.empty());
  EXPECT_FALSE(options.strict || options.explain || options.digest || options.verify);
  EXPECT_FALSE(options.keepStrayQualifiers);
  EXPECT_THAT(options.nullTexts, ElementsAre("NA", "N/A", "NULL", "null", "NaN", "nan", ".", "-"));
  EXPECT_EQ(WhatIsWrong(options), "");
}

TEST(ReportOptions, AreTaken) {
  const ReportOptions options =
      Parsed({"--problems", "p.csv", "--problem-limit", "5", "--rejects", "r.txt", "--strict",
              "--explain", "--digest", "--verify", "--keep-stray-qualifiers"});
  EXPECT_EQ(options.problems, "p.csv");
  EXPECT_EQ(options.problemLimit, 5);
  EXPECT_EQ(options.rejects, "r.txt");
  EXPECT_TRUE(options.strict && options.explain && options.digest && options.verify);
  EXPECT_TRUE(options.keepStrayQualifiers);
}

TEST(ReportOptions, NullTextsStandBetweenCommas) {
  EXPECT_THAT(Parsed({"--null", "-99,none, x"}).nullTexts, ElementsAre("-99", "none", " x"));
  EXPECT_THAT(Parsed({"--null", "a,,b,"}).nullTexts, ElementsAre("a", "b"));
  EXPECT_THAT(Parsed({"--null", ""}).nullTexts, IsEmpty());
}

TEST(ReportOptions, TheEndingNamesTheFormatUnlessItIsGiven) {
  EXPECT_EQ(ProblemFormatOf(Parsed({"--problems", "p.csv"})), ProblemFormat::kCsv);
  EXPECT_EQ(ProblemFormatOf(Parsed({"--problems", "P.JSONL"})), ProblemFormat::kJsonLines);
  EXPECT_EQ(ProblemFormatOf(Parsed({"--problems", "-"})), ProblemFormat::kCsv);
  EXPECT_EQ(ProblemFormatOf(Parsed({"--problems", "p.csv", "--problems-format", "jsonl"})),
            ProblemFormat::kJsonLines);
  EXPECT_THAT(WhatIsWrong(Parsed({"--problems", "p.txt"})), HasSubstr("--problems-format"));
  EXPECT_EQ(WhatIsWrong(Parsed({"--problems", "p.txt", "--problems-format", "csv"})), "");
  EXPECT_EQ(WhatIsWrong(Parsed({"--problems-format", "csv"})),
            "--problems-format needs --problems");
}

TEST(ReportOptions, WrongValuesAreRefused) {
  EXPECT_THROW(Parsed({"--problem-limit", "-1"}), CLI::ParseError);
  EXPECT_THROW(Parsed({"--problems-format", "xml"}), CLI::ParseError);
}

}  // namespace
}  // namespace cli
