#include "library/outputs/ColumnSink.h"

#include <algorithm>

namespace library {
namespace {

class ColumnPart : public CasePart {
 public:
  ColumnBatch batch;
  ColumnMisfits misfits;
};

// Bytes of a case in columns, at most.
std::size_t CaseBytes(const std::vector<ColumnField>& fields) {
  std::size_t bytes = 1;
  for (const ColumnField& field : fields) bytes += ValueBytes(field.type) + field.bytes;
  return bytes;
}

}  // namespace

ColumnSink::ColumnSink(std::vector<ColumnField> fields, std::size_t cells,
                       std::function<void(ColumnBatch)> take)
    : fields_(std::move(fields)),
      cells_(cells),
      take_(std::move(take)),
      most_(std::clamp<std::size_t>(kLargestBatch / CaseBytes(fields_), 1, kBatchCases)) {}

std::unique_ptr<CasePart> ColumnSink::Make(const OBS* cases, std::size_t count,
                                           std::int64_t firstCase) const {
  auto part = std::make_unique<ColumnPart>();
  part->batch = BuildColumns(fields_, cases, count, cells_, firstCase, &part->misfits);
  return part;
}

void ColumnSink::Take(std::unique_ptr<CasePart> part) {
  const auto& columns = static_cast<const ColumnPart&>(*part);
  MergeMisfits(columns.misfits, misfits_);
  for (std::size_t begin = 0; begin < columns.batch.cases;) {
    const std::size_t end = std::min(columns.batch.cases, begin + most_ - batch_.cases);
    AppendCases(fields_, columns.batch, begin, end, batch_);
    begin = end;
    if (batch_.cases == most_) HandOver();
  }
}

void ColumnSink::HandOver() {
  const auto next = batch_.firstCase + static_cast<std::int64_t>(batch_.cases);
  ColumnBatch full = std::move(batch_);
  batch_ = {};
  batch_.firstCase = next;
  // The next batch takes as much memory: buffers that grow step by step are copied again and again.
  batch_.columns.resize(full.columns.size());
  for (std::size_t i = 0; i < full.columns.size(); ++i) {
    batch_.columns[i].validity.Reserve(full.columns[i].validity.size());
    batch_.columns[i].values.Reserve(full.columns[i].values.size());
    batch_.columns[i].text.Reserve(full.columns[i].text.size());
  }
  take_(std::move(full));
}

void ColumnSink::Finish() {
  if (batch_.cases != 0) HandOver();
}

}  // namespace library
