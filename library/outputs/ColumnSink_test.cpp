// Parts of any size become full batches, in order, and a rest.
#include "library/outputs/ColumnSink.h"

#include <bit>
#include <set>

#include <gtest/gtest.h>

namespace library {
namespace {

ColumnField NumberField() {
  ColumnField field;
  field.name = "n";
  field.type = ColumnType::kInt64;
  return field;
}

TEST(ColumnSink, FillsBatchesAndKeepsTheOrder) {
  const std::vector<ColumnField> fields{NumberField()};
  std::vector<ColumnBatch> batches;
  std::size_t pieces = 0;
  ColumnSink sink(fields, 1, ColumnSink::Batches::kInPieces, [&](ColumnPieces batch) {
    pieces += batch.size();
    std::int64_t before = batch.front().firstCase;
    for (const ColumnBatch& piece : batch) {
      EXPECT_EQ(piece.firstCase, before);
      before += static_cast<std::int64_t>(piece.cases);
    }
    batches.push_back(batch.Join(fields));
  });
  constexpr std::size_t kCases = 2 * kBatchCases + 100;
  std::vector<OBS> cases;
  for (std::size_t i = 0; i < kCases; ++i) {
    cases.push_back(std::bit_cast<OBS>(static_cast<double>(i)));
  }
  std::size_t at = 0;
  for (std::size_t part = 1; at < kCases; part = part * 3 + 1) {
    const std::size_t count = std::min(part, kCases - at);
    sink.Take(sink.Make(cases.data() + at, count, static_cast<std::int64_t>(at)));
    at += count;
  }
  EXPECT_EQ(batches.size(), 2U);
  sink.Finish();
  ASSERT_EQ(batches.size(), 3U);
  // The small ones at the beginning are one piece; large ones stay as they are, cut where a batch
  // ends.
  EXPECT_GT(pieces, 3U);
  EXPECT_LT(pieces, 12U);
  EXPECT_EQ(batches[0].cases, kBatchCases);
  EXPECT_EQ(batches[1].cases, kBatchCases);
  EXPECT_EQ(batches[2].cases, 100U);
  std::int64_t expected = 0;
  for (const ColumnBatch& batch : batches) {
    EXPECT_EQ(batch.firstCase, expected);
    for (std::size_t row = 0; row < batch.cases; ++row) {
      ASSERT_EQ(batch.columns[0].values.As<std::int64_t>()[row], expected++);
    }
  }
}

TEST(ColumnSink, MemoryDoesNotGrowWithTheNumberOfBatches) {
  const std::vector<ColumnField> fields{NumberField()};
  std::set<const std::byte*> memory;
  std::size_t batches = 0;
  ColumnSink sink(fields, 1, ColumnSink::Batches::kInPieces, [&](const ColumnPieces& batch) {
    ++batches;
    for (const ColumnBatch& piece : batch) memory.insert(piece.columns[0].values.data());
  });
  // Of a size that batches are not a multiple of: one part in each is cut.
  constexpr std::size_t kPart = 5000;
  const std::vector<OBS> cases(kPart, std::bit_cast<OBS>(1.0));
  for (std::size_t at = 0; at < 100 * kBatchCases; at += kPart) {
    sink.Take(sink.Make(cases.data(), kPart, static_cast<std::int64_t>(at)));
  }
  EXPECT_EQ(batches, 100U);
  EXPECT_LT(memory.size(), 2 * kBatchCases / kPart + 10);
}

TEST(ColumnSink, WideCasesComeInSmallerBatches) {
  std::vector<ColumnField> fields(10000, NumberField());
  std::size_t largest = 0;
  ColumnSink sink(fields, 1, ColumnSink::Batches::kWhole,
                  [&](const ColumnPieces& batch) { largest = std::max(largest, batch.cases()); });
  std::vector<OBS> cases(10000, std::bit_cast<OBS>(1.0));
  sink.Take(sink.Make(cases.data(), cases.size(), 0));
  sink.Finish();
  EXPECT_GT(largest, 1000U);
  EXPECT_LE(largest * 10000 * 8, ColumnSink::kLargestBatch);
}

TEST(ColumnSink, AddsUpWhatTypesCouldNotHold) {
  ColumnSink sink({NumberField()}, 1, ColumnSink::Batches::kWhole, [](const ColumnPieces&) {});
  const OBS half = std::bit_cast<OBS>(0.5);
  sink.Take(sink.Make(&half, 1, 0));
  sink.Take(sink.Make(&half, 1, 1));
  sink.Finish();
  ASSERT_EQ(sink.misfits().first.size(), 1U);
  EXPECT_EQ(sink.misfits().first[0].caseNumber, 1);
  EXPECT_EQ(sink.misfits().counts[0], 2);
}

}  // namespace
}  // namespace library
