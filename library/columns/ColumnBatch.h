// Cases as columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "library/columns/Buffer.h"
#include "library/columns/ColumnField.h"

namespace library {

// The values of one column. A missing value has zero bits in `values`, and text of no bytes.
struct Column {
  // One bit a case, the first in the lowest; 1 where there is a value. Empty while none is missing.
  Buffer validity;
  std::int64_t missing = 0;
  // Numbers side by side; of text, where each ends and the next begins, from 0: one more than there
  // are cases.
  Buffer values;
  // The bytes of texts (UTF-8).
  Buffer text;
};

struct ColumnBatch {
  // Cases that come before.
  std::int64_t firstCase = 0;
  std::size_t cases = 0;
  std::vector<Column> columns;

  bool IsMissing(std::size_t column, std::size_t row) const {
    const Buffer& bits = columns[column].validity;
    return !bits.empty() && ((bits.As<std::uint8_t>()[row / 8] >> (row % 8)) & 1U) == 0;
  }
  // The text of a case in a text column.
  std::string_view TextAt(std::size_t column, ColumnType type, std::size_t row) const;
};

// Adds the cases of `from` to `into`, whose columns are of the same fields. An `into` without
// columns is a batch of no cases.
void AppendBatch(const std::vector<ColumnField>& fields, const ColumnBatch& from,
                 ColumnBatch& into);
// Adds cases begin to end (not included) of `from`.
void AppendCases(const std::vector<ColumnField>& fields, const ColumnBatch& from, std::size_t begin,
                 std::size_t end, ColumnBatch& into);
// The same of one column's bits: of `count` cases from `begin` on; `into` has `had`.
void AppendValidity(const Column& from, std::size_t begin, std::size_t count, Column& into,
                    std::size_t had);
// The same of a text's offsets: of `count` texts, behind `before` bytes of others.
void AppendOffsets(const Column& from, ColumnType type, std::size_t begin, std::size_t count,
                   std::size_t before, Buffer& into);

}  // namespace library
