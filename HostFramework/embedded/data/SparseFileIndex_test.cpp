#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/FileStream.h"

namespace {

constexpr std::int64_t kMostEntries = 65536;

// Where a case is, as every pass over the same file finds it.
std::int64_t PositionOf(std::int64_t caseNumber) { return caseNumber * 10 + 3; }

std::int64_t Nearest(const QANT_SparseFileIndex& index, std::int64_t wanted) {
  std::int64_t caseNumber = -1, position = -1;
  if (!index.GetPos(wanted, &caseNumber, &position)) return -1;
  EXPECT_EQ(position, PositionOf(caseNumber));
  return caseNumber;
}

void AddCases(QANT_SparseFileIndex& index, std::int64_t from, std::int64_t to) {
  for (std::int64_t n = from; n < to; ++n) index.Add(n, PositionOf(n));
}

TEST(SparseFileIndex, WithoutAnEntryBothArgumentsStay) {
  QANT_SparseFileIndex index(1);
  std::int64_t caseNumber = 7, position = 8;
  EXPECT_FALSE(index.GetPos(100, &caseNumber, &position));
  index.Add(5, 50);
  EXPECT_FALSE(index.GetPos(4, &caseNumber, &position));
  EXPECT_EQ(caseNumber, 7);
  EXPECT_EQ(position, 8);
}

TEST(SparseFileIndex, AnswersWithTheNearestEntryAtOrBefore) {
  QANT_SparseFileIndex index(1);
  for (const std::int64_t n : {0, 3, 4}) index.Add(n, PositionOf(n));
  EXPECT_EQ(Nearest(index, 0), 0);
  EXPECT_EQ(Nearest(index, 2), 0);
  EXPECT_EQ(Nearest(index, 3), 3);
  EXPECT_EQ(Nearest(index, 1000), 4);
  EXPECT_EQ(Nearest(index, -1), -1);
}

TEST(SparseFileIndex, KeepsEveryNthCase) {
  QANT_SparseFileIndex index(10);
  AddCases(index, 0, 100);
  EXPECT_EQ(Nearest(index, 9), 0);
  EXPECT_EQ(Nearest(index, 10), 10);
  EXPECT_EQ(Nearest(index, 99), 90);
}

TEST(SparseFileIndex, ASpacingBelowOneIsOne) {
  QANT_SparseFileIndex index(0);
  AddCases(index, 0, 3);
  EXPECT_EQ(Nearest(index, 1), 1);
}

TEST(SparseFileIndex, HoldsAsManyEntriesAsItMay) {
  QANT_SparseFileIndex index(1);
  AddCases(index, 0, kMostEntries);
  for (std::int64_t n = 0; n < kMostEntries; ++n) ASSERT_EQ(Nearest(index, n), n);
}

TEST(SparseFileIndex, WhenFullItDropsEveryOtherEntryAndDoublesItsSpacing) {
  QANT_SparseFileIndex index(1);
  AddCases(index, 0, kMostEntries + 4);
  for (std::int64_t n = 0; n < kMostEntries + 4; ++n) ASSERT_EQ(Nearest(index, n), n / 2 * 2);
}

TEST(SparseFileIndex, AMillionCasesStayEvenlySpread) {
  QANT_SparseFileIndex index(1);
  AddCases(index, 0, 1000000);
  // 16 is the first spacing at which a million cases are no more than 65,536 entries.
  for (std::int64_t n = 0; n < 1000000; n += 7) ASSERT_EQ(Nearest(index, n), n / 16 * 16);
}

TEST(SparseFileIndex, APassFromTheStartAddsTheSameCasesAgain) {
  QANT_SparseFileIndex index(1);
  for (int pass = 0; pass < 3; ++pass) AddCases(index, 0, 200000);
  for (std::int64_t n = 0; n < 200000; n += 3) ASSERT_EQ(Nearest(index, n), n / 4 * 4);
}

TEST(SparseFileIndex, TheFirstPositionOfACaseStays) {
  QANT_SparseFileIndex index(1);
  index.Add(4, PositionOf(4));
  index.Add(4, 1);
  EXPECT_EQ(Nearest(index, 4), 4);
}

TEST(SparseFileIndex, AFullIndexIsNotThinnedByACaseItKnows) {
  QANT_SparseFileIndex index(1);
  AddCases(index, 0, kMostEntries);
  index.Add(kMostEntries - 1, PositionOf(kMostEntries - 1));
  EXPECT_EQ(Nearest(index, 1), 1);
}

TEST(SparseFileIndex, CasesMayComeInAnyOrder) {
  QANT_SparseFileIndex index(1);
  for (const std::int64_t n : {9, 1, 5, 3, 7}) index.Add(n, PositionOf(n));
  for (std::int64_t n = 1; n <= 10; ++n) EXPECT_EQ(Nearest(index, n), (n - 1) / 2 * 2 + 1);
}

TEST(SparseFileIndex, CasesOfOneDistantStepAreStillBounded) {
  QANT_SparseFileIndex index(1);
  const std::int64_t step = std::int64_t{1} << 40;
  for (std::int64_t n = 0; n <= kMostEntries; ++n) index.Add(n * step, PositionOf(n * step));
  EXPECT_EQ(Nearest(index, step), 0);
  EXPECT_EQ(Nearest(index, 2 * step), 2 * step);
  EXPECT_EQ(Nearest(index, kMostEntries * step), kMostEntries * step);
}

TEST(SparseFileIndex, ManyThreadsMayAddAndAsk) {
  QANT_SparseFileIndex index(1);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&index, t] {
      for (std::int64_t n = 0; n < 100000; ++n) {
        index.Add(n, PositionOf(n));
        if (n % 16 == t) {
          const std::int64_t found = Nearest(index, n);
          ASSERT_GE(found, 0);
          ASSERT_LE(found, n);
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::int64_t n = 0; n < 100000; n += 5) ASSERT_EQ(Nearest(index, n), n / 2 * 2);
}

}  // namespace
