// Random imports through the whole component, compared with the naive reader: cases, their order,
// the warnings about bytes that are no character, and what a host is told that watches. Both
// engines read every file.
//
// TEXTWIZARD_DIFFERENTIAL_CASES sets how many imports are tried, TEXTWIZARD_DIFFERENTIAL_SEED which
// one is the first.

#include <array>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "tests/differential/NaiveImport.h"
#include "tests/differential/PassDifference.h"
#include "tests/differential/RandomImport.h"
#include "tests/differential/WatchedDifference.h"
#include "tests/support/ImportRun.h"

namespace {

constexpr const char* kPath = "random.txt";

std::uint64_t Setting(const char* name, std::uint64_t otherwise) {
  const char* value = std::getenv(name);
  return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

// How often each kind of problem was told.
using KindCounts = std::array<std::size_t, kImportProblemKinds>;

void Compare(std::uint64_t seed, KindCounts& kinds) {
  const naive::RandomImport import = naive::MakeRandomImport(seed, kPath);
  SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + import.command + "\n" +
               testing::PrintToString(import.bytes));
  constexpr std::array<std::size_t, 6> kBlocks = {1, 2, 3, 7, 64, 0};
  constexpr std::array<int, 3> kWorkers = {2, 3, 8};
  const embedded::ScopedMemoryFiles files(kPath, import.bytes);
  const embedded::ScopedBlockSize blocks(kBlocks[seed % kBlocks.size()]);
  const int workers = kWorkers[seed % kWorkers.size()];
  naive::Import expected = naive::Read(import.bytes, import.settings, import.variables);
  {
    const whole::Import command(import.command, workers);
    ASSERT_TRUE(command.made()) << testing::PrintToString(command.messages());
    for (const whole::Reading reading : {whole::Reading::kOneThread, whole::Reading::kChosen}) {
      ASSERT_EQ(naive::PassDifference(command.Read(reading), command.source(), expected), "");
    }
  }
  ASSERT_EQ(naive::WatchedDifference(import, seed, workers, naive::HostText(), expected), "");
  for (const naive::Problem& problem : expected.watched.problems) {
    ++kinds[static_cast<std::size_t>(problem.kind)];
  }
}

TEST(DifferentialImport, BothEnginesReadWhatTheNaiveReaderReads) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  const std::uint64_t first = Setting("TEXTWIZARD_DIFFERENTIAL_SEED", 1);
  const std::uint64_t count = Setting("TEXTWIZARD_DIFFERENTIAL_CASES", 20000);
  KindCounts kinds{};
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    Compare(seed, kinds);
    if (HasFailure()) return;
  }
  // So many imports have problems of every kind.
  for (std::size_t kind = 0; count >= 1000 && kind < kinds.size(); ++kind) {
    EXPECT_GT(kinds[kind], 0U) << "kind " << kind;
  }
}

}  // namespace
