// Problems as columns.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "library/columns/ColumnBatch.h"
#include "library/columns/ColumnField.h"
#include "library/outputs/ProblemRow.h"

namespace library {

// Gathers rows into batches of kBatchCases. One thread.
class ProblemColumns {
 public:
  // kind, case, line, byte, variable, format, text, detail.
  static const std::vector<ColumnField>& Fields();

  // Throws std::bad_alloc.
  void Add(const ProblemRow& row);
  // The rows so far: one batch may be shared with what was given before.
  std::vector<std::shared_ptr<const ColumnBatch>> Batches() const;

 private:
  std::vector<std::shared_ptr<const ColumnBatch>> full_;
  ColumnBatch last_;
};

}  // namespace library
