#include "library/types/GivenFormat.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>

#include "command/TxtWzParser.h"
#include "model/FormatTable.h"

namespace library {

using namespace textwizard;

bool ReadGivenFormat(const std::string& text, GivenFormat* format, std::string* problem) {
  std::string word = text;
  std::transform(word.begin(), word.end(), word.begin(),
                 [](unsigned char byte) { return static_cast<char>(std::toupper(byte)); });
  std::string name = word;
  std::uint32_t width = 0;
  std::uint32_t decimals = 0;
  TxtWzParser::ParseFormat(name, width, decimals);
  const FormatRow* const row = FindFormat(name);
  if (row == nullptr || row->code == kFormatSkip || row->code == kFormatAuto) {
    *problem = fmt::format("{} is no format that a column can have", text);
    return false;
  }
  format->format = {row->code, width, decimals};
  format->hasWidth = width > 0;
  format->most = row->MaxWidth();
  if (width == 0) return true;
  const bool fits =
      width <= row->MaxWidth() && decimals <= kMaxDecimals && width >= row->MinWidth(decimals);
  if (!fits) {
    *problem = fmt::format("{}: the width has to be {} to {}", text, row->MinWidth(decimals),
                           row->MaxWidth());
  }
  return fits;
}

std::optional<Reading> ReadingOf(std::uint32_t code, DecimalCharacter decimal) {
  const bool comma = decimal == DecimalCharacter::kComma;
  switch (code) {
    case kFormatF:
    case kFormatE:
      return comma ? Reading::kComma : Reading::kPoint;
    case kFormatPct:
      return comma ? Reading::kCommaPercent : Reading::kPointPercent;
    case kFormatEDate:
      return Reading::kDayMonthYear;
    default:
      break;
  }
  for (std::size_t i = 0; i < kReadings; ++i) {
    const auto reading = static_cast<Reading>(i);
    if (FormatOf(reading) == code) return reading;
  }
  return std::nullopt;
}

}  // namespace library
