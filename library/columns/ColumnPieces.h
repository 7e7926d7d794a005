// A batch of columns in the pieces in which it was built.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "HostFramework/Threads.h"
#include "library/columns/ColumnBatch.h"

namespace library {

// Batches that nobody needs any more, for their memory: it is in the processor's caches still, and
// new memory has to be asked of the system page by page. Any thread.
class BatchPool {
 public:
  // A batch without cases.
  ColumnBatch Take();
  // Forgets a batch of more memory than one conversion makes use of, and where there is none to
  // keep it.
  void Give(ColumnBatch batch) noexcept;

 private:
  static constexpr std::size_t kLargestKept = std::size_t{4} << 20;

  sfMutex mutex_;
  std::vector<ColumnBatch> idle_ SF_GUARDED_BY(mutex_);
};

// Batches of the same columns that follow one another and count as one.
class ColumnPieces {
 public:
  // `pool` gets the pieces when they are no longer needed; null for none.
  explicit ColumnPieces(std::shared_ptr<BatchPool> pool = nullptr) : pool_(std::move(pool)) {}
  ColumnPieces(ColumnPieces&& other) noexcept = default;
  ColumnPieces& operator=(ColumnPieces&& other) noexcept;
  ~ColumnPieces() { GiveBack(); }

  std::size_t size() const { return pieces_.size(); }
  bool empty() const { return pieces_.empty(); }
  auto begin() const { return pieces_.begin(); }
  auto end() const { return pieces_.end(); }
  const ColumnBatch& front() const { return pieces_.front(); }
  ColumnBatch& back() { return pieces_.back(); }
  ColumnBatch& Add(ColumnBatch piece) { return pieces_.emplace_back(std::move(piece)); }

  std::size_t cases() const;
  // How many values of a column are missing.
  std::int64_t MissingIn(std::size_t column) const;
  // The pieces as one batch; a single one is that batch itself. Nothing is left here. Throws
  // std::bad_alloc.
  ColumnBatch Join(const std::vector<ColumnField>& fields);
  // Of one column, what cannot stand side by side as it is. Bits as `validity` has them, of no
  // bytes while none is missing; offsets of a text as `values` has them. Throw std::bad_alloc.
  Buffer JoinValidity(std::size_t column) const;
  Buffer JoinOffsets(std::size_t column, ColumnType type) const;

 private:
  void GiveBack() noexcept;

  std::shared_ptr<BatchPool> pool_;
  std::vector<ColumnBatch> pieces_;
};

}  // namespace library
