#include "library/columns/ColumnPieces.h"

namespace library {
namespace {

// Room for column `number` of the pieces in a batch that is empty.
void ReserveFor(const std::vector<ColumnBatch>& pieces, std::size_t number, Column& into) {
  std::size_t values = 0;
  std::size_t text = 0;
  for (const ColumnBatch& piece : pieces) {
    values += piece.columns[number].values.size();
    text += piece.columns[number].text.size();
  }
  into.values.Reserve(values);
  into.text.Reserve(text);
}

}  // namespace

ColumnBatch BatchPool::Take() {
  const sfGuard guard(mutex_);
  if (idle_.empty()) return {};
  ColumnBatch batch = std::move(idle_.back());
  idle_.pop_back();
  return batch;
}

void BatchPool::Give(ColumnBatch batch) noexcept {
  batch.cases = 0;
  std::size_t bytes = 0;
  for (Column& column : batch.columns) {
    bytes += column.validity.capacity() + column.values.capacity() + column.text.capacity();
    column.validity.clear();
    column.missing = 0;
    column.values.clear();
    column.text.clear();
  }
  if (bytes > kLargestKept) return;
  try {
    const sfGuard guard(mutex_);
    idle_.push_back(std::move(batch));
  } catch (...) {
    // Without memory for the list the batch's own is wanted elsewhere.
  }
}

ColumnPieces& ColumnPieces::operator=(ColumnPieces&& other) noexcept {
  if (this == &other) return *this;
  GiveBack();
  pool_ = std::move(other.pool_);
  pieces_ = std::move(other.pieces_);
  return *this;
}

void ColumnPieces::GiveBack() noexcept {
  for (ColumnBatch& piece : pieces_) {
    if (pool_ != nullptr) pool_->Give(std::move(piece));
  }
  pieces_.clear();
}

std::size_t ColumnPieces::cases() const {
  std::size_t cases = 0;
  for (const ColumnBatch& piece : pieces_) cases += piece.cases;
  return cases;
}

std::int64_t ColumnPieces::MissingIn(std::size_t column) const {
  std::int64_t missing = 0;
  for (const ColumnBatch& piece : pieces_) missing += piece.columns[column].missing;
  return missing;
}

ColumnBatch ColumnPieces::Join(const std::vector<ColumnField>& fields) {
  if (pieces_.empty()) return {};
  ColumnBatch joined;
  if (pieces_.size() == 1) {
    joined = std::move(pieces_.front());
    pieces_.clear();
    return joined;
  }
  joined.firstCase = pieces_.front().firstCase;
  joined.columns.resize(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) ReserveFor(pieces_, i, joined.columns[i]);
  for (const ColumnBatch& piece : pieces_) AppendBatch(fields, piece, joined);
  GiveBack();
  return joined;
}

Buffer ColumnPieces::JoinValidity(std::size_t column) const {
  Column joined;
  std::size_t had = 0;
  for (const ColumnBatch& piece : pieces_) {
    AppendValidity(piece.columns[column], 0, piece.cases, joined, had);
    had += piece.cases;
  }
  return std::move(joined.validity);
}

Buffer ColumnPieces::JoinOffsets(std::size_t column, ColumnType type) const {
  Buffer joined;
  joined.Reserve((cases() + 1) * ValueBytes(type));
  std::size_t before = 0;
  for (const ColumnBatch& piece : pieces_) {
    const Column& texts = piece.columns[column];
    AppendOffsets(texts, type, 0, piece.cases, before, joined);
    before += texts.text.size();
  }
  return joined;
}

}  // namespace library
