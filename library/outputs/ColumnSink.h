// Cases into batches of columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "library/columns/ColumnBuilder.h"
#include "library/columns/ColumnPieces.h"
#include "library/outputs/CaseSink.h"

namespace library {

// Builds columns where the cases are converted and gathers them to batches of kBatchCases cases;
// where these would take more than kLargestBatch bytes, of fewer.
class ColumnSink : public CaseSink {
 public:
  static constexpr std::size_t kLargestBatch = std::size_t{256} << 20;
  // What a batch is made of: one piece, or those in which it was built. Of these such with fewer
  // cases are put together: what goes with each would take more than its cases.
  enum class Batches : std::uint8_t { kWhole, kInPieces };
  static constexpr std::size_t kSmallPiece = 256;

  // `cells`: of a case. `take` gets each batch when it is full, on the thread of the import.
  ColumnSink(std::vector<ColumnField> fields, std::size_t cells, Batches batches,
             std::function<void(ColumnPieces)> take);

  std::unique_ptr<CasePart> Make(const OBS* cases, std::size_t count,
                                 std::int64_t firstCase) const override;
  void Take(std::unique_ptr<CasePart> part) override;
  void Finish() override;

  const std::vector<ColumnField>& fields() const { return fields_; }
  // What the columns' types could not hold of the cases taken.
  const ColumnMisfits& misfits() const { return misfits_; }

 private:
  struct Room {
    std::size_t validity;
    std::size_t values;
    std::size_t text;
  };

  // Adds cases begin to end (not included) of a piece that have room in the batch.
  void AddCases(ColumnBatch& piece, std::size_t begin, std::size_t end);
  void HandOver();

  const std::vector<ColumnField> fields_;
  const std::size_t cells_;
  const std::function<void(ColumnPieces)> take_;
  // Cases of a piece that is put together with others.
  const std::size_t small_;
  // Cases of a full batch.
  const std::size_t most_;
  std::int64_t before_ = 0;  // cases handed over
  const std::shared_ptr<BatchPool> pool_ = std::make_shared<BatchPool>();
  ColumnPieces batch_{pool_};
  std::size_t cases_ = 0;   // of batch_
  bool lastGrows_ = false;  // its last piece is one of small ones
  // The bytes that each column of such a piece came to.
  std::vector<Room> rooms_;
  ColumnMisfits misfits_;
};

}  // namespace library
