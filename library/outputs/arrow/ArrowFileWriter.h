// Arrow IPC files (.arrow).
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "library/outputs/ByteSink.h"
#include "library/outputs/ColumnWriter.h"
#include "library/outputs/OrderedTasks.h"
#include "library/outputs/arrow/ArrowMessages.h"

namespace library {

// One record batch for each batch written; what is compressed is so on threads of the writer's.
class ArrowFileWriter : public ColumnWriter {
 public:
  // `sink` outlives the writer. `threads`: at least 1.
  ArrowFileWriter(std::vector<ColumnField> fields, ArrowCompression compression,
                  std::size_t threads, ByteSink& sink);

  void Write(ColumnPieces batch) override;
  void Finish(const std::vector<std::pair<std::string, std::string>>& metadata) override;

 private:
  void Append(std::string_view bytes);
  void Append(const ArrowMessage& message);
  void AppendOldest();

  const std::vector<ColumnField> fields_;
  const ArrowCompression compression_;
  const std::size_t mostPending_;
  ByteSink& sink_;
  std::int64_t position_ = 0;
  std::vector<arrowipc::Block> blocks_;
  // Those whose messages are not written yet; outlive the tasks, which use them.
  std::deque<ColumnPieces> batches_;
  OrderedTasks<ArrowMessage> tasks_;
};

}  // namespace library
