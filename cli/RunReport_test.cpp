#include "cli/RunReport.h"
#include "HostFramework/embedded/text/HostText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/DictionaryJson.h"
#include "cli/Progress.h"
#include "cli/RunStats.h"
#include "cli/testing/TestFolder.h"
#include "library/testing/TestSource.h"

#include <nlohmann/json.hpp>

namespace cli {

using library::TestCase;
using library::TestSource;
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(RunReport, ListsTheVariables) {
  TestSource source;
  source.Number("id", 5, 4, 0).String("town", 20).Number("day", 20, 11, 0);
  EXPECT_EQ(VariableTable(source),
            "Variable  Format  Width\nid        F4          4\ntown      A20        20\n"
            "day       DATE11     11\n");
}

TEST(RunReport, CutsALongDictionary) {
  TestSource source;
  for (int number = 0; number < 250; ++number)
    source.Number(("v" + std::to_string(number)).c_str());
  const std::string text = VariableTable(source);
  EXPECT_THAT(text, HasSubstr("v199 "));
  EXPECT_THAT(text, Not(HasSubstr("v200 ")));
  EXPECT_THAT(text, HasSubstr("and 50 more variables"));
}

TEST(RunReport, ShowsTheFirstCases) {
  TestSource source;
  source.Number("id").String("town", 12).Number("day", 20, 11, 0);
  FirstCases first(source, ValueStyle::kDisplay, 2, 80);
  first.Take(TestCase(source).Set(0, 10).Set(1, "Bern").Set(2, 86400).obs());
  first.Take(TestCase(source).Set(1, "a\tb").obs());
  first.Take(TestCase(source).Set(0, 3).obs());
  EXPECT_EQ(first.Text(), "id  town         day\n10  Bern  1582-10-15\n .  a\\tb           .\n");
}

TEST(RunReport, SaysWhichVariablesAreNotShown) {
  TestSource source;
  for (int number = 0; number < 500; ++number) source.Number("variable");
  FirstCases first(source, ValueStyle::kDisplay, 1, 40);
  first.Take(TestCase(source).obs());
  EXPECT_EQ(first.Text(),
            "variable  variable  variable  variable\n       .         .         .         .\n"
            "and 496 more variables (--cases writes them all)\n");
}

TEST(RunReport, ShowsNothingWhereNothingWasTaken) {
  TestSource source;
  source.Number("id");
  FirstCases none(source, ValueStyle::kDisplay, 0, 80);
  none.Take(TestCase(source).obs());
  EXPECT_EQ(none.Text(), "");
}

TEST(RunReport, Counts) {
  EXPECT_EQ(Counts(1, 1), "1 case, 1 variable");
  EXPECT_EQ(Counts(0, 2), "0 cases, 2 variables");
}

TEST(DictionaryJson, HasEveryKeyInItsOrder) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  TestSource source;
  source.Number("id", 5, 8, 2).String("t\xC3\xA9", 20);
  source.SetFileSpec("/proc/self/fd/3");
  source.GetVariable(0)->SetWriteFormat(5, 9, 3);
  source.GetVariable(1)->SetDisplayWidth(12);
  const TestFolder folder;
  std::string error;
  const auto file = OutputFile::Open(folder / "d.json", &error);
  ASSERT_NE(file, nullptr) << error;
  WriteDictionary(source, "data/a \"b\".csv", 3, *file);
  ASSERT_TRUE(file->Finish() && file->Publish());
  EXPECT_EQ(
      folder.Text("d.json"),
      "{\"file\":\"data/a \\\"b\\\".csv\",\"cases\":3,\"variables\":["
      "{\"name\":\"id\",\"type\":\"numeric\",\"format\":\"F8.2\",\"format_code\":5,\"width\":8,"
      "\"decimals\":2,\"write_format\":\"F9.3\",\"bytes\":0,\"display_width\":8},"
      "{\"name\":\"t\xC3\xA9\",\"type\":\"string\",\"format\":\"A20\",\"format_code\":1,"
      "\"width\":20,\"decimals\":0,\"write_format\":\"A20\",\"bytes\":20,"
      "\"display_width\":12}]}\n");
}

TEST(RunStats, AddsUpAndKeepsTheLargestNumberOfThreads) {
  RunStats sum;
  sum.Add({10, 2, 100, 0.5, 1, 0.25, 3});
  sum.Add({5, 3, 50, 0.5, 2, 0.25, 1});
  const std::string line = sum.Json();
  const auto json = nlohmann::ordered_json::parse(line);
  std::vector<std::string> keys;
  for (const auto& [key, value] : json.items()) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"cases", "variables", "bytes", "dictionary_seconds",
                                            "read_seconds", "write_seconds", "peak_rss_bytes",
                                            "threads"}));
  EXPECT_EQ(json["cases"], 15);
  EXPECT_EQ(json["variables"], 5);
  EXPECT_EQ(json["bytes"], 150);
  EXPECT_EQ(json["dictionary_seconds"], 1.0);
  EXPECT_EQ(json["read_seconds"], 3.0);
  EXPECT_EQ(json["write_seconds"], 0.5);
  EXPECT_EQ(json["threads"], 3);
  EXPECT_GT(json["peak_rss_bytes"], 1000000);
  EXPECT_EQ(line.find('\n'), std::string::npos);
}

TEST(Progress, TellsCasesMegabytesRateAndTheTimeLeft) {
  EXPECT_EQ(ProgressText(1200, 4000000, 100000000, 2),
            "1200 cases, 4.0 of 100.0 MB, 2.0 MB/s, 0:48 left");
  EXPECT_EQ(ProgressText(1, 1000000, 601000000, 1),
            "1 case, 1.0 of 601.0 MB, 1.0 MB/s, 10:00 left");
}

TEST(Progress, TellsCasesAloneWhereTheBytesAreNotKnown) {
  EXPECT_EQ(ProgressText(7, -1, 1000, 3), "7 cases");
}

}  // namespace
}  // namespace cli
