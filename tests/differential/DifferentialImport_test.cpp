// Random imports through the whole component, compared with the naive reader: cases, their order,
// the warnings about bytes that are no character, and what a host is told that watches. Both
// engines read every file, twice, and once more with a leap over some of its cases. Some imports
// are under other code pages or of a file in the locale's (LOCALE), some under the decimal comma,
// and of some the types of variables are found: that these are right is for the tests of detection,
// which has a naive counterpart of its own; here they are read by the types that were found.
//
// TEXTWIZARD_DIFFERENTIAL_CASES sets how many imports are tried, TEXTWIZARD_DIFFERENTIAL_SEED which
// one is the first.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "HostFramework/embedded/values/testing/ValueInputTesting.h"
#include "model/MessageText.h"
#include "tests/differential/ChosenEncoding.h"
#include "tests/differential/NaiveImport.h"
#include "tests/differential/PassDifference.h"
#include "tests/differential/RandomImport.h"
#include "tests/differential/WatchedDifference.h"
#include "tests/support/ImportRun.h"

namespace {

constexpr const char* kPath = "random.txt";
constexpr int kSkipped = 0;
// No format has this code.
constexpr int kAuto = -1;

std::uint64_t Setting(const char* name, std::uint64_t otherwise) {
  const char* value = std::getenv(name);
  return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

// What the imports had, so that none of it goes untried.
struct Tried {
  // How often each kind of problem was told.
  std::array<std::size_t, kImportProblemKinds> kinds{};
  std::size_t locale = 0;
  std::size_t decimalComma = 0;
  // Variables that became strings, and others.
  std::size_t foundStrings = 0;
  std::size_t foundNumbers = 0;
  // Imports of fixed columns that had types to find, and cases.
  std::size_t foundInFixed = 0;
  // Cases that were leapt over.
  std::size_t leapt = 0;
};

// Lets the types of every other variable be found. In fixed columns all of its columns are then
// read, whatever the format's width.
void FindTypes(naive::RandomImport& import) {
  for (std::size_t i = 0; i < import.variables.size(); i += 2) {
    naive::Variable& variable = import.variables[i];
    std::size_t word = import.command.find(" v" + std::to_string(i) + " ") + 4;
    if (import.settings.lines == naive::Lines::kFixed) {
      // The columns, such as "3-10", stand before the format.
      const std::size_t to = import.command.find('-', word) + 1;
      variable.width = std::stoul(import.command.substr(to)) - variable.start + 1;
      word = import.command.find(' ', to) + 1;
    }
    const std::size_t end = import.command.find_first_of(" .", word);
    import.command.replace(word, end - word, "AUTO");
    variable.format = kAuto;
  }
}

// Gives the variables whose types were to be found those of the source.
void TakeTypes(const QANT_DataSource& source, bool isFixed, std::vector<naive::Variable>& variables,
               Tried& tried) {
  std::size_t imported = 0;
  for (naive::Variable& variable : variables) {
    if (variable.format == kSkipped) continue;
    const QANT_Variable& found = *source.GetVariable(imported++);
    if (variable.format != kAuto) continue;
    variable.format = static_cast<int>(found.GetFormat().type);
    const std::size_t width = found.GetFormat().width;
    const auto bytes = static_cast<std::size_t>(found.GetType());
    ++(bytes > 0 ? tried.foundStrings : tried.foundNumbers);
    if (bytes > 0) variable.fieldWidth = width;
    if (!isFixed) variable.width = bytes > 0 ? bytes : width;
  }
}

// Takes the warnings of cases `from` to `to` (from 0, `to` not among them) out of the import, and
// out of the pass: whether a leap reads them depends on what the source knows of places in the
// file.
void ForgetWarnings(std::size_t from, std::size_t to, naive::Import& expected, whole::Pass& pass) {
  std::erase_if(expected.undecodable, [&](const auto& place) {
    const auto number = static_cast<std::size_t>(place.first);
    if (number <= from || number > to) return false;
    const ErrorText warning = textwizard::UndecodableWarning(place.first, place.second);
    const whole::Message told{warning.kind, warning.text};
    const auto found = std::find(pass.messages.begin(), pass.messages.end(), told);
    if (found != pass.messages.end()) pass.messages.erase(found);
    return true;
  });
}

// Both engines, which leap from case `from` to case `to`.
std::string LeapDifference(const whole::Import& command, std::size_t from, std::size_t to,
                           const naive::Import& all) {
  for (const whole::Reading reading : {whole::Reading::kOneThread, whole::Reading::kChosen}) {
    naive::Import expected = all;
    const auto place = [&cases = expected.cases](std::size_t number) {
      return cases.begin() + static_cast<std::ptrdiff_t>(std::min(number, cases.size()));
    };
    expected.cases.erase(place(from), place(to));
    whole::Pass pass = command.ReadWithLeap(reading, from, to);
    ForgetWarnings(from, to, expected, pass);
    std::string difference = naive::PassDifference(pass, command.source(), expected);
    if (!difference.empty()) return difference;
  }
  return {};
}

void Compare(std::uint64_t seed, Tried& tried) {
  // Puts it back as it is without settings.
  const embedded::InCodePage host(nullptr);
  naive::RandomImport import = naive::MakeRandomImport(seed, kPath);
  std::mt19937_64 random(seed);
  const bool findsTypes = random() % 3 == 0;
  if (findsTypes) FindTypes(import);
  const naive::HostText utf8;
  const naive::ChosenEncoding encoding(random() % naive::ChosenEncoding::kChoices);
  const bool isEncoded = random() % 3 == 0;
  if (isEncoded) {
    ASSERT_TRUE(encoding.SetPages());
    encoding.Adapt(import);
  }
  const naive::HostText& text = isEncoded ? encoding.text() : utf8;
  tried.locale += import.command.find("LOCALE") != std::string::npos ? 1 : 0;
  const bool comma = random() % 3 == 0;
  const auto decimalComma = comma ? std::make_unique<embedded::DecimalComma>() : nullptr;
  tried.decimalComma += comma ? 1 : 0;
  SCOPED_TRACE("seed " + std::to_string(seed) + (comma ? ", decimal comma\n" : "\n") +
               import.command + "\n" + testing::PrintToString(import.bytes));
  constexpr std::array<std::size_t, 6> kBlocks = {1, 2, 3, 7, 64, 0};
  constexpr std::array<int, 3> kWorkers = {2, 3, 8};
  const embedded::ScopedMemoryFiles files(kPath, import.bytes);
  const embedded::ScopedBlockSize blocks(kBlocks[seed % kBlocks.size()]);
  const int workers = kWorkers[seed % kWorkers.size()];
  naive::Import expected;
  {
    const whole::Import command(import.command, workers);
    ASSERT_TRUE(command.made()) << testing::PrintToString(command.messages());
    const bool isFixed = import.settings.lines == naive::Lines::kFixed;
    if (findsTypes) TakeTypes(command.source(), isFixed, import.variables, tried);
    expected = naive::Read(import.bytes, import.settings, import.variables, text);
    tried.foundInFixed += findsTypes && isFixed && !expected.cases.empty() ? 1 : 0;
    for (const whole::Reading reading : {whole::Reading::kOneThread, whole::Reading::kChosen}) {
      ASSERT_EQ(naive::PassDifference(command.Read(reading), command.source(), expected), "");
    }
    // Where cases and lines differ, a leap resumes at a line that may be within a case.
    const bool caseIsLine =
        import.settings.lines != naive::Lines::kCounted && import.settings.recordsPerCase == 1;
    if (const std::size_t cases = expected.cases.size(); cases > 0 && caseIsLine) {
      const std::size_t from = random() % cases;
      const std::size_t to = from + 1 + random() % (cases - from);
      ASSERT_EQ(LeapDifference(command, from, to, expected), "") << "from " << from << " to " << to;
      tried.leapt += to - from;
    }
  }
  // What an observer asks for may let other types be found.
  if (findsTypes) return;
  ASSERT_EQ(naive::WatchedDifference(import, seed, workers, text, expected), "");
  for (const naive::Problem& problem : expected.watched.problems) {
    ++tried.kinds[static_cast<std::size_t>(problem.kind)];
  }
}

TEST(DifferentialImport, BothEnginesReadWhatTheNaiveReaderReads) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  const std::uint64_t first = Setting("TEXTWIZARD_DIFFERENTIAL_SEED", 1);
  const std::uint64_t count = Setting("TEXTWIZARD_DIFFERENTIAL_CASES", 20000);
  Tried tried;
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    Compare(seed, tried);
    if (HasFailure()) return;
  }
  if (count < 1000) return;
  // So many imports have all of it.
  for (std::size_t kind = 0; kind < tried.kinds.size(); ++kind) {
    EXPECT_GT(tried.kinds[kind], 0U) << "kind " << kind;
  }
  EXPECT_GT(tried.locale, count / 100);
  EXPECT_GT(tried.decimalComma, count / 10);
  EXPECT_GT(tried.foundStrings, count / 100);
  EXPECT_GT(tried.foundNumbers, count / 100);
  EXPECT_GT(tried.foundInFixed, count / 100);
  EXPECT_GT(tried.leapt, count / 10);
}

}  // namespace
