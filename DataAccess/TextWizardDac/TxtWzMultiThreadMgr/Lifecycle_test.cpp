// Iterators destroyed at every stage: threads stop and are joined whatever they were doing.
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/Threads.h"
#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "TxtWzMultiThreadMgr/testing/AdapterTest.h"
#include "TxtWzMultiThreadMgr/testing/EngineTest.h"

namespace textwizard {
namespace {

using namespace engine_test;

// How often each stage is tried: a hundred times, or what TEXTWIZARD_TEST_ROUNDS says.
int Rounds() {
  const char* wanted = std::getenv("TEXTWIZARD_TEST_ROUNDS");
  return wanted ? std::atoi(wanted) : 100;
}

// Iterators over `cases` numbered lines, each destroyed after `taken` cases.
void DestroyAfter(std::int64_t cases, std::int64_t taken) {
  const DataFile file(NumberedLines(1, cases));
  for (int round = 0; round < Rounds(); ++round) {
    const auto source = MakeSource(file.path(), 2 + round % 3, Numbers(1), CommaSettings());
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    for (std::int64_t i = 1; i <= taken; ++i) {
      ASSERT_EQ(iterator.Next(), i <= cases) << "round " << round << ", case " << i;
      if (i <= cases) {
        ASSERT_EQ(buffer.Number(0), static_cast<double>(i));
      }
    }
  }
}

TEST(Lifecycle, Unread) { DestroyAfter(100000, 0); }
TEST(Lifecycle, AfterTheFirstCase) { DestroyAfter(100000, 1); }
TEST(Lifecycle, InTheMiddleOfABatch) { DestroyAfter(100000, 12345); }
TEST(Lifecycle, BetweenTwoBatches) {
  // Numbers below 10: 2 bytes each; to 99: 3; to 999: 4; to 9,999: 5; then 6. The first batch takes
  // 124,999 bytes at most: 18 + 270 + 3,600 + 45,000 bytes make 9,999 cases, and 12,685 of 6 bytes
  // fill it.
  for (const std::int64_t taken : {22683, 22684, 22685}) DestroyAfter(60000, taken);
}
TEST(Lifecycle, AtTheLastCase) { DestroyAfter(30000, 30000); }
TEST(Lifecycle, AtTheEnd) { DestroyAfter(30000, 30001); }
TEST(Lifecycle, EmptyFileUnread) { DestroyAfter(0, 0); }
TEST(Lifecycle, EmptyFileAtTheEnd) { DestroyAfter(0, 1); }
TEST(Lifecycle, OneRecordUnread) { DestroyAfter(1, 0); }
TEST(Lifecycle, OneRecordTaken) { DestroyAfter(1, 1); }
TEST(Lifecycle, OneRecordAtTheEnd) { DestroyAfter(1, 2); }

TEST(Lifecycle, DetectionNeverPerformed) {
  const DataFile file(NumberedLines(1, 1000));
  for (int round = 0; round < Rounds(); ++round) {
    const auto source = MakeSource(file.path(), 3, Numbers(1), CommaSettings());
    iocvsetdeccharcomma_();
    { const QANT_TextWizardMultiThreadedIterator iterator(*source, nullptr, true); }
    ASSERT_EQ(iocvgetdecchar_(), ',');
    iocvsetdecchardot_();
  }
}

TEST(Lifecycle, DetectionAtTheEnd) {
  for (const std::int64_t cases : {0, 1, 1000, 60000}) {
    const DataFile file(NumberedLines(1, cases));
    const int rounds = Rounds() / 10;
    for (int round = 0; round < rounds; ++round) {
      const auto source = MakeSource(file.path(), 2 + round % 3, {}, CommaSettings());
      TxtWzVar variable;
      variable.formatType = kFormatAuto;
      TxtWzVar* const variables[] = {&variable};
      QANT_TextWizardMultiThreadedIterator iterator(*source, nullptr, true);
      ASSERT_EQ(iterator.PerformAutoDetection(variables, 1), cases);
      ASSERT_EQ(variable.numericCount, static_cast<std::uint64_t>(cases));
    }
  }
}

TEST(Lifecycle, DetectionInterrupted) {
  const DataFile file(NumberedLines(1, 100000));
  KeepingAdapter adapter;
  embedded::RequestAttention();
  const int rounds = Rounds() / 10;
  for (int round = 0; round < rounds; ++round) {
    const auto source = MakeSource(file.path(), 2 + round % 3, {}, CommaSettings());
    TxtWzVar variable;
    variable.formatType = kFormatAuto;
    TxtWzVar* const variables[] = {&variable};
    QANT_TextWizardMultiThreadedIterator iterator(*source, nullptr, true);
    iterator.SetDacAdapter(&adapter);
    ASSERT_LT(iterator.PerformAutoDetection(variables, 1), 100000);
  }
  embedded::ClearAttention();
}

double ProcessorSeconds() {
  timespec used;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

TEST(Lifecycle, AConsumerThatPausesLeavesTheProcessorsIdle) {
  const DataFile file(NumberedLines(1, 1000000));
  const auto source = MakeSource(file.path(), 8, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  ASSERT_TRUE(iterator.Next());
  // Time for the ring to fill.
  QANT_msleep(500);
  const double before = ProcessorSeconds();
  QANT_msleep(1000);
  const double used = ProcessorSeconds() - before;
  RecordProperty("processor_milliseconds", static_cast<int>(used * 1000));
  // One thread that spins would use a second, or half of it on a busy machine.
  EXPECT_LT(used, 0.1);
  for (int i = 2; i <= 1000000; ++i) ASSERT_TRUE(iterator.Next());
  EXPECT_FALSE(iterator.Next());
}

TEST(Lifecycle, AStreamThatBlocksLeavesTheProcessorsIdle) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  // The first block comes at once, the second one late.
  faults->beforeRead = [](std::int64_t offset) {
    if (offset > 0) QANT_msleep(700);
  };
  const embedded::ScopedBlockSize block(4096);
  const DataFile file(NumberedLines(1, 1500), faults);
  const auto source = MakeSource(file.path(), 4, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  const double before = ProcessorSeconds();
  for (int i = 1; i <= 1500; ++i) {
    ASSERT_TRUE(iterator.Next());
    ASSERT_EQ(buffer.Number(0), i);
  }
  EXPECT_FALSE(iterator.Next());
  const double used = ProcessorSeconds() - before;
  RecordProperty("processor_milliseconds", static_cast<int>(used * 1000));
  EXPECT_LT(used, 0.1);
}

}  // namespace
}  // namespace textwizard
