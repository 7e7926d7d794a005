// What `textwizard run` writes: cases, dictionary, messages.

#include <sstream>

#include <gmock/gmock.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class RunOutputs : public ProgramTest {
 protected:
  void SetUp() override { WriteTowns(); }
};

constexpr char kCsv[] =
    "id,town,founded,fee\n1,Bern,1891-05-15,2.5\n2,\"Chur, Graubuenden\",,1000000\n"
    "3,Olten,2020-01-31,\n";

TEST_F(RunOutputs, CasesAreCsvByTheEnding) {
  const Ended ended = Quiet(Towns(), {"--cases", "out.csv"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, IsEmpty());
  EXPECT_THAT(ended.err, IsEmpty());
  EXPECT_EQ(folder_.Text("out.csv"), kCsv);
  // The data and the cases, and nothing that was unfinished.
  EXPECT_EQ(folder_.Count(), 2U);
}

TEST_F(RunOutputs, CasesAreTsvByTheEnding) {
  ASSERT_EQ(Quiet(Towns(), {"--cases", "out.tsv"}).status, 0);
  EXPECT_EQ(folder_.Text("out.tsv"),
            "id\ttown\tfounded\tfee\n1\tBern\t1891-05-15\t2.5\n2\tChur, Graubuenden\t\t1000000\n"
            "3\tOlten\t2020-01-31\t\n");
}

TEST_F(RunOutputs, CasesAreJsonLinesByTheEnding) {
  ASSERT_EQ(Quiet(Towns(), {"--cases", "out.jsonl"}).status, 0);
  EXPECT_EQ(folder_.Text("out.jsonl"),
            "{\"id\":1,\"town\":\"Bern\",\"founded\":\"1891-05-15\",\"fee\":2.5}\n"
            "{\"id\":2,\"town\":\"Chur, Graubuenden\",\"founded\":null,\"fee\":1000000}\n"
            "{\"id\":3,\"town\":\"Olten\",\"founded\":\"2020-01-31\",\"fee\":null}\n");
}

TEST_F(RunOutputs, TheFormatThatWasAskedForWins) {
  ASSERT_EQ(Quiet(Towns(), {"--cases", "out.txt", "--format", "csv"}).status, 0);
  EXPECT_EQ(folder_.Text("out.txt"), kCsv);
}

TEST_F(RunOutputs, RawValuesAreNumbers) {
  ASSERT_EQ(Quiet(Towns(), {"--cases", "out.csv", "--values", "raw"}).status, 0);
  // 1891-05-15 is 28,720 days before 1970-01-01, and 2020-01-31 is 18,292 days after it;
  // 1970-01-01 is day 141,428.
  EXPECT_EQ(folder_.Text("out.csv"),
            "id,town,founded,fee\n1,Bern,9737971200,2.5\n2,\"Chur, Graubuenden\",,1000000\n"
            "3,Olten,13799808000,\n");
}

TEST_F(RunOutputs, TimesAndDateTimesAreIso) {
  folder_.Write("t.csv", "31-JAN-2020 23:59:58.5,36:30,-0:00:01.5,2 03:04:05,MON,Feb\n");
  const char* command =
      "GET DATA /TYPE=TXT /FILE='t.csv' /DELCASE=LINE /DELIMITERS=','"
      " /VARIABLES=at DATETIME23.2 clock TIME11.2 before TIME11.2 stay DTIME15.2 day WKDAY9"
      " month MONTH9.";
  ASSERT_EQ(Quiet(command, {"--cases", "out.csv"}).status, 0);
  EXPECT_EQ(folder_.Text("out.csv"),
            "at,clock,before,stay,day,month\n"
            "2020-01-31T23:59:58.5,36:30:00,-0:00:01.5,51:04:05,2,2\n");
}

TEST_F(RunOutputs, CasesGoToStandardOutput) {
  const Ended ended = Quiet(Towns(), {"--cases", "-"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, kCsv);
  EXPECT_THAT(ended.err, IsEmpty());
}

TEST_F(RunOutputs, NothingElseMixesWithCasesOnStandardOutput) {
  folder_.Write("command.sps", Towns("/MAP"));
  const Ended ended = Run({"run", "command.sps", "--cases", "-", "--format", "csv"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, kCsv);
  EXPECT_THAT(ended.err, HasSubstr("4 variables and 3 cases written."));
}

TEST_F(RunOutputs, TheDictionaryHasEveryKey) {
  ASSERT_EQ(Quiet(Towns(), {"--dictionary", "d.json"}).status, 0);
  const auto dictionary = Json("d.json");
  EXPECT_THAT(dictionary["file"].get<std::string>(), EndsWith("town.csv"));
  EXPECT_EQ(dictionary["cases"], 3);
  ASSERT_EQ(dictionary["variables"].size(), 4U);
  EXPECT_EQ(dictionary["variables"][0],
            nlohmann::json::parse(R"({"name":"id","type":"numeric","format":"F4","format_code":5,
              "width":4,"decimals":0,"write_format":"F4","bytes":0,"display_width":8})"));
  EXPECT_EQ(dictionary["variables"][1]["type"], "string");
  EXPECT_EQ(dictionary["variables"][1]["format"], "A20");
  EXPECT_EQ(dictionary["variables"][1]["bytes"], 20);
  EXPECT_EQ(dictionary["variables"][2]["format"], "ADATE10");
  EXPECT_EQ(dictionary["variables"][2]["format_code"], 23);
  EXPECT_EQ(dictionary["variables"][3]["format"], "F8.2");
  EXPECT_THAT(folder_.Text("d.json"), testing::StartsWith("{\"file\":\""));
}

TEST_F(RunOutputs, TheDictionaryGoesToStandardOutput) {
  const Ended ended = Quiet(Towns(), {"--dictionary", "-"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(nlohmann::json::parse(ended.out)["cases"], 3);
}

TEST_F(RunOutputs, TheDictionaryNamesTheFileAsTheCommandDoes) {
  folder_.Write("piped.sps",
                "GET DATA /TYPE=TXT /FILE='-' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=n F4.0.");
  const Ended ended = Run({"run", "piped.sps", "--dictionary", "-"}, "1\n2\n");
  EXPECT_EQ(ended.status, 0);
  const auto dictionary = nlohmann::json::parse(ended.out);
  EXPECT_EQ(dictionary["file"], "-");
  EXPECT_EQ(dictionary["cases"], 2);
}

TEST_F(RunOutputs, MessagesAreJsonLinesWithoutProgress) {
  folder_.Write("bom.csv",
                "\xEF\xBB\xBF"
                "1\n2\n");
  const char* command =
      "GET DATA /TYPE=TXT /FILE='bom.csv' /ENCODING='LOCALE' /DELCASE=LINE /DELIMITERS=','"
      " /MAP /VARIABLES=n F4.0.";
  const Ended ended = Quiet(command, {"--messages", "m.jsonl"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.out, IsEmpty());
  EXPECT_THAT(ended.err, IsEmpty());
  std::istringstream lines(folder_.Text("m.jsonl"));
  std::vector<nlohmann::json> messages;
  for (std::string line; std::getline(lines, line);)
    messages.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(messages.size(), 6U);
  EXPECT_EQ(messages[0]["kind"], "warning");
  EXPECT_THAT(messages[0]["text"].get<std::string>(), testing::StartsWith("[2281]"));
  EXPECT_EQ(messages[1], nlohmann::json::parse(R"({"kind":"log","text":"\n"})"));
  EXPECT_EQ(messages[2]["text"], "Data written to the working file.");
  EXPECT_EQ(messages[3]["text"], "1 variables and 2 cases written.");
  EXPECT_EQ(messages[5], nlohmann::json::parse(R"({"kind":"log","text":"\n"})"));
}

TEST_F(RunOutputs, MessagesAreUtf8WhateverTheCommandFileHolds) {
  const auto text = [this](const std::vector<std::string>& options) {
    std::vector<std::string> arguments{"--messages", "-"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return nlohmann::json::parse(Quiet("GR\xD6SSE x.\n", arguments).out)["text"].get<std::string>();
  };
  EXPECT_THAT(text({"--code-page", "ISO-8859-1"}), HasSubstr("\"GR\u00D6SSE\""));
  EXPECT_THAT(text({}), HasSubstr("\"GR\uFFFDSSE\""));
}

TEST_F(RunOutputs, MessagesGoToStandardOutput) {
  const Ended ended = Quiet(
      "GET DATA /TYPE=TXT /FILE='none.csv' /DELCASE=LINE /DELIMITERS=','"
      " /VARIABLES=n F4.0.",
      {"--messages", "-"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, IsEmpty());
  const auto message = nlohmann::json::parse(ended.out);
  EXPECT_EQ(message["kind"], "error");
  EXPECT_THAT(message["text"].get<std::string>(), HasSubstr("[2269]"));
  EXPECT_THAT(message["text"].get<std::string>(), EndsWith(" none.csv"));
}

TEST_F(RunOutputs, OtherwiseWarningsGoToStandardErrorAndLogLinesToStandardOutput) {
  const Ended ended = Quiet(
      "GET DATA /TYPE=TXT /FILE='town.csv' /DELCASE=LINE /DELIMITERS=',' /QUALIFIER='\"x'"
      " /MAP /VARIABLES=id F4.0.");
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.err, testing::StartsWith("warning: [2276]"));
  EXPECT_THAT(ended.out, testing::StartsWith("\nData written to the working file.\n1 variables and "
                                             "4 cases written.\nVariable: id "));
}

TEST_F(RunOutputs, AnErrorIsSaidOnStandardError) {
  const Ended ended = Quiet(
      "GET DATA /TYPE=TXT /FILE='none.csv' /DELCASE=LINE /DELIMITERS=','"
      " /VARIABLES=n F4.0.");
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, testing::StartsWith("error: [2269]"));
  EXPECT_THAT(ended.out, IsEmpty());
}

TEST_F(RunOutputs, EveryCommandWritesFilesOfItsOwn) {
  const Ended ended =
      Quiet(Towns() + Towns("/IMPORTCASE=FIRST 1"),
            {"--cases", "c%d.csv", "--dictionary", "d%d.json", "--messages", "m%d.jsonl"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(folder_.Text("c1.csv"), kCsv);
  EXPECT_EQ(folder_.Text("c2.csv"), "id,town,founded,fee\n1,Bern,1891-05-15,2.5\n");
  EXPECT_EQ(Json("d1.json")["cases"], 3);
  EXPECT_EQ(Json("d2.json")["cases"], 1);
  EXPECT_EQ(folder_.Text("m1.jsonl"), "");
  EXPECT_EQ(folder_.Text("m2.jsonl"), "");
}

TEST_F(RunOutputs, MessagesOfAllCommandsGoToOneFileInTheirOrder) {
  const std::string bad =
      "GET DATA /TYPE=TXT /FILE='none.csv' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=n F4.0.\n";
  const Ended ended = Quiet(bad + Towns("/QUALIFIER='x'") + bad, {"--messages", "m.jsonl"});
  EXPECT_EQ(ended.status, 1);
  std::istringstream lines(folder_.Text("m.jsonl"));
  std::vector<std::string> numbers;
  for (std::string line; std::getline(lines, line);) {
    numbers.push_back(nlohmann::json::parse(line)["text"].get<std::string>().substr(0, 6));
  }
  EXPECT_THAT(numbers, testing::ElementsAre("[2269]", "[2257]", "[2269]"));
}

TEST_F(RunOutputs, TheCommandComesFromStandardInput) {
  const Ended ended = Run({"run", "-", "--quiet", "--cases", "out.csv"}, Towns());
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(folder_.Text("out.csv"), kCsv);
}

TEST_F(RunOutputs, AnExistingFileIsReplaced) {
  folder_.Write("out.csv", "old, and much longer than what replaces it, so that a rest would show");
  ASSERT_EQ(Quiet(Towns("/IMPORTCASE=FIRST 1"), {"--cases", "out.csv"}).status, 0);
  EXPECT_EQ(folder_.Text("out.csv"), "id,town,founded,fee\n1,Bern,1891-05-15,2.5\n");
}

TEST_F(RunOutputs, AFieldThatIsAloneAndEmptyIsNoEmptyLine) {
  folder_.Write("one.csv", "1\nx\n3\n");
  ASSERT_EQ(Quiet("GET DATA /TYPE=TXT /FILE='one.csv' /DELCASE=LINE /DELIMITERS=','"
                  " /VARIABLES=n F4.0.",
                  {"--cases", "out.csv"})
                .status,
            0);
  EXPECT_EQ(folder_.Text("out.csv"), "n\n1\n\"\"\n3\n");
}

TEST_F(RunOutputs, ASkippedVariableIsNoColumn) {
  ASSERT_EQ(Quiet("GET DATA /TYPE=TXT /FILE='town.csv' /DELCASE=LINE /FIRSTCASE=2 /DELIMITERS=','"
                  " /QUALIFIER='\"' /VARIABLES=id F4.0 town 1X founded 1X fee F8.2.",
                  {"--cases", "out.csv", "--dictionary", "d.json"})
                .status,
            0);
  EXPECT_EQ(folder_.Text("out.csv"), "id,fee\n1,2.5\n2,1000000\n3,\n");
  EXPECT_EQ(Json("d.json")["variables"].size(), 2U);
}

TEST_F(RunOutputs, AnEmptyFileGivesAHeaderAndNoCases) {
  folder_.Write("empty.csv", "");
  ASSERT_EQ(Quiet("GET DATA /TYPE=TXT /FILE='empty.csv' /DELCASE=LINE /DELIMITERS=','"
                  " /VARIABLES=a F4.0 b A3.",
                  {"--cases", "out.csv", "--dictionary", "d.json"})
                .status,
            0);
  EXPECT_EQ(folder_.Text("out.csv"), "a,b\n");
  EXPECT_EQ(Json("d.json")["cases"], 0);
}

}  // namespace
}  // namespace program
