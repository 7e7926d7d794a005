#include "library/outputs/ColumnSink.h"

#include <algorithm>
#include <utility>

namespace library {
namespace {

class ColumnPart : public CasePart {
 public:
  ColumnBatch batch;
  ColumnMisfits misfits;
};

// Bytes of a case in columns, at most.
std::size_t CaseBytes(const std::vector<ColumnField>& fields) {
  std::size_t bytes = 1;
  for (const ColumnField& field : fields) bytes += ValueBytes(field.type) + field.bytes;
  return bytes;
}

}  // namespace

ColumnSink::ColumnSink(std::vector<ColumnField> fields, std::size_t cells, Batches batches,
                       std::function<void(ColumnPieces)> take)
    : fields_(std::move(fields)),
      cells_(cells),
      take_(std::move(take)),
      small_(batches == Batches::kWhole ? kBatchCases + 1 : kSmallPiece),
      most_(std::clamp<std::size_t>(kLargestBatch / CaseBytes(fields_), 1, kBatchCases)) {}

std::unique_ptr<CasePart> ColumnSink::Make(const OBS* cases, std::size_t count,
                                           std::int64_t firstCase) const {
  auto part = std::make_unique<ColumnPart>();
  part->batch =
      BuildColumns(fields_, cases, count, cells_, firstCase, &part->misfits, pool_->Take());
  return part;
}

void ColumnSink::Take(std::unique_ptr<CasePart> part) {
  auto& columns = static_cast<ColumnPart&>(*part);
  MergeMisfits(columns.misfits, misfits_);
  const std::size_t cases = columns.batch.cases;
  for (std::size_t begin = 0; begin < cases;) {
    const std::size_t end = std::min(cases, begin + most_ - cases_);
    AddCases(columns.batch, begin, end);
    begin = end;
    if (cases_ == most_) HandOver();
  }
}

void ColumnSink::AddCases(ColumnBatch& piece, std::size_t begin, std::size_t end) {
  const std::size_t count = end - begin;
  const bool small = count < small_;
  const bool asItIs = count == piece.cases && !small;
  const std::int64_t before = before_ + static_cast<std::int64_t>(cases_);
  cases_ += count;
  if (asItIs) {
    batch_.Add(std::move(piece)).firstCase = before;
    lastGrows_ = false;
    return;
  }
  if (!small || !lastGrows_) {
    ColumnBatch& last = batch_.Add(pool_->Take());
    last.firstCase = before;
    last.columns.resize(fields_.size());
    // As much as the last time: buffers that grow step by step are copied again and again.
    for (std::size_t i = 0; small && i < rooms_.size(); ++i) {
      last.columns[i].validity.Reserve(rooms_[i].validity);
      last.columns[i].values.Reserve(rooms_[i].values);
      last.columns[i].text.Reserve(rooms_[i].text);
    }
  }
  AppendCases(fields_, piece, begin, end, batch_.back());
  lastGrows_ = small;
  if (end == piece.cases) pool_->Give(std::move(piece));
}

void ColumnSink::HandOver() {
  if (lastGrows_) {
    rooms_.clear();
    for (const Column& column : batch_.back().columns) {
      rooms_.push_back({.validity = column.validity.size(),
                        .values = column.values.size(),
                        .text = column.text.size()});
    }
  }
  before_ += static_cast<std::int64_t>(cases_);
  cases_ = 0;
  lastGrows_ = false;
  take_(std::exchange(batch_, ColumnPieces(pool_)));
}

void ColumnSink::Finish() {
  if (cases_ != 0) HandOver();
}

}  // namespace library
