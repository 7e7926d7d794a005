#include "library/outputs/CaseWriter.h"

#include "library/columns/CellText.h"

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

std::vector<std::size_t> RoomOf(const std::vector<CaseColumn>& columns, std::size_t more) {
  std::vector<std::size_t> rooms((columns.size() + kColumnsAtOnce - 1) / kColumnsAtOnce);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const bool isString = columns[i].kind == ValueKind::kString;
    rooms[i / kColumnsAtOnce] += more + (isString ? CellRoom(columns[i].bytes) : kValueTextRoom);
  }
  return rooms;
}

}  // namespace library
