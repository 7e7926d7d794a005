// Random imports through the whole component, compared with the naive reader: cases, their order,
// and the warnings about bytes that are no character. Both engines read every file.
//
// TEXTWIZARD_DIFFERENTIAL_CASES sets how many imports are tried, TEXTWIZARD_DIFFERENTIAL_SEED which
// one is the first.

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/DataSource.h"
#include "HostFramework/embedded/command/Adapter.h"
#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/data/MemoryDevice.h"
#include "HostFramework/embedded/data/StreamDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "command/MessageText.h"
#include "entry/CommandEntry.h"
#include "reading/QANT_TextWizardIterator.h"
#include "reading/QANT_TextWizardSrc.h"
#include "tests/differential/NaiveImport.h"
#include "tests/differential/RandomImport.h"

namespace {

constexpr const char* kPath = "random.txt";

std::vector<ErrorText> messages;

void Collect(const char* text, int kind) {
  messages.push_back({text, static_cast<std::uint8_t>(kind), 0});
}

std::uint64_t Setting(const char* name, std::uint64_t otherwise) {
  const char* value = std::getenv(name);
  return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

naive::Cell CellOf(const QANT_Variable& variable, const std::vector<OBS>& row) {
  naive::Cell cell;
  const OBS* at = row.data() + variable.ObsIndex();
  if (variable.GetType() == 0) {
    double value = 0.0;
    std::memcpy(&value, at, sizeof value);
    if (value != kSystemMissing) cell.number = value;
    return cell;
  }
  cell.isString = true;
  cell.text.assign(reinterpret_cast<const char*>(at), static_cast<std::size_t>(variable.GetType()));
  cell.text.erase(cell.text.find_last_not_of(' ') + 1);
  return cell;
}

// Reads all cases of an iterator and compares them, and the messages posted, with the naive import.
void ExpectSame(QANT_InputCaseIterator& cases, const QANT_DataSource& source, std::vector<OBS>& row,
                const naive::Import& expected) {
  messages.clear();
  QantErrorMonitor monitor(Collect);
  cases.SetErrorMonitor(&monitor);
  std::size_t number = 0;
  for (; cases.Next(); ++number) {
    ASSERT_LT(number, expected.cases.size()) << "a case too many";
    const naive::Case& wanted = expected.cases[number];
    ASSERT_EQ(source.GetNVariables(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      const naive::Cell got = CellOf(*source.GetVariable(i), row);
      ASSERT_EQ(got, wanted[i]) << "case " << number << ", variable " << i << ": '" << got.text
                                << "' " << got.number.value_or(-1) << ", expected '"
                                << wanted[i].text << "' " << wanted[i].number.value_or(-1);
    }
  }
  ASSERT_EQ(number, expected.cases.size());
  std::vector<std::string> warnings;
  for (const ErrorText& message : messages) {
    ASSERT_EQ(message.kind, kMessageWarning) << message.text;
    warnings.push_back(message.text);
  }
  std::vector<std::string> expectedWarnings;
  for (const auto& [caseNumber, position] : expected.undecodable) {
    expectedWarnings.push_back(textwizard::UndecodableWarning(caseNumber, position).text);
  }
  ASSERT_EQ(warnings, expectedWarnings);
}

void Compare(std::uint64_t seed) {
  const naive::RandomImport import = naive::MakeRandomImport(seed, kPath);
  SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + import.command + "\n" +
               testing::PrintToString(import.bytes));
  constexpr std::array<std::size_t, 6> kBlocks = {1, 2, 3, 7, 64, 0};
  constexpr std::array<int, 3> kWorkers = {2, 3, 8};
  const embedded::ScopedMemoryFiles files(kPath, import.bytes);
  const embedded::ScopedBlockSize blocks(kBlocks[seed % kBlocks.size()]);

  embedded::CommandReader reader(import.command);
  embedded::ParsedCommand command;
  ASSERT_TRUE(reader.Next(command));
  ASSERT_TRUE(command.ok) << command.error;
  embedded::Adapter adapter(command.tokens, Collect, nullptr, kWorkers[seed % kWorkers.size()], 0);
  messages.clear();
  ASSERT_TRUE(ProcessDACSyntax(&adapter))
      << (messages.empty() ? "no message" : messages.back().text);
  const QANT_DataSource* source = ServerDataManager::GetInstance()->Find("");
  const auto& textSource = dynamic_cast<const textwizard::QANT_TextWizardSrc&>(*source);

  const naive::Import expected = naive::Read(import.bytes, import.settings, import.variables);
  std::vector<OBS> row(source->GetObsAreaSize() / sizeof(OBS));
  {
    ClearCase(*source, row.data());
    textwizard::QANT_TextWizardIterator oneThread(textSource, row.data());
    ExpectSame(oneThread, *source, row, expected);
  }
  if (!testing::Test::HasFatalFailure()) {
    ClearCase(*source, row.data());
    const std::unique_ptr<QANT_InputCaseIterator> chosen(source->MakeIterator(row.data()));
    ExpectSame(*chosen, *source, row, expected);
  }
  ServerDataManager::GetInstance()->Remove("");
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
