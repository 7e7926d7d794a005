// A file of columns.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "library/columns/ColumnPieces.h"

namespace library {

// Writes the batches of one table. One thread. Throws std::bad_alloc, and std::runtime_error with a
// sentence for what the format cannot hold.
class ColumnWriter {
 public:
  virtual ~ColumnWriter() = default;
  // The cases of a batch, which follow those written before.
  virtual void Write(ColumnPieces batch) = 0;
  // Ends the file. `metadata`: keys and texts (UTF-8) that go with the table, such as its
  // dictionary.
  virtual void Finish(const std::vector<std::pair<std::string, std::string>>& metadata) = 0;
};

}  // namespace library
