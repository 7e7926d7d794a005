// What goes wrong outside the engine ends a pass with one numbered error: never a crash, a hang, or
// the look of a shorter file.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/threads/ThreadStarts.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "TxtWzMultiThreadMgr/testing/EngineTest.h"
#include "model/MessageText.h"

namespace textwizard {
namespace {

using namespace engine_test;

class ThreadLimit {
 public:
  explicit ThreadLimit(int threads) { embedded::SetThreadStartLimit(threads); }
  ~ThreadLimit() { embedded::SetThreadStartLimit(-1); }
};

// A pass over `file` that fails after `cases` cases, as the rules for failures want it.
void ExpectFailureAfter(std::size_t cases, const DataFile& file, int workers) {
  const auto source = MakeSource(file.path(), workers, Numbers(1), CommaSettings());
  source->SetFileSpec(file.path().c_str());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  MessageKeeper monitor;
  iterator.SetErrorMonitor(&monitor);
  for (std::size_t i = 1; i <= cases; ++i) {
    ASSERT_TRUE(iterator.Next()) << i;
    ASSERT_EQ(buffer.Number(0), static_cast<double>(i));
  }
  EXPECT_TRUE(monitor.messages.empty());
  EXPECT_FALSE(iterator.Next());
  EXPECT_FALSE(iterator.Next());
  ASSERT_EQ(monitor.messages.size(), 1u);
  EXPECT_EQ(monitor.messages[0].text, ReadFailedError(file.path()).text);
  EXPECT_EQ(monitor.messages[0].kind, kMessageError);
  // Not a complete pass.
  EXPECT_EQ(source->RowCount(), -1);
}

void ExpectDetectionFails(const DataFile& file, int workers) {
  const auto source = MakeSource(file.path(), workers, {}, CommaSettings());
  TxtWzVar variable;
  variable.formatType = kFormatAuto;
  TxtWzVar* const variables[] = {&variable};
  QANT_TextWizardMultiThreadedIterator iterator(*source, nullptr, true);
  try {
    iterator.PerformAutoDetection(variables, 1);
    FAIL() << "the failure went unnoticed";
  } catch (const int number) {
    EXPECT_EQ(number, 2269);
  }
}

TEST(Faults, NoThreadForTheReader) {
  const DataFile file(NumberedLines(1, 10));
  const ThreadLimit limit(0);
  ExpectFailureAfter(0, file, 2);
  ExpectDetectionFails(file, 2);
}

TEST(Faults, NoThreadForTheFirstWorker) {
  const DataFile file(NumberedLines(1, 10));
  {
    const ThreadLimit limit(1);
    ExpectFailureAfter(0, file, 2);
  }
  const ThreadLimit limit(1);
  ExpectDetectionFails(file, 2);
}

TEST(Faults, NoThreadForTheSecondWorker) {
  // Two batches.
  std::string text;
  for (int i = 1; i <= 30000; ++i) {
    char line[16];
    std::snprintf(line, sizeof line, "%05d\n", i);
    text += line;
  }
  const DataFile file(text);
  {
    const ThreadLimit limit(2);
    // 6 bytes each: 20,833 records make 124,998 bytes.
    ExpectFailureAfter(20833, file, 3);
  }
  const ThreadLimit limit(2);
  ExpectDetectionFails(file, 3);
}

TEST(Faults, AnUnreadIteratorWithoutThreadsIsDestroyed) {
  const DataFile file(NumberedLines(1, 100000));
  for (const int threads : {0, 1, 2}) {
    const ThreadLimit limit(threads);
    const auto source = MakeSource(file.path(), 4, Numbers(1), CommaSettings());
    CaseBuffer buffer(*source);
    const QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  }
}

TEST(Faults, ReadErrorComesAfterAllEarlierCases) {
  // Ten bytes a record, so the record that the failure hits is known.
  std::string text;
  for (int i = 1; i <= 40000; ++i) {
    char line[16];
    std::snprintf(line, sizeof line, "%09d\n", i);
    text += line;
  }
  auto faults = std::make_shared<embedded::StreamFaults>();
  const embedded::ScopedBlockSize block(4096);
  const DataFile file(text, faults);
  for (const std::int64_t record : {0, 1, 12499, 12500, 30000, 39999}) {
    for (const int workers : {2, 3, 8}) {
      SCOPED_TRACE(std::to_string(record) + " records, " + std::to_string(workers) + " workers");
      faults->failAt = record * 10;
      ExpectFailureAfter(static_cast<std::size_t>(record), file, workers);
      ExpectDetectionFails(file, workers);
    }
  }
}

TEST(Faults, FileThatShrankIsAReadError) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  const DataFile file("1\n2\n3\n", faults);
  faults->cutAt = 4;
  ExpectFailureAfter(2, file, 2);
}

TEST(Faults, ReadErrorBeyondTheCasesAskedForIsNone) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  const DataFile file(NumberedLines(1, 1000), faults);
  faults->failAt = 2000;
  ImportSettings settings = CommaSettings();
  settings.importMode = kImportFirst;
  settings.caseLimit = 3;
  const auto source = MakeSource(file.path(), 2, Numbers(1), settings);
  const Pass pass = ReadAll(*source);
  EXPECT_EQ(pass.cases.size(), 3u);
  EXPECT_TRUE(pass.errors.empty());
  EXPECT_EQ(pass.rowCount, 3);
}

TEST(Faults, OneByteAtATimeIsTheWholeFile) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  faults->mostBytes = 1;
  const DataFile file(NumberedLines(1, 20000), faults);
  const auto source = MakeSource(file.path(), 3, Numbers(1), CommaSettings());
  EXPECT_EQ(ReadAll(*source).cases.size(), 20000u);
}

TEST(Faults, StreamThatCannotBeCopied) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  const DataFile file(NumberedLines(1, 10), faults);
  iocvsetdeccharcomma_();
  // One copy for the source, which is made before.
  faults->duplicatesLeft = 0;
  ExpectFailureAfter(0, file, 2);
  ExpectDetectionFails(file, 2);
  EXPECT_EQ(iocvgetdecchar_(), ',');
  iocvsetdecchardot_();
}

TEST(Faults, ProcessOutOfDescriptors) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer's check of object types needs descriptors itself";
#endif
  char path[] = "/tmp/engine_test_XXXXXX";
  const int made = mkstemp(path);
  ASSERT_GE(made, 0);
  ASSERT_EQ(write(made, "1\n", 2), 2);
  close(made);
  // Reads the catalogue, which takes a descriptor too.
  const std::string readFailed = ReadFailedError(path).text;
  const auto source = MakeSource(path, 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit few = before;
  few.rlim_cur = 64;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  std::vector<int> taken;
  for (int next; (next = open("/dev/null", O_RDONLY)) >= 0;) taken.push_back(next);
  MessageKeeper monitor;
  bool delivered = true;
  {
    const std::unique_ptr<QANT_InputCaseIterator> iterator(source->MakeIterator(buffer.obs()));
    iterator->SetErrorMonitor(&monitor);
    delivered = iterator->Next();
  }
  for (const int descriptor : taken) close(descriptor);
  setrlimit(RLIMIT_NOFILE, &before);
  std::remove(path);
  EXPECT_FALSE(delivered);
  EXPECT_EQ(monitor.Texts(kMessageError), std::vector<std::string>{readFailed});
}

}  // namespace
}  // namespace textwizard
