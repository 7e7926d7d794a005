// Records around the size of a batch text and far beyond it.
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "TxtWzMultiThreadMgr/testing/EngineTest.h"

namespace textwizard {
namespace {

using namespace engine_test;

// A record of `length` bytes: its number, a comma, and letters.
std::string Record(int number, std::size_t length) {
  std::string text = std::to_string(number) + ",";
  text.resize(length, static_cast<char>('a' + number % 26));
  return text + "\n";
}

struct Where {
  int before;
  int after;
};

// Reads a file with one record of `length` bytes among short ones and expects every case.
void ExpectAllCases(std::size_t length, const Where& where, int workers) {
  SCOPED_TRACE(std::to_string(length) + " bytes behind " + std::to_string(where.before) +
               " records, " + std::to_string(workers) + " workers");
  std::string text;
  int number = 0;
  for (int i = 0; i < where.before; ++i) text += Record(++number, 40);
  text += Record(++number, length);
  for (int i = 0; i < where.after; ++i) text += Record(++number, 40);
  const DataFile file(std::move(text));
  const auto source =
      MakeSource(file.path(), workers, {{kFormatF, 8}, {kFormatA, 8}}, CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  MessageKeeper monitor;
  iterator.SetErrorMonitor(&monitor);
  for (int i = 1; i <= number; ++i) {
    ASSERT_TRUE(iterator.Next()) << i;
    ASSERT_EQ(buffer.Number(0), i);
    ASSERT_EQ(buffer.Text(1, 8), std::string(8, static_cast<char>('a' + i % 26))) << i;
  }
  EXPECT_FALSE(iterator.Next());
  EXPECT_TRUE(monitor.messages.empty());
  EXPECT_EQ(source->RowCount(), number);
}

constexpr Where kPlaces[] = {{0, 0}, {0, 20000}, {10000, 10000}, {20000, 0}, {1, 1}};

TEST(LongRecords, AroundTheSizeOfABatch) {
  for (std::size_t length = 124998; length <= 125002; ++length) {
    for (const Where& where : kPlaces) {
      for (const int workers : {2, 3}) ExpectAllCases(length, where, workers);
    }
  }
}

TEST(LongRecords, AMegabyte) {
  for (const Where& where : kPlaces) {
    for (const int workers : {2, 3}) ExpectAllCases(1000000, where, workers);
  }
}

TEST(LongRecords, AHundredMegabytesFirst) { ExpectAllCases(100000000, {0, 20000}, 2); }
TEST(LongRecords, AHundredMegabytesInTheMiddle) { ExpectAllCases(100000000, {10000, 10000}, 2); }
TEST(LongRecords, AHundredMegabytesLast) { ExpectAllCases(100000000, {20000, 0}, 2); }

TEST(LongRecords, OneAfterAnother) {
  std::string text;
  for (int i = 1; i <= 60; ++i) text += Record(i, i % 3 == 0 ? 30 : 124990 + 10 * std::size_t(i));
  const DataFile file(std::move(text));
  const auto source = MakeSource(file.path(), 2, {{kFormatF, 8}, {kFormatA, 16}}, CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  for (int i = 1; i <= 60; ++i) {
    ASSERT_TRUE(iterator.Next()) << i;
    ASSERT_EQ(buffer.Number(0), i);
  }
  EXPECT_FALSE(iterator.Next());
}

TEST(LongRecords, WideCasesOfShortRecords) {
  // A batch of such records would need more than a gigabyte of cases.
  std::string text;
  for (int i = 1; i <= 2000; ++i) text += std::to_string(i) + ",x\n";
  const DataFile file(std::move(text));
  const auto source =
      MakeSource(file.path(), 3, {{kFormatF, 8}, {kFormatA, 32767}}, CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  for (int i = 1; i <= 2000; ++i) {
    ASSERT_TRUE(iterator.Next()) << i;
    ASSERT_EQ(buffer.Number(0), i);
    ASSERT_EQ(buffer.Text(1, 3), "x  ");
    ASSERT_EQ(buffer.Text(4096, 8), "        ");
  }
  EXPECT_FALSE(iterator.Next());
}

}  // namespace
}  // namespace textwizard
