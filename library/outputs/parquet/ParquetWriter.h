// Parquet files (.parquet).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "library/outputs/ByteSink.h"
#include "library/outputs/ColumnWriter.h"
#include "library/outputs/OrderedTasks.h"
#include "library/outputs/parquet/ParquetChunk.h"

namespace library {

// Row groups of some batches; the columns of a batch are encoded on threads of the writer's.
class ParquetWriter : public ColumnWriter {
 public:
  // `sink` outlives the writer. `threads`: at least 1. `creator`: the program, as the file names
  // it.
  ParquetWriter(std::vector<ColumnField> fields, std::string creator, std::size_t threads,
                ByteSink& sink);

  void Write(ColumnPieces batch) override;
  void Finish(const std::vector<std::pair<std::string, std::string>>& metadata) override;

 private:
  void Append(std::string_view bytes);
  // Has the threads encode a batch and waits for them; throws what one of them threw.
  void EncodeColumns(const ColumnPieces& batch);
  // Writes the row group, whose columns are encoded.
  void EndGroup();

  const std::vector<ColumnField> fields_;
  const std::string creator_;
  ByteSink& sink_;
  std::int64_t position_ = 0;
  std::vector<std::unique_ptr<ChunkEncoder>> encoders_;  // of the columns
  // Of the row group.
  std::size_t batches_ = 0;
  std::size_t cases_ = 0;
  std::vector<parquetformat::RowGroup> groups_;
  // Ended first: they use the others.
  OrderedTasks<void> tasks_;
};

}  // namespace library
