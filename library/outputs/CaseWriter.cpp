#include "library/outputs/CaseWriter.h"

#include <cstdint>
#include <cstring>

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

double NumberAt(const OBS* obs, const CaseColumn& column) {
  double value = 0;
  std::memcpy(&value, obs[column.cell].bytes, sizeof value);
  return value;
}

std::string_view StringAt(const OBS* obs, const CaseColumn& column) {
  const char* text = reinterpret_cast<const char*>(obs[column.cell].bytes);
  std::size_t length = column.bytes;
  // A short text in a wide variable is mostly padding: drop eight blanks at a time.
  constexpr std::uint64_t kBlanks = 0x2020202020202020U;
  while (length >= sizeof kBlanks) {
    std::uint64_t last = 0;
    std::memcpy(&last, text + length - sizeof last, sizeof last);
    if (last != kBlanks) break;
    length -= sizeof last;
  }
  while (length > 0 && text[length - 1] == ' ') --length;
  return {text, length};
}

}  // namespace library
