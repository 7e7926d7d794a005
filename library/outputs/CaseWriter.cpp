#include "library/outputs/CaseWriter.h"

namespace library {

std::vector<CaseColumn> ColumnsOf(const QANT_DataSource& source, ValueStyle style) {
  Utf8Converter hostText;
  std::vector<CaseColumn> columns;
  columns.reserve(source.GetNVariables());
  for (std::size_t index = 0; index < source.GetNVariables(); ++index) {
    const QANT_Variable& variable = *source.GetVariable(index);
    ValueKind kind = KindOf(variable);
    if (style == ValueStyle::kRaw && kind != ValueKind::kString) kind = ValueKind::kNumber;
    columns.push_back({std::string(hostText.ToUtf8(variable.GetName())), variable.ObsIndex(),
                       static_cast<std::size_t>(variable.GetType()), kind});
  }
  return columns;
}

}  // namespace library
