// Cases that are not lines, in files of many batches: what the workers make of them is what one
// thread makes of them, cases, messages and all that a host is told that watches, also when it
// stops within a batch.
#include <array>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "tests/support/ImportRun.h"
#include "tests/support/PassRecorder.h"

namespace {

constexpr const char* kPath = "across.txt";

struct Wishes {
  std::int64_t problemLimit = 1000000;
  bool cellsPerCase = true;
  bool batches = false;
  std::size_t most = SIZE_MAX;
};

// What a host is told of one pass.
struct Told {
  whole::Pass pass;
  std::string batches;
  std::string shown;
  bool complete = false;
  bool operator==(const Told&) const = default;
};

Told Watch(const std::string& command, const Wishes& wishes, whole::Reading reading,
           std::int64_t fileBytes) {
  whole::PassRecorder observer;
  observer.problemLimit = wishes.problemLimit;
  observer.cellsPerCase = wishes.cellsPerCase;
  observer.batches = wishes.batches;
  observer.nullTexts = {"NA", "7"};
  const whole::Import import(command, 3, &observer);
  EXPECT_TRUE(import.made()) << command;
  if (!import.made()) return {};
  observer.caseBytes = import.source().GetObsAreaSize();
  Told told;
  told.pass = import.Read(reading, wishes.most);
  // Batches are of other sizes.
  if (wishes.batches) told.pass.cases = 0;
  if (wishes.batches) told.pass.bytes.clear();
  told.batches = observer.bytes;
  told.shown = Shown(observer.told, wishes.cellsPerCase);
  told.complete = observer.end.complete;
  const auto variables = static_cast<std::int64_t>(import.source().GetNVariables());
  EXPECT_EQ(observer.Contradiction(observer.end.cases, variables, fileBytes), "");
  return told;
}

void ExpectSame(const std::string& command, const std::string& bytes) {
  SCOPED_TRACE(command);
  const embedded::ScopedMemoryFiles files(kPath, bytes);
  const auto size = static_cast<std::int64_t>(bytes.size());
  {
    const whole::Import import(command, 3);
    ASSERT_TRUE(import.made());
    EXPECT_EQ(import.Read(whole::Reading::kChosen), import.Read(whole::Reading::kOneThread));
  }
  const Wishes all;
  const std::size_t cases = Watch(command, all, whole::Reading::kOneThread, size).pass.cases;
  ASSERT_GT(cases, 500u);
  for (const Wishes& wishes :
       {all, Wishes{0, false, false, SIZE_MAX}, Wishes{50, true, true, SIZE_MAX},
        Wishes{1000000, true, false, 1}, Wishes{1000000, false, false, cases / 3},
        Wishes{30, true, false, cases / 2 + 1}, Wishes{1000000, true, false, cases - 1}}) {
    SCOPED_TRACE(std::to_string(wishes.most) + " cases, limit " +
                 std::to_string(wishes.problemLimit));
    const Told chosen = Watch(command, wishes, whole::Reading::kChosen, size);
    const Told alone = Watch(command, wishes, whole::Reading::kOneThread, size);
    EXPECT_EQ(chosen.shown, alone.shown);
    EXPECT_TRUE(chosen == alone);
    if (testing::Test::HasFailure()) return;
  }
}

// Lines of values, some of which are no numbers, too long or missing, with NULs and bytes that are
// no character.
std::string Lines(std::mt19937& random, const std::string& separator, std::size_t size) {
  static const std::array<const char*, 12> kValues = {"1234.5",
                                                      "7",
                                                      "NA",
                                                      "",
                                                      "word",
                                                      "01/02/2003",
                                                      "12345678901234567890",
                                                      "a long text",
                                                      " x ",
                                                      "\xC3\xA4rger",
                                                      "\"q, r\"",
                                                      "-8"};
  std::string bytes;
  while (bytes.size() < size) {
    for (std::size_t values = random() % 7; values > 0; --values) {
      bytes += kValues[random() % kValues.size()] + separator;
    }
    if (random() % 200 == 0) bytes += random() % 2 == 0 ? std::string(1, '\0') : "\xFF";
    bytes += random() % 9 == 0 ? "\r\n" : random() % 30 == 0 ? "\n\n" : "\n";
  }
  return bytes;
}

TEST(CasesAcrossLines, FixedColumnsOfSeveralLines) {
  const embedded::InCodePage host(nullptr);
  std::mt19937 random(7);
  for (const std::string encoding : {"'UTF-8'", "LOCALE"}) {
    for (const std::string lines : {"1", "3"}) {
      const std::string last = "/" + lines;
      const std::string command = "GET DATA /TYPE=TXT /FILE='" + std::string(kPath) +
                                  "' /ENCODING=" + encoding +
                                  " /ARRANGEMENT=FIXED /FIXCASE=" + lines +
                                  " /FIRSTCASE=3 /VARIABLES=/1 a 0-5 F8 b 6-9 A4 " +
                                  (lines == "1" ? "" : last) + " c 0-7 A8 d 4-13 ADATE10.";
      ExpectSame(command, Lines(random, " ", 400000));
    }
  }
}

TEST(CasesAcrossLines, ValuesThatRunAcrossLines) {
  const embedded::InCodePage host(nullptr);
  std::mt19937 random(8);
  for (const std::string encoding : {"'UTF-8'", "LOCALE"}) {
    for (const std::string options :
         {"", " /MULTIPLESPACES IGNORE=YES /LEADINGSPACES IGNORE=YES"}) {
      const std::string command =
          "GET DATA /TYPE=TXT /FILE='" + std::string(kPath) + "' /ENCODING=" + encoding +
          " /DELCASE=VARIABLES 5 /DELIMITERS=', ' /QUALIFIER='\"' /FIRSTCASE=3" + options +
          " /VARIABLES=a F8 b A4 c X d ADATE10 e A8.";
      ExpectSame(command, Lines(random, ",", 400000) + std::string(3, '7'));
    }
  }
}

}  // namespace
