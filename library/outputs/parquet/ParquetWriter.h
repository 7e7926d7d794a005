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

// Row groups of two batches; their columns are encoded on threads of the writer's.
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
  // Hands the batches in hand to the threads as a row group.
  void EndGroup();
  // Writes the row group that was handed over first.
  void AppendOldestGroup();

  const std::vector<ColumnField> fields_;
  const std::string creator_;
  ByteSink& sink_;
  std::int64_t position_ = 0;
  std::vector<ColumnPieces> group_;
  // Cases of the groups that the threads have.
  std::vector<std::int64_t> pendingCases_;
  std::vector<parquetformat::RowGroup> groups_;
  OrderedTasks<ParquetChunk> tasks_;
};

}  // namespace library
