#include "library/outputs/FormatName.h"

#include <algorithm>
#include <iterator>

#include "HostFramework/embedded/values/FormatCodes.h"

namespace library {
namespace {

constexpr int kStringFormat = 1;
constexpr int kHexStringFormat = 2;

struct FormatEntry {
  int code;
  const char* name;
  ValueKind kind;
};

constexpr FormatEntry kFormats[] = {
    {kStringFormat, "A", ValueKind::kString},
    {kHexStringFormat, "AHEX", ValueKind::kString},
    {embedded::kComma, "COMMA", ValueKind::kNumber},
    {embedded::kDollar, "DOLLAR", ValueKind::kNumber},
    {embedded::kF, "F", ValueKind::kNumber},
    {embedded::kN, "N", ValueKind::kNumber},
    {embedded::kE, "E", ValueKind::kNumber},
    {embedded::kDate, "DATE", ValueKind::kDate},
    {embedded::kTime, "TIME", ValueKind::kTime},
    {embedded::kDateTime, "DATETIME", ValueKind::kDateTime},
    {embedded::kADate, "ADATE", ValueKind::kDate},
    {embedded::kJDate, "JDATE", ValueKind::kDate},
    {embedded::kDTime, "DTIME", ValueKind::kTime},
    {embedded::kWkday, "WKDAY", ValueKind::kNumber},
    {embedded::kMonth, "MONTH", ValueKind::kNumber},
    {embedded::kMoyr, "MOYR", ValueKind::kDate},
    {embedded::kQyr, "QYR", ValueKind::kDate},
    {embedded::kWkyr, "WKYR", ValueKind::kDate},
    {embedded::kPct, "PCT", ValueKind::kNumber},
    {embedded::kDot, "DOT", ValueKind::kNumber},
    {embedded::kEDate, "EDATE", ValueKind::kDate},
    {embedded::kSDate, "SDATE", ValueKind::kDate},
    {embedded::kMTime, "MTIME", ValueKind::kTime},
    {embedded::kYmdhms, "YMDHMS", ValueKind::kDateTime},
};

const FormatEntry* Find(int code) {
  const auto* found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                   [code](const FormatEntry& entry) { return entry.code == code; });
  return found == std::end(kFormats) ? nullptr : found;
}

}  // namespace

std::string FormatName(const QANT_Format& format) {
  const FormatEntry* entry = Find(format.type);
  std::string name = entry != nullptr ? entry->name : "badFormat";
  name += std::to_string(format.width);
  if (format.decimals != 0) name += "." + std::to_string(format.decimals);
  return name;
}

ValueKind KindOf(const QANT_Variable& variable) {
  if (variable.GetType() > 0) return ValueKind::kString;
  const FormatEntry* entry = Find(variable.GetFormat().type);
  if (entry == nullptr || entry->kind == ValueKind::kString) return ValueKind::kNumber;
  return entry->kind;
}

}  // namespace library
