// What is noted comes out again, record by record.
#include "TxtWzMultiThreadMgr/UndecodableNotes.h"

#include <random>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

using Noted = std::tuple<std::uint32_t, std::size_t, std::size_t>;
using Runs = std::vector<Noted>;

void AddAll(UndecodableNotes& notes, const Runs& runs) {
  for (const auto& [record, position, count] : runs) notes.Add(record, {position, count});
}

Runs TakeBelow(UndecodableNotes& notes, std::uint32_t records) {
  Runs runs;
  while (const UndecodableNotes::Note* const note = notes.Next(records)) {
    runs.emplace_back(note->record, note->run.position, note->run.count);
  }
  return runs;
}

TEST(UndecodableNotes, WaitForTheirRecord) {
  UndecodableNotes notes;
  EXPECT_EQ(notes.Next(UINT32_MAX), nullptr);
  AddAll(notes, {{2, 0, 1}, {2, 5, 20000000}, {7, 3, 1}});
  EXPECT_EQ(notes.Next(0), nullptr);
  EXPECT_EQ(notes.Next(2), nullptr);
  EXPECT_EQ(TakeBelow(notes, 3), (Runs{{2, 0, 1}, {2, 5, 20000000}}));
  EXPECT_EQ(notes.Next(7), nullptr);
  EXPECT_EQ(TakeBelow(notes, 8), (Runs{{7, 3, 1}}));
  EXPECT_EQ(notes.Next(UINT32_MAX), nullptr);
  notes.Clear();
  AddAll(notes, {{0, 9, 2}});
  EXPECT_EQ(TakeBelow(notes, 1), (Runs{{0, 9, 2}}));
}

TEST(UndecodableNotes, TakeNoMoreMemoryThanTheText) {
  UndecodableNotes notes;
  // Every second byte of a long record, and one byte in each of many.
  constexpr std::size_t kLength = 1000000;
  for (std::size_t at = 1; at < kLength; at += 2) notes.Add(0, {at, 1});
  EXPECT_LE(notes.bytes(), kLength);
  notes.Clear();
  for (std::uint32_t record = 0; record < 1000; ++record) notes.Add(record, {3, 1});
  EXPECT_LE(notes.bytes(), 4000u);
  // However long the run.
  notes.Clear();
  notes.Add(0, {0, std::size_t{1} << 40});
  EXPECT_LE(notes.bytes(), 10u);
}

TEST(UndecodableNotes, RandomRuns) {
  std::mt19937 random(3);
  UndecodableNotes notes;
  for (int round = 0; round < 500; ++round) {
    notes.Clear();
    Runs runs;
    std::uint32_t record = 0;
    std::size_t end = 0;
    for (std::size_t n = random() % 50; n > 0; --n) {
      if (random() % 3 == 0) {
        record += 1 + static_cast<std::uint32_t>(random() % 400);
        end = 0;
      }
      const std::size_t position = end + random() % (std::size_t{1} << random() % 40);
      const std::size_t count = 1 + random() % (std::size_t{1} << random() % 30);
      runs.emplace_back(record, position, count);
      end = position + count;
    }
    AddAll(notes, runs);
    Runs taken;
    for (std::uint32_t records = 0; taken.size() < runs.size();) {
      records += static_cast<std::uint32_t>(random() % 300);
      const Runs some = TakeBelow(notes, records);
      for (const Noted& run : some) EXPECT_LT(std::get<0>(run), records);
      taken.insert(taken.end(), some.begin(), some.end());
    }
    ASSERT_EQ(taken, runs);
  }
}

}  // namespace
}  // namespace textwizard
