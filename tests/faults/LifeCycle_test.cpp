// Whole imports over their life: many iterators, iterators given up at every stage, imports at the
// same time as others and as the wizard's preview, slow consumers, very many variables.

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/FileMessages.h"
#include "HostFramework/Threads.h"
#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/packages/PackageRegistry.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/testing/TestFolder.h"
#include "tests/support/Effort.h"
#include "tests/support/ImportRun.h"

namespace whole {
namespace {

// `rows` lines: the number of the line with one decimal, and a text.
std::string Rows(int rows) {
  std::string text;
  for (int i = 0; i < rows; ++i) text += std::to_string(i) + ".5,row " + std::to_string(i) + "\n";
  return text;
}

std::size_t EntriesOf(const char* folder) {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class LifeCycle : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }

  std::string Command(const std::string& path, const std::string& arrangement,
                      const std::string& variables) const {
    return "GET DATA /TYPE=TXT /FILE='" + path + "' " + arrangement + " /VARIABLES=" + variables +
           ".";
  }
  std::string LinesCommand(const std::string& path) const {
    return Command(path, "/DELIMITERS=','", "n AUTO s AUTO");
  }

  library::TestFolder folder_;
};

TEST_F(LifeCycle, AThousandIteratorsOneAfterAnother) {
  constexpr int kRows = 12000;
  const std::string path = folder_.Write("data.txt", Rows(kRows));
  const Import import(LinesCommand(path), 3);
  ASSERT_TRUE(import.made());
  const embedded::CaseBuffer buffer(import.source());
  const std::size_t descriptors = EntriesOf("/proc/self/fd");
  const std::size_t threads = EntriesOf("/proc/self/task");
  for (std::size_t round = 0; round < Rounds(1000); ++round) {
    const Reading reading = round % 2 == 0 ? Reading::kChosen : Reading::kOneThread;
    const auto iterator = import.MakeIterator(reading, buffer.obs());
    const int wanted = round % 50 < 2 ? kRows + 1 : static_cast<int>(round % 7);
    for (int i = 0; i < wanted; ++i) {
      ASSERT_EQ(iterator->Next(), i < kRows);
      ASSERT_EQ(buffer.Number(0), std::min(i, kRows - 1) + 0.5);
    }
  }
  EXPECT_EQ(EntriesOf("/proc/self/fd"), descriptors);
  EXPECT_EQ(EntriesOf("/proc/self/task"), threads);
  EXPECT_EQ(import.source().RowCount(), kRows);
}

TEST_F(LifeCycle, IteratorsAreGivenUpAtEveryStage) {
  constexpr std::size_t kRows = 9000;
  const std::string path = folder_.Write("data.txt", Rows(kRows));
  const std::vector<std::string> commands = {
      LinesCommand(path), Command(path, "/DELCASE=VARIABLES 2 /DELIMITERS=','", "n AUTO s A9"),
      Command(path, "/ARRANGEMENT=FIXED", "n 0-5 F6.1 s 0-9 A10")};
  for (const std::string& command : commands) {
    for (std::size_t round = 0; round < std::max<std::size_t>(Rounds(30), 3); ++round) {
      const Import import(command, static_cast<int>(2 + round % 3 * 3));
      ASSERT_TRUE(import.made());
      for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
        for (const std::size_t taken : {std::size_t{0}, std::size_t{1}, kRows / 2, kRows}) {
          const Pass pass = import.Read(reading, taken);
          ASSERT_EQ(pass.cases, taken);
          ASSERT_TRUE(pass.messages.empty());
        }
      }
    }
  }
}

TEST_F(LifeCycle, AnImportIsGivenUpUnread) {
  const std::string path = folder_.Write("data.txt", Rows(9000));
  for (std::size_t round = 0; round < Rounds(50); ++round) {
    ASSERT_TRUE(Import(LinesCommand(path), 4).made());
  }
}

TEST_F(LifeCycle, TwoSourcesAreReadAtOnce) {
  const std::string first = folder_.Write("first.txt", Rows(8000));
  const std::string second = folder_.Write("second.txt", "x" + Rows(9000));
  const Import imports[] = {Import(LinesCommand(first), 2), Import(LinesCommand(second), 3)};
  const Pass expected[] = {imports[0].Read(Reading::kOneThread),
                           imports[1].Read(Reading::kOneThread)};
  ASSERT_EQ(expected[0].cases, 8000u);
  ASSERT_EQ(expected[1].cases, 9000u);
  std::atomic<int> wrong{0};
  const auto readOften = [&](std::size_t which) {
    for (std::size_t round = 0; round < std::max<std::size_t>(Rounds(20), 4); ++round) {
      const Reading reading = round % 4 == 3 ? Reading::kOneThread : Reading::kChosen;
      if (imports[which].Read(reading) != expected[which]) ++wrong;
    }
  };
  std::thread other(readOften, 1);
  readOften(0);
  other.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(iocvgetdecchar_(), '.');
}

// Previews the whole file by the wizard's calls; how many records, or -1 after an error.
int Preview(embedded::PackageConnection& wizard, const std::string& path, std::string* text) {
  FileOpenResponse answer;
  const FileOpenRequest request(path, "UTF-8", false);
  if (wizard.Call(1002, request, answer) != 0 || answer.HasError()) return -1;
  if (wizard.Call(1003, request, answer) != 0 || answer.HasError()) return -1;
  int records = 0;
  for (;; ++records) {
    TextWizardDacStringResponse record;
    if (wizard.Call(1004, request, record) != 0) return -1;
    if (record.GetError().GetCode() != 0) break;
    *text += record.GetText() + "\n";
  }
  if (wizard.Call(1005, request, answer) != 0 || answer.HasError()) return -1;
  return records;
}

TEST_F(LifeCycle, TheWizardPreviewsAFileWhileItIsImported) {
  constexpr int kRows = 9000;
  const std::string text = Rows(kRows);
  const std::string path = folder_.Write("data.txt", text);
  std::atomic<bool> done{false};
  std::atomic<int> previews{0};
  std::atomic<int> wrong{0};
  std::thread wizardThread([&] {
    do {
      const auto wizard = embedded::PackageConnection::Open("TextWizardDACPkg");
      std::string seen;
      if (!wizard || Preview(*wizard, path, &seen) != kRows || seen != text) ++wrong;
      ++previews;
    } while (!done);
  });
  for (std::size_t round = 0; round < std::max<std::size_t>(Rounds(20), 3); ++round) {
    const Import import(LinesCommand(path), 3);
    EXPECT_EQ(import.Read(Reading::kChosen).cases, static_cast<std::size_t>(kRows));
    EXPECT_EQ(import.Read(Reading::kOneThread).cases, static_cast<std::size_t>(kRows));
  }
  done = true;
  wizardThread.join();
  EXPECT_GT(previews, 0);
  EXPECT_EQ(wrong, 0);
}

TEST_F(LifeCycle, ASlowConsumerGetsEveryCase) {
  constexpr int kRows = 30000;
  const std::string path = folder_.Write("data.txt", Rows(kRows));
  const Import import(LinesCommand(path), 2);
  const embedded::CaseBuffer buffer(import.source());
  const auto iterator = import.MakeIterator(Reading::kChosen, buffer.obs());
  for (int i = 0; i < kRows; ++i) {
    if (i % 500 == 0) QANT_msleep(5);
    ASSERT_TRUE(iterator->Next());
    ASSERT_EQ(buffer.Number(0), i + 0.5);
  }
  EXPECT_FALSE(iterator->Next());
}

TEST_F(LifeCycle, FiftyThousandVariables) {
  constexpr std::size_t kVariables = 50000;
  std::string declared;
  std::string found;
  std::string line;
  for (std::size_t i = 0; i < kVariables; ++i) {
    declared += " v" + std::to_string(i) + " F4.0";
    found += " v" + std::to_string(i) + " AUTO";
    line += std::to_string(i % 1000) + ",";
  }
  // Whole lines, a line that ends early, and one that goes on too long.
  const std::string text = line + "\n" + line + "\n1,2,3\n" + line + line + "\n";
  const std::string path = folder_.Write("wide.txt", text);
  for (const std::string* variables : {&declared, &found}) {
    const Import import(Command(path, "/DELIMITERS=','", *variables), 3);
    ASSERT_TRUE(import.made());
    ASSERT_EQ(import.source().GetNVariables(), kVariables);
    const Pass pass = import.Read(Reading::kChosen);
    EXPECT_EQ(pass.cases, 4u);
    EXPECT_EQ(import.Read(Reading::kOneThread), pass);
    const auto value = [&](std::size_t row, std::size_t column) {
      double number = 0;
      std::memcpy(&number, pass.bytes.data() + (row * kVariables + column) * sizeof number,
                  sizeof number);
      return number;
    };
    for (std::size_t i = 0; i < kVariables; ++i) {
      ASSERT_EQ(value(0, i), static_cast<double>(i % 1000)) << i;
      ASSERT_EQ(value(2, i), i < 3 ? static_cast<double>(i + 1) : kSystemMissing) << i;
      ASSERT_EQ(value(3, i), static_cast<double>(i % 1000)) << i;
    }
  }
  // The name that two variables share is found among all of them.
  const Import twice(Command(path, "/DELIMITERS=','", declared + " V49999 F4.0"));
  EXPECT_FALSE(twice.made());
  const std::vector<std::string> errors = Texts(twice.messages(), kMessageError);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].rfind("[2272]", 0), 0u) << errors[0];
}

}  // namespace
}  // namespace whole
