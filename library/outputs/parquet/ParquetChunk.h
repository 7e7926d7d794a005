// The values of one column in one row group, as they stand in a Parquet file.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "library/columns/ColumnPieces.h"
#include "library/outputs/parquet/Parquet_types.h"

namespace library {

// A column chunk: its pages one behind the other, and what the footer says of them. Offsets count
// from the first byte of the chunk.
struct ParquetChunk {
  std::string bytes;
  parquetformat::ColumnMetaData description;
};

// The physical type of a column's values.
parquetformat::Type::type ParquetType(ColumnType type);

// Encodes column `number` of the batches of a row group, a page each: values that repeat as a
// dictionary and places in it, others as what suits their kind (see ParquetPages.h); pages are
// compressed with zstd. Any thread. Throws std::bad_alloc.
ParquetChunk EncodeChunk(const ColumnField& field, std::size_t number,
                         const std::vector<ColumnPieces>& batches);

}  // namespace library
