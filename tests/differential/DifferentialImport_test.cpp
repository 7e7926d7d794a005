// Random imports through the whole component, compared with the naive reader: cases, their order,
// and the warnings about bytes that are no character. Both engines read every file.
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
#include "tests/support/ImportRun.h"

namespace {

constexpr const char* kPath = "random.txt";

std::uint64_t Setting(const char* name, std::uint64_t otherwise) {
  const char* value = std::getenv(name);
  return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

void Compare(std::uint64_t seed) {
  const naive::RandomImport import = naive::MakeRandomImport(seed, kPath);
  SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + import.command + "\n" +
               testing::PrintToString(import.bytes));
  constexpr std::array<std::size_t, 6> kBlocks = {1, 2, 3, 7, 64, 0};
  constexpr std::array<int, 3> kWorkers = {2, 3, 8};
  const embedded::ScopedMemoryFiles files(kPath, import.bytes);
  const embedded::ScopedBlockSize blocks(kBlocks[seed % kBlocks.size()]);

  const whole::Import command(import.command, kWorkers[seed % kWorkers.size()]);
  ASSERT_TRUE(command.made()) << testing::PrintToString(command.messages());
  const naive::Import expected = naive::Read(import.bytes, import.settings, import.variables);
  for (const whole::Reading reading : {whole::Reading::kOneThread, whole::Reading::kChosen}) {
    ASSERT_EQ(naive::PassDifference(command.Read(reading), command.source(), expected), "");
  }
}

TEST(DifferentialImport, BothEnginesReadWhatTheNaiveReaderReads) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  const std::uint64_t first = Setting("TEXTWIZARD_DIFFERENTIAL_SEED", 1);
  const std::uint64_t count = Setting("TEXTWIZARD_DIFFERENTIAL_CASES", 20000);
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    Compare(seed);
    if (HasFailure()) return;
  }
}

}  // namespace
