// The options of `textwizard run` that set the host: decimal character, code pages, workers, seed.

#include <algorithm>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class RunHost : public ProgramTest {};

std::string Import(const std::string& file, const std::string& variables,
                   const std::string& more = "") {
  return "GET DATA /TYPE=TXT /FILE='" + file + "' " + more +
         " /DELCASE=LINE /DELIMITERS=';' /VARIABLES=" + variables + ".\n";
}

TEST_F(RunHost, TheDecimalCharacterIsAPointUnlessToldOtherwise) {
  folder_.Write("n.csv", "1.5;1,5\n");
  const std::string command = Import("n.csv", "point F8.2 comma F8.2");
  EXPECT_EQ(Quiet(command, {"--cases", "-"}).out, "point,comma\n1.5,\n");
  EXPECT_EQ(Quiet(command, {"--cases", "-", "--decimal", "point"}).out, "point,comma\n1.5,\n");
  EXPECT_EQ(Quiet(command, {"--cases", "-", "--decimal", "comma"}).out, "point,comma\n,1.5\n");
}

TEST_F(RunHost, TheDecimalCharacterDoesNotFollowTheLocale) {
  folder_.Write("n.csv", "1.5;1,5\n");
  environment_ = {{"LC_ALL", "de_DE.UTF-8"}};
  EXPECT_EQ(Quiet(Import("n.csv", "point F8.2 comma F8.2"), {"--cases", "-"}).out,
            "point,comma\n1.5,\n");
}

TEST_F(RunHost, TheTypesThatAreFoundDoNotFollowTheLocale) {
  folder_.Write("n.csv", "1.5\n2.5\n");
  environment_ = {{"LC_ALL", "de_DE.UTF-8"}};
  ASSERT_EQ(Quiet("GET DATA /TYPE=TXT /FILE='n.csv' /ARRANGEMENT=FIXED /VARIABLES=n 0-2 AUTO.",
                  {"--dictionary", "d.json"})
                .status,
            0);
  EXPECT_EQ(Json("d.json")["variables"][0]["format"], "F3.1");
}

TEST_F(RunHost, TheHostWorksInUtf8WhateverTheLocale) {
  folder_.Write("s.csv", "Z\xC3\xBCrich;caf\xC3\xA9\n");
  for (const char* locale : {"C", "de_DE.UTF-8"}) {
    environment_ = {{"LC_ALL", locale}};
    EXPECT_EQ(Quiet(Import("s.csv", "n\xC3\xA4me A10 b A10"), {"--cases", "-"}).out,
              "n\xC3\xA4me,b\nZ\xC3\xBCrich,caf\xC3\xA9\n")
        << locale;
  }
}

TEST_F(RunHost, TheLocalesCodePageIsWhatEncodingLocaleMeans) {
  folder_.Write("s.csv", "Z\xFCrich;\x80 5\n");
  const Ended ended = Quiet(Import("s.csv", "a A10 b A10", "/ENCODING='LOCALE'"),
                            {"--cases", "-", "--locale-code-page", "windows-1252"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, "a,b\nZ\xC3\xBCrich,\xE2\x82\xAC 5\n");
}

TEST_F(RunHost, InACodePageEverythingThatIsWrittenIsStillUtf8) {
  folder_.Write("s.csv", "Z\xFCrich;1\n");
  const Ended ended = Quiet(Import("s.csv", "n\xE4me A10 b F4.0", "/MAP"),
                            {"--cases", "c.csv", "--dictionary", "d.json", "--messages", "m.jsonl",
                             "--code-page", "windows-1252"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(folder_.Text("c.csv"), "n\xC3\xA4me,b\nZ\xC3\xBCrich,1\n");
  EXPECT_EQ(Json("d.json")["variables"][0]["name"], "n\xC3\xA4me");
  EXPECT_EQ(Json("d.json")["variables"][0]["bytes"], 10);
  EXPECT_THAT(folder_.Text("m.jsonl"), HasSubstr("Variable: n\xC3\xA4me"));
}

TEST_F(RunHost, UnknownCodePagesAreWrongUsage) {
  folder_.Write("s.csv", "x\n");
  const Ended page = Quiet(Import("s.csv", "a A1"), {"--code-page", "no-such-page"});
  EXPECT_EQ(page.status, 2);
  EXPECT_EQ(page.err, "error: --code-page: unknown code page no-such-page\n");
  const Ended near = Quiet(Import("s.csv", "a A1"), {"--code-page", "widnows-1252"});
  EXPECT_EQ(near.status, 2);
  EXPECT_EQ(near.err,
            "error: --code-page: unknown code page widnows-1252; near ones: windows-1252\n");
  const Ended locale = Quiet(Import("s.csv", "a A1"), {"--locale-code-page", "no-such-page"});
  EXPECT_EQ(locale.status, 2);
  EXPECT_EQ(locale.err, "error: --locale-code-page: unknown code page no-such-page\n");
}

TEST_F(RunHost, BytesThatAreNoCharactersAreToldTwentyTimes) {
  // Latin-1 read as UTF-8: a byte of every second case is no character.
  std::string rows;
  for (int number = 1; number <= 2000; ++number) rows += number % 2 == 0 ? "m\xFCller\n" : "x\n";
  folder_.Write("latin.csv", rows);
  for (const char* format : {"A8", "AUTO"}) {
    const Ended ended =
        Quiet(Import("latin.csv", std::string("name ") + format, "/ENCODING='UTF8'"));
    EXPECT_EQ(ended.status, 0);
    std::istringstream lines(ended.err);
    std::vector<std::string> told;
    for (std::string line; std::getline(lines, line);) told.push_back(line);
    ASSERT_EQ(told.size(), 21U) << format;
    EXPECT_THAT(told[0], testing::StartsWith("warning: [2279] Case 2 ")) << format;
    EXPECT_THAT(told[19], testing::StartsWith("warning: [2279] Case 40 ")) << format;
    EXPECT_EQ(told[20], "warning: and 980 more, the last in case 2000") << format;
  }
}

TEST_F(RunHost, EveryCommandTellsItsOwnBytesThatAreNoCharacters) {
  folder_.Write("latin.csv", "\xFC\n");
  const std::string command = Import("latin.csv", "name A8", "/ENCODING='UTF8'");
  const Ended ended = Quiet(command + command, {"--messages", "-"});
  EXPECT_EQ(std::count(ended.out.begin(), ended.out.end(), '\n'), 2);
}

class RunSampling : public RunHost {
 protected:
  void SetUp() override {
    std::string rows;
    for (int number = 0; number < 2000; ++number) rows += std::to_string(number) + "\n";
    folder_.Write("many.csv", rows);
  }
  std::string Sampled(const std::string& seed) const {
    const Ended ended = Quiet(Import("many.csv", "n F8.0", "/IMPORTCASE=PERCENT 25"),
                              {"--cases", "-", "--seed", seed});
    EXPECT_EQ(ended.status, 0) << ended.err;
    return ended.out;
  }
};

TEST_F(RunSampling, ASeedKeepsTheCasesThatTheRuleKeeps) {
  std::srand(7);
  std::string expected = "n\n";
  for (int number = 0; number < 2000; ++number) {
    if (!(std::rand() / 2147483647.0 > 0.25)) expected += std::to_string(number) + "\n";
  }
  EXPECT_EQ(Sampled("7"), expected);
  EXPECT_EQ(Sampled("7"), expected);
  EXPECT_NE(Sampled("8"), expected);
}

TEST_F(RunSampling, TheShareIsWhatTheComponentReads) {
  const std::string expected = Sampled("7");
  // A sign before the number, and keyword and number in one literal: the component takes both.
  for (const char* mode : {"PERCENT +25", "'PERCENT 25'", "PERCENT '25'", "percent 25.9"}) {
    const Ended ended = Quiet(Import("many.csv", "n F8.0", std::string("/IMPORTCASE=") + mode),
                              {"--cases", "-", "--seed", "7"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, expected) << mode;
  }
}

TEST_F(RunSampling, EveryCommandDrawsFromTheSeedAgain) {
  const std::string command = Import("many.csv", "n F8.0", "/IMPORTCASE=PERCENT 25");
  ASSERT_EQ(Quiet(command + command, {"--cases", "c%d.csv", "--seed", "3"}).status, 0);
  EXPECT_EQ(folder_.Text("c1.csv"), folder_.Text("c2.csv"));
}

TEST_F(RunSampling, CountsAreOfTheCasesThatAreKept) {
  const Ended ended =
      Quiet(Import("many.csv", "n F8.0", "/IMPORTCASE=PERCENT 25"),
            {"--cases", "c.csv", "--dictionary", "d.json", "--stats", "--seed", "7"});
  const std::string cases = folder_.Text("c.csv");
  const auto kept = std::count(cases.begin(), cases.end(), '\n') - 1;
  EXPECT_GT(kept, 400);
  EXPECT_LT(kept, 600);
  EXPECT_EQ(Json("d.json")["cases"], kept);
  EXPECT_EQ(nlohmann::json::parse(ended.out)["cases"], kept);
}

TEST_F(RunSampling, TheFirstCasesAreNotDrawn) {
  const Ended ended = Quiet(Import("many.csv", "n F8.0", "/IMPORTCASE=FIRST 3"), {"--cases", "-"});
  EXPECT_EQ(ended.out, "n\n0\n1\n2\n");
}

class RunWorkers : public RunHost {};

TEST_F(RunWorkers, TheNumberOfWorkersChangesNothingButTheThreads) {
  std::string rows;
  for (int number = 0; number < 300000; ++number) rows += std::to_string(number) + ";a text\n";
  folder_.Write("many.csv", rows);
  std::string first;
  for (const int workers : {2, 3, 8}) {
    const Ended ended =
        Quiet(Import("many.csv", "n F8.0 s A8"),
              {"--cases", "c.csv", "--stats", "--workers", std::to_string(workers)});
    ASSERT_EQ(ended.status, 0) << ended.err;
    if (first.empty()) first = folder_.Text("c.csv");
    EXPECT_EQ(folder_.Text("c.csv"), first) << workers;
    // The workers and the thread that reads the file for them.
    EXPECT_EQ(nlohmann::json::parse(ended.out)["threads"], workers + 1);
  }
  EXPECT_THAT(first, StartsWith("n,s\n0,a text\n1,a text\n"));
}

TEST_F(RunWorkers, FixedColumnsAreReadByThemButForVeryLongCases) {
  folder_.Write("f.txt", "12ab\n34cd\n");
  for (const auto& [lines, threads] : {std::pair("1", 2), std::pair("1001", 1)}) {
    const Ended ended = Quiet(std::string("GET DATA /TYPE=TXT /FILE='f.txt' /ARRANGEMENT=FIXED") +
                                  " /FIXCASE=" + lines + " /VARIABLES=/1 n 0-1 F2.0 s 2-3 A2.",
                              {"--stats", "--workers", "4"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    // One batch is converted by one worker.
    EXPECT_EQ(nlohmann::json::parse(ended.out)["threads"], threads) << lines;
  }
}

TEST_F(RunWorkers, AWrongNumberOfWorkersIsWrongUsage) {
  folder_.Write("c.sps", "");
  for (const char* workers : {"-1", "many", "1.5", "100000"}) {
    EXPECT_EQ(Run({"run", "c.sps", "--workers", workers}).status, 2) << workers;
  }
}

}  // namespace
}  // namespace program
