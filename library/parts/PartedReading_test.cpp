#include "library/parts/PartedReading.h"

#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/import/CommandImport.h"
#include "library/import/testing/KeptErrors.h"
#include "library/parts/testing/PartFiles.h"
#include "library/parts/testing/RandomParts.h"
#include "library/report/Digest.h"

namespace library {
namespace {

constexpr const char* kPath = "parts.txt";

// Counts cases; those of a pass by batches are counted by the watch.
class Everything : public CaseReceiver {
 public:
  void Take(const OBS*) override {}
};

// Keeps what is told of problems and stretches.
class KeptProblems : public ProblemSink {
 public:
  void Write(const ImportProblem& problem) override {
    problems.push_back(std::to_string(static_cast<int>(problem.kind)) + " " +
                       std::to_string(problem.variable) + " case " +
                       std::to_string(problem.caseNumber) + " line " +
                       std::to_string(problem.line) + " byte " + std::to_string(problem.byte) +
                       " " + std::to_string(problem.amount) + " " + std::string(problem.text));
  }
  std::vector<std::string> problems;
};

struct Outcome {
  std::vector<std::string> errors;
  std::vector<std::string> problems;
  std::vector<ProblemLog::Entry> counts;
  std::vector<std::int64_t> textsBeyondColumn;
  std::string uncut;
  Ledger ledger;
  std::string imbalance;
  Digest digest;
  std::int64_t cases = 0;
  bool complete = false;
};

Outcome Import(const PartFile& file, const PartOptions& parts, std::int64_t problemLimit,
               bool oneThread = false, bool sampled = false,
               std::shared_ptr<embedded::StreamFaults> faults = nullptr) {
  const embedded::ScopedMemoryFiles files(kPath, file.bytes, std::move(faults));
  const std::string text =
      "GET DATA /TYPE=TXT /FILE='" + std::string(kPath) + "' " + file.command + ".";
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  EXPECT_TRUE(reader.Next(command) && command.ok) << command.error;
  WatchSettings settings;
  settings.problemLimit = problemLimit;
  ImportWatch watch(settings);
  ImportOptions options;
  options.watch = &watch;
  options.parts = parts;
  options.seed = 7;
  options.workers = 2;
  KeptErrors messages;
  KeptProblems problems;
  Outcome outcome;
  CommandImport import(options, messages);
  if (import.Open(command.tokens) == ImportEnd::kDone) {
    DigestSink digest(import.source());
    watch.Use(digest);
    watch.Prepare(import.source(), {.problems = {&problems}},
                  {.batches = true, .sampled = sampled, .oneThread = oneThread});
    Everything receiver;
    import.Read(receiver);
    PassAccount account = watch.TakeAccount();
    outcome.uncut = import.uncut();
    outcome.counts = account.problems.Entries();
    outcome.textsBeyondColumn = account.textsBeyondColumn;
    outcome.ledger = account.ledger;
    outcome.imbalance = account.ledger.Imbalance();
    outcome.digest = digest.digest();
    outcome.cases = account.cases;
    outcome.complete = account.complete;
  }
  outcome.problems = problems.problems;
  outcome.errors = messages.errors;
  return outcome;
}

void ExpectSame(const Outcome& whole, const Outcome& cut, const std::string& what) {
  EXPECT_EQ(whole.errors, cut.errors) << what;
  EXPECT_EQ(whole.problems, cut.problems) << what;
  EXPECT_TRUE(whole.counts == cut.counts) << what;
  EXPECT_EQ(whole.textsBeyondColumn, cut.textsBeyondColumn) << what;
  EXPECT_EQ(whole.ledger.Json(), cut.ledger.Json()) << what;
  EXPECT_EQ(cut.imbalance, "") << what;
  EXPECT_EQ(whole.digest.Hex(), cut.digest.Hex()) << what;
  EXPECT_EQ(whole.cases, cut.cases) << what;
  EXPECT_EQ(whole.complete, cut.complete) << what;
}

class APartedReading : public testing::TestWithParam<PartFile> {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
};

std::string NameOfFile(const testing::TestParamInfo<PartFile>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Files, APartedReading, testing::ValuesIn(PartFiles()), NameOfFile);

// Whatever the size of the parts.
TEST_P(APartedReading, IsTheReadingOfTheWhole) {
  const PartFile& file = GetParam();
  const Outcome whole = Import(file, {}, 1000);
  ASSERT_TRUE(whole.errors.empty()) << whole.errors[0];
  ASSERT_GT(whole.cases, 0);
  const auto size = static_cast<std::int64_t>(file.bytes.size());
  for (std::int64_t bytes = 1; bytes <= size + 1; bytes += 1 + bytes / 8) {
    PartOptions parts;
    parts.partBytes = bytes;
    const Outcome cut = Import(file, parts, 1000);
    ExpectSame(whole, cut, "parts of " + std::to_string(bytes));
    EXPECT_EQ(cut.uncut.empty(), !file.uncut || bytes >= size) << bytes;
    if (HasFailure()) return;
  }
}

// A limit to the problems told cuts all parts together.
TEST_P(APartedReading, TellsAsManyProblems) {
  const PartFile& file = GetParam();
  for (const std::int64_t limit : {0, 1, 3}) {
    const Outcome whole = Import(file, {}, limit);
    PartOptions parts;
    parts.partBytes = 40;
    ExpectSame(whole, Import(file, parts, limit), "limit " + std::to_string(limit));
  }
}

TEST_P(APartedReading, OnOneThread) {
  const PartFile& file = GetParam();
  const Outcome whole = Import(file, {}, 1000, true);
  PartOptions parts;
  parts.partBytes = 33;
  ExpectSame(whole, Import(file, parts, 1000, true), "one thread");
}

// Units of two bytes lie in two blocks, line ends too.
TEST_P(APartedReading, WhateverTheBlocks) {
  const PartFile& file = GetParam();
  const Outcome whole = Import(file, {}, 1000);
  for (const std::size_t block : {1, 3, 16}) {
    const embedded::ScopedBlockSize size(block);
    PartOptions parts;
    parts.partBytes = 29;
    ExpectSame(whole, Import(file, parts, 1000), "blocks of " + std::to_string(block));
  }
}

// Each part by itself: the digests and ledgers add up, and the problems follow one another.
TEST_P(APartedReading, IsTheSumOfItsParts) {
  const PartFile& file = GetParam();
  const Outcome whole = Import(file, {}, 1000);
  if (file.uncut) return;
  const auto size = static_cast<std::int64_t>(file.bytes.size());
  for (const std::int64_t count : {2, 3, 7}) {
    Outcome sum;
    sum.textsBeyondColumn.resize(whole.textsBeyondColumn.size());
    std::int64_t variables = 0;
    for (std::int64_t number = 1; number <= count; ++number) {
      PartOptions parts;
      parts.single = PartOptions::Single{PartOf(size, number, count), {}};
      const Outcome part = Import(file, parts, 1000);
      EXPECT_EQ(part.imbalance, "");
      EXPECT_TRUE(part.complete);
      EXPECT_TRUE(part.errors.empty()) << part.errors[0];
      sum.problems.insert(sum.problems.end(), part.problems.begin(), part.problems.end());
      sum.digest += part.digest;
      sum.cases += part.cases;
      if (number == 1) {
        sum.ledger = part.ledger;
      } else {
        sum.ledger += part.ledger;
      }
      variables = std::max(variables, part.cases);
    }
    EXPECT_EQ(whole.problems, sum.problems) << count;
    EXPECT_EQ(whole.digest.Hex(), sum.digest.Hex()) << count;
    EXPECT_EQ(whole.cases, sum.cases) << count;
    EXPECT_EQ(whole.ledger.Json(), sum.ledger.Json()) << count;
    if (HasFailure()) return;
  }
}

// However the work is cut: at any bytes, in any number of parts.
TEST_P(APartedReading, IsTheSumOfPartsCutAtRandom) {
  const PartFile& file = GetParam();
  if (file.uncut) return;
  const Outcome whole = Import(file, {}, 1000);
  const auto size = static_cast<std::int64_t>(file.bytes.size());
  std::mt19937_64 random(std::hash<std::string>()(file.name));
  for (int round = 0; round < RandomCuts(); ++round) {
    const std::vector<PartRange> ranges = RandomParts(size, random);
    Outcome sum;
    sum.textsBeyondColumn.resize(whole.textsBeyondColumn.size());
    for (const PartRange& range : ranges) {
      PartOptions parts;
      parts.single = PartOptions::Single{range, {}};
      const Outcome part = Import(file, parts, 1000, round % 2 == 0);
      ASSERT_TRUE(part.errors.empty()) << part.errors[0];
      ASSERT_EQ(part.imbalance, "");
      sum.problems.insert(sum.problems.end(), part.problems.begin(), part.problems.end());
      sum.digest += part.digest;
      sum.cases += part.cases;
      if (&range == ranges.data()) {
        sum.ledger = part.ledger;
      } else {
        sum.ledger += part.ledger;
      }
    }
    std::string cut = "cut at";
    for (const PartRange& range : ranges) cut += " " + std::to_string(range.from);
    ASSERT_EQ(whole.problems, sum.problems) << cut;
    ASSERT_EQ(whole.digest.Hex(), sum.digest.Hex()) << cut;
    ASSERT_EQ(whole.cases, sum.cases) << cut;
    ASSERT_EQ(whole.ledger.Json(), sum.ledger.Json()) << cut;
  }
}

PartFile Numbers(int count, const std::string& more = "") {
  PartFile file;
  file.name = "Numbers";
  for (int i = 1; i <= count; ++i) file.bytes += std::to_string(i) + "\n";
  file.command = more + " /DELIMITERS=',' /VARIABLES=n F8.0";
  return file;
}

TEST(PartsOfAReadingTest, DrawTheSameCases) {
  const PartFile file = Numbers(300, " /IMPORTCASE=PERCENT 40");
  const Outcome whole = Import(file, {}, 10, false, true);
  PartOptions parts;
  parts.partBytes = 100;
  const Outcome cut = Import(file, parts, 10, false, true);
  EXPECT_GT(whole.cases, 0);
  EXPECT_LT(whole.cases, 300);
  ExpectSame(whole, cut, "drawn");
}

TEST(PartsOfAReadingTest, OnePartOfADrawIsRefused) {
  PartOptions parts;
  parts.single = PartOptions::Single{{0, 50}, {}};
  const Outcome part = Import(Numbers(300, " /IMPORTCASE=PERCENT 40"), parts, 10, false, true);
  ASSERT_EQ(part.errors.size(), 1U);
  EXPECT_NE(part.errors[0].find("a command that draws its cases cannot be read in parts"),
            std::string::npos)
      << part.errors[0];
}

TEST(PartsOfAReadingTest, ThatFailsAreNotFollowedByMore) {
  const PartFile file = Numbers(300);
  auto faults = std::make_shared<embedded::StreamFaults>();
  const std::int64_t failAt = 500;
  // The bytes are there when the file is cut, and gone when it is read.
  int passes = 0;
  faults->beforeRead = [&](std::int64_t offset) {
    if (offset == 0 && ++passes == 3) faults->failAt = failAt;
  };
  PartOptions parts;
  parts.partBytes = 200;
  const Outcome cut = Import(file, parts, 10, true, false, faults);
  EXPECT_EQ(cut.errors.size(), 1U);
  EXPECT_FALSE(cut.complete);
  EXPECT_EQ(cut.imbalance, "") << "what was not read is unread";
  EXPECT_GT(cut.cases, 0);
  EXPECT_LT(cut.cases, 300);
}

// The words of a part that has no case are those of an import of nothing.
TEST(PartsOfAReadingTest, MayHoldNoCase) {
  PartFile file;
  file.bytes = "1\n" + std::string(100, '2') + "\n3\n";
  file.command = " /DELIMITERS=',' /VARIABLES=n A4";
  PartOptions parts;
  parts.single = PartOptions::Single{{20, 40}, {}};
  const Outcome part = Import(file, parts, 10);
  EXPECT_TRUE(part.errors.empty());
  EXPECT_TRUE(part.complete);
  EXPECT_EQ(part.cases, 0);
  EXPECT_EQ(part.ledger.bytes(), 0);
  EXPECT_EQ(part.imbalance, "");
}

}  // namespace
}  // namespace library
