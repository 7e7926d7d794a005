// Random imports through the whole component, compared with the naive reader: cases, their order,
// and the warnings about bytes that are no character. Both engines read every file.
//
// TEXTWIZARD_DIFFERENTIAL_CASES sets how many imports are tried, TEXTWIZARD_DIFFERENTIAL_SEED which
// one is the first.

#include <array>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/DataSource.h"
#include "HostFramework/embedded/data/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "command/MessageText.h"
#include "tests/differential/NaiveImport.h"
#include "tests/differential/RandomImport.h"
#include "tests/support/ImportRun.h"

namespace {

constexpr const char* kPath = "random.txt";

std::uint64_t Setting(const char* name, std::uint64_t otherwise) {
  const char* value = std::getenv(name);
  return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

// `row`: the cells of one case.
naive::Cell CellOf(const QANT_Variable& variable, const char* row) {
  naive::Cell cell;
  const char* const at = row + variable.ObsIndex() * sizeof(OBS);
  if (variable.GetType() == 0) {
    double value = 0.0;
    std::memcpy(&value, at, sizeof value);
    if (value != kSystemMissing) cell.number = value;
    return cell;
  }
  cell.isString = true;
  cell.text.assign(at, static_cast<std::size_t>(variable.GetType()));
  cell.text.erase(cell.text.find_last_not_of(' ') + 1);
  return cell;
}

// Compares all cases of a pass, and the messages posted in it, with the naive import.
void ExpectSame(const whole::Pass& pass, const QANT_DataSource& source,
                const naive::Import& expected) {
  ASSERT_EQ(pass.cases, expected.cases.size());
  for (std::size_t number = 0; number < pass.cases; ++number) {
    const naive::Case& wanted = expected.cases[number];
    ASSERT_EQ(source.GetNVariables(), wanted.size());
    const char* const row = pass.bytes.data() + number * source.GetObsAreaSize();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      const naive::Cell got = CellOf(*source.GetVariable(i), row);
      ASSERT_EQ(got, wanted[i]) << "case " << number << ", variable " << i << ": '" << got.text
                                << "' " << got.number.value_or(-1) << ", expected '"
                                << wanted[i].text << "' " << wanted[i].number.value_or(-1);
    }
  }
  whole::Messages warnings;
  for (const auto& [caseNumber, position] : expected.undecodable) {
    const ErrorText warning = textwizard::UndecodableWarning(caseNumber, position);
    warnings.push_back({warning.kind, warning.text});
  }
  ASSERT_EQ(pass.messages, warnings);
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
  ExpectSame(command.Read(whole::Reading::kOneThread), command.source(), expected);
  if (!testing::Test::HasFatalFailure()) {
    ExpectSame(command.Read(whole::Reading::kChosen), command.source(), expected);
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
