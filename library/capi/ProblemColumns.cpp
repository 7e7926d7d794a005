#include "library/capi/ProblemColumns.h"

#include <string>
#include <utility>

namespace library {
namespace {

ColumnField Field(const char* name, ColumnType type) {
  ColumnField field;
  field.name = field.variable = name;
  field.type = type;
  return field;
}

}  // namespace

const std::vector<ColumnField>& ProblemColumns::Fields() {
  static const std::vector<ColumnField> fields = {
      Field("kind", ColumnType::kUtf8),     Field("case", ColumnType::kInt64),
      Field("line", ColumnType::kInt64),    Field("byte", ColumnType::kInt64),
      Field("variable", ColumnType::kUtf8), Field("format", ColumnType::kUtf8),
      Field("text", ColumnType::kUtf8),     Field("detail", ColumnType::kUtf8)};
  return fields;
}

// A row becomes a batch of its own, which is put behind the others as any batch is.
void ProblemColumns::Add(const ProblemRow& row) {
  ColumnBatch one;
  one.cases = 1;
  one.columns.resize(Fields().size());
  std::size_t next = 0;
  const auto number = [&](std::int64_t value, bool present) {
    Column& column = one.columns[next++];
    if (!present) value = 0;
    column.values.Append(&value, sizeof value);
    if (present) return;
    *column.validity.Extend(1) = std::byte{0};
    column.missing = 1;
  };
  const auto text = [&](std::string_view value, bool present) {
    Column& column = one.columns[next++];
    const std::int32_t offsets[] = {0, static_cast<std::int32_t>(value.size())};
    column.values.Append(offsets, sizeof offsets);
    column.text.Append(value.data(), value.size());
    if (present) return;
    *column.validity.Extend(1) = std::byte{0};
    column.missing = 1;
  };
  const bool ofVariable = !row.variable.empty();
  text(row.kind, true);
  number(row.caseNumber, row.caseNumber > 0);
  number(row.line, row.line > 0);
  number(row.byte, row.byte >= 0);
  text(row.variable, ofVariable);
  text(row.format, ofVariable);
  text(row.text, true);
  text(row.detail, true);
  AppendBatch(Fields(), one, last_);
  if (last_.cases < kBatchCases) return;
  full_.push_back(std::make_shared<const ColumnBatch>(std::move(last_)));
  last_ = {};
}

std::vector<std::shared_ptr<const ColumnBatch>> ProblemColumns::Batches() const {
  std::vector<std::shared_ptr<const ColumnBatch>> batches = full_;
  if (last_.cases == 0) return batches;
  auto copy = std::make_shared<ColumnBatch>();
  AppendBatch(Fields(), last_, *copy);
  batches.push_back(std::move(copy));
  return batches;
}

}  // namespace library
