// The values of one column as they stand in a Parquet file.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "library/columns/ColumnPieces.h"
#include "library/outputs/parquet/Parquet_types.h"

namespace library {

// A column chunk: its pages one behind the other, in pieces, and what the footer says of them.
// Offsets count from the first byte of the chunk.
struct ParquetChunk {
  std::vector<std::string_view> bytes;
  parquetformat::ColumnMetaData description;
};

// Encodes one column, a chunk for each row group. One thread at a time.
class ChunkEncoder {
 public:
  virtual ~ChunkEncoder() = default;
  // Adds the column's values of a batch as a page. Values that repeat become places in the chunk's
  // dictionary, others what suits their kind (see ParquetPages.h); pages are compressed with zstd
  // where that is worth it. Throws std::bad_alloc; the chunk is of no use then.
  virtual void Add(const ColumnPieces& batch) = 0;
  // What the pages of the chunk take.
  virtual std::size_t bytes() const = 0;
  // Ends the chunk, of at least one batch. Its bytes are the encoder's, good until the next Add,
  // which begins another chunk. Throws std::bad_alloc.
  virtual ParquetChunk Finish() = 0;
};

// The physical type of a column's values.
parquetformat::Type::type ParquetType(ColumnType type);

// `number`: of the column in the batches.
std::unique_ptr<ChunkEncoder> MakeChunkEncoder(const ColumnField& field, std::size_t number);

}  // namespace library
