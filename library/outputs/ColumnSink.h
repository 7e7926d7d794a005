// Cases into batches of columns.
#pragma once

#include <functional>
#include <vector>

#include "library/columns/ColumnBatch.h"
#include "library/columns/ColumnBuilder.h"
#include "library/outputs/CaseSink.h"

namespace library {

// Builds columns where the cases are converted and puts them together to batches of kBatchCases
// cases; where these would take more than kLargestBatch bytes, of fewer.
class ColumnSink : public CaseSink {
 public:
  static constexpr std::size_t kLargestBatch = std::size_t{256} << 20;

  // `cells`: of a case. `take` gets each batch when it is full, on the thread of the import.
  ColumnSink(std::vector<ColumnField> fields, std::size_t cells,
             std::function<void(ColumnBatch)> take);

  std::unique_ptr<CasePart> Make(const OBS* cases, std::size_t count,
                                 std::int64_t firstCase) const override;
  void Take(std::unique_ptr<CasePart> part) override;
  void Finish() override;

  const std::vector<ColumnField>& fields() const { return fields_; }
  // What the columns' types could not hold of the cases taken.
  const ColumnMisfits& misfits() const { return misfits_; }

 private:
  void HandOver();

  const std::vector<ColumnField> fields_;
  const std::size_t cells_;
  const std::function<void(ColumnBatch)> take_;
  // Cases of a full batch.
  const std::size_t most_;
  ColumnBatch batch_;
  ColumnMisfits misfits_;
};

}  // namespace library
