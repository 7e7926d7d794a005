// A file of columns that is written while the next batch is gathered.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "library/outputs/ColumnWriter.h"
#include "library/outputs/OrderedTasks.h"

namespace library {

// Hands batches to a writer on a thread of its own; where none can be started, on the caller's.
// What the writer throws, a later Write or Finish throws. Keeps one batch that waits, and the one
// that is written.
class WriteBehind : public ColumnWriter {
 public:
  explicit WriteBehind(std::unique_ptr<ColumnWriter> writer)
      : writer_(std::move(writer)), tasks_(1) {}

  void Write(ColumnPieces batch) override {
    const auto kept = std::make_shared<ColumnPieces>(std::move(batch));
    tasks_.Add([this, kept] { WriteNow(std::move(*kept)); });
    while (tasks_.pending() > kMostPending) tasks_.Take();
  }
  void Finish(const std::vector<std::pair<std::string, std::string>>& metadata) override {
    while (tasks_.pending() > 0) tasks_.Take();
    writer_->Finish(metadata);
  }

 private:
  static constexpr std::size_t kMostPending = 1;

  // Nothing once it has failed: the writer stands in the middle of a batch.
  void WriteNow(ColumnPieces batch) {
    if (failed_) return;
    failed_ = true;
    writer_->Write(std::move(batch));
    failed_ = false;
  }

  const std::unique_ptr<ColumnWriter> writer_;
  bool failed_ = false;  // by the tasks, which run one after another
  // Ended first: they use the writer.
  OrderedTasks<void> tasks_;
};

}  // namespace library
