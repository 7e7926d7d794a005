// Every file of the corpus, read in blocks of every size, by rings of every size, after detection
// on workers and on one thread, by both iterators: always the same cases byte by byte, the same
// messages in the same order, the same map, and the dictionary that the rules of detection give.

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Effort.h"
#include "tests/support/ImportRun.h"
#include "tests/sweep/CorpusTest.h"

namespace whole {
namespace {

// 0: the default.
constexpr std::array<std::size_t, 7> kBlocks = {1, 2, 3, 7, 64, 4096, 0};
constexpr std::size_t kSmallestForLarge = 4096;
constexpr std::array<int, 4> kWorkers = {2, 3, 8, 64};

struct Way {
  std::size_t block = 0;
  int workers = 2;
  bool oneThreadDetection = false;
  Reading reading = Reading::kChosen;
};

std::ostream& operator<<(std::ostream& out, const Way& way) {
  return out << "blocks of " << way.block << ", " << way.workers << " workers, detection on "
             << (way.oneThreadDetection ? "one thread" : "workers") << ", "
             << (way.reading == Reading::kChosen ? "the chosen iterator" : "one thread's iterator");
}

// What an import in one way gives.
struct Outcome {
  bool made = false;
  Dictionary dictionary;
  // What the command posted, but for progress, whose counts and end are the engine's own, and for
  // the warnings of bytes that are no character, which detection on one thread does not give.
  Messages posted;
  // Those two, in their order.
  Messages engines;
  Pass pass;
};

Outcome ResultOf(const CorpusImport& import, const Way& way) {
  const embedded::ScopedBlockSize block(way.block);
  const ScopedOneThreadDetection detection(way.oneThreadDetection);
  const Import command(import.command, way.workers);
  Outcome outcome;
  outcome.made = command.made();
  for (const Message& message : command.messages()) {
    const bool undecodable = message.text.find("[2279]") != std::string::npos;
    const bool own = message.kind == kMessageProgress || undecodable;
    (own ? outcome.engines : outcome.posted).push_back(message);
  }
  if (!outcome.made) return outcome;
  outcome.dictionary = command.dictionary();
  outcome.pass = command.Read(way.reading);
  return outcome;
}

// The first difference only: whole passes are too long to print.
void ExpectSamePass(const Pass& got, const Pass& wanted, const std::string& command) {
  EXPECT_EQ(got.noIterator, wanted.noIterator);
  EXPECT_EQ(got.cases, wanted.cases);
  EXPECT_EQ(got.rowCount, wanted.rowCount);
  EXPECT_EQ(got.messages, wanted.messages) << command;
  if (got.bytes == wanted.bytes) return;
  std::size_t at = 0;
  while (at < got.bytes.size() && at < wanted.bytes.size() && got.bytes[at] == wanted.bytes[at]) {
    ++at;
  }
  ADD_FAILURE() << command << "\nbyte " << at
                << " of the cases differs: " << testing::PrintToString(got.bytes.substr(at, 40))
                << ", expected " << testing::PrintToString(wanted.bytes.substr(at, 40));
}

std::vector<Way> WaysFor(const CorpusImport& import) {
  std::vector<Way> ways;
  std::size_t number = 0;
  // Sanitized builds try a share of the ways, another one for every file.
  const std::size_t skipped = import.name.size() % kEffortDivisor;
  for (const bool oneThreadDetection : {false, true}) {
    for (const int workers : kWorkers) {
      for (const std::size_t block : kBlocks) {
        if (import.large && block != 0 && block < kSmallestForLarge) continue;
        for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
          if (number++ % kEffortDivisor != skipped) continue;
          ways.push_back({block, workers, oneThreadDetection, reading});
        }
      }
    }
  }
  return ways;
}

using Sweep = CorpusTest;

TEST_P(Sweep, GivesTheSameInEveryWay) {
  const CorpusImport& import = GetParam();
  const Outcome onWorkers = ResultOf(import, Way());
  Way oneThread;
  oneThread.oneThreadDetection = true;
  const Outcome onOneThread = ResultOf(import, oneThread);
  ASSERT_TRUE(onWorkers.made) << testing::PrintToString(onWorkers.posted);
  ASSERT_TRUE(onOneThread.made) << testing::PrintToString(onOneThread.posted);
  EXPECT_EQ(onOneThread.posted, onWorkers.posted);
  if (import.detectionAgrees) {
    EXPECT_EQ(onOneThread.dictionary, onWorkers.dictionary);
    ExpectSamePass(onOneThread.pass, onWorkers.pass, import.command);
  }

  for (const Way& way : WaysFor(import)) {
    const Outcome& wanted = way.oneThreadDetection ? onOneThread : onWorkers;
    const Outcome got = ResultOf(import, way);
    SCOPED_TRACE(testing::PrintToString(way));
    EXPECT_TRUE(got.made);
    EXPECT_EQ(got.posted, wanted.posted);
    EXPECT_EQ(got.engines, wanted.engines);
    EXPECT_EQ(got.dictionary, wanted.dictionary);
    ExpectSamePass(got.pass, wanted.pass, import.command);
    if (HasFailure()) return;
  }
}

std::string NameOf(const testing::TestParamInfo<CorpusImport>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Examples, Sweep, testing::ValuesIn(ExampleImports()), NameOf);
INSTANTIATE_TEST_SUITE_P(Generated, Sweep, testing::ValuesIn(GeneratedImports()), NameOf);

}  // namespace
}  // namespace whole
