// Columns that were read: a schema and its batches, which nobody changes any more.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "textwizard/textwizard.hpp"

namespace python {

// A column as its schema describes it.
struct Field {
  std::string name;
  std::string format;  // as Arrow's C interface writes types, such as "g"
  // Format, width, label, variable (UTF-8).
  std::vector<std::pair<std::string, std::string>> metadata;
};

// One batch's part of a column: its cases are `length` from `offset` on.
struct Piece {
  const ArrowArray* array;
  std::int64_t offset;
  std::int64_t length;

  // Null where no value is missing.
  const std::uint8_t* validity() const {
    return array->null_count == 0 ? nullptr : static_cast<const std::uint8_t*>(array->buffers[0]);
  }
  template <class Value>
  const Value* values() const {
    return static_cast<const Value*>(array->buffers[1]) + offset;
  }
  bool IsMissing(std::int64_t row) const {
    const std::uint8_t* const bits = validity();
    return bits != nullptr && (bits[(offset + row) / 8] >> ((offset + row) % 8) & 1) == 0;
  }
};

// Immutable, and shared with whom it was handed to: a consumer of a stream keeps the batches that
// it took. Any thread; what makes Python objects wants the GIL.
class Columns {
 public:
  Columns(textwizard::Schema schema, std::vector<textwizard::Batch> batches);

  std::int64_t rows() const { return rows_; }
  const std::vector<Field>& fields() const { return fields_; }
  std::size_t batchCount() const { return batches_.size(); }
  // The columns of one batch alone. Throws std::out_of_range.
  std::shared_ptr<const Columns> BatchAt(std::size_t batch) const;
  // The parts of column `column` in the order of the cases. Throws std::out_of_range.
  std::vector<Piece> Pieces(std::size_t column) const;

  // A capsule "arrow_schema", "arrow_array" (of the only batch; throws std::logic_error where there
  // is another number of them), "arrow_array_stream".
  pybind11::capsule SchemaCapsule() const;
  pybind11::capsule ArrayCapsule() const;
  pybind11::capsule StreamCapsule() const;

 private:
  using SharedSchema = std::shared_ptr<const textwizard::Schema>;
  using SharedBatch = std::shared_ptr<const textwizard::Batch>;
  Columns(SharedSchema schema, std::vector<SharedBatch> batches);

  SharedSchema schema_;
  std::vector<SharedBatch> batches_;
  std::vector<Field> fields_;
  std::int64_t rows_ = 0;
};

}  // namespace python
