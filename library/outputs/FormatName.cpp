#include "library/outputs/FormatName.h"

#include "HostFramework/Formats.h"

namespace library {

std::string FormatName(const QANT_Format& format) {
  const DisplayFormat* named = DisplayFormatOf(format.type);
  std::string name(named != nullptr ? named->name : "badFormat");
  name += std::to_string(format.width);
  if (format.decimals != 0) name += "." + std::to_string(format.decimals);
  return name;
}

ValueKind KindOf(const QANT_Variable& variable) {
  if (variable.GetType() > 0) return ValueKind::kString;
  const DisplayFormat* format = DisplayFormatOf(variable.GetFormat().type);
  if (format == nullptr || format->kind == ValueKind::kString) return ValueKind::kNumber;
  return format->kind;
}

}  // namespace library
