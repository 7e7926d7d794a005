#include "detection/VariableWidening.h"

#include <algorithm>
#include <limits>

#include "detection/BlankTrim.h"
#include "model/FormatCode.h"

namespace textwizard {

std::size_t LastOf(std::string_view text, std::string_view set) {
  if (set.size() > 3) return text.find_last_of(set);
  if (set.empty()) return std::string_view::npos;
  // One, two or three characters, some of them perhaps twice.
  const char first = set.front(), middle = set[set.size() / 2], last = set.back();
  for (std::size_t i = text.size(); i-- > 0;) {
    const char c = text[i];
    if (c == first || c == middle || c == last) return i;
  }
  return std::string_view::npos;
}

std::uint32_t AsWidth(std::size_t length) {
  constexpr std::size_t kLargest = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::uint32_t>(std::min(length, kLargest));
}

void UpdateVarSizes(TxtWzVar& variable, std::string_view value, std::string_view decimalCharacters,
                    Arrangement arrangement) {
  if (arrangement == kDelimitedLines) value = TrimLeft(TrimRight(value));
  UpdateVarSizes(variable, value.size(), LastOf(value, decimalCharacters), arrangement);
}

void UpdateVarSizes(TxtWzVar& variable, std::size_t length, std::size_t point,
                    Arrangement arrangement) {
  if (point != std::string_view::npos) {
    const auto decimals = static_cast<std::int32_t>(AsWidth(length - point - 1));
    if (point == 0) --length;
    if (decimals > variable.decimals) {
      const std::int64_t widened = std::int64_t{decimals} + variable.width - variable.decimals;
      variable.width = static_cast<std::uint32_t>(std::min<std::int64_t>(kMaxNumberWidth, widened));
      variable.decimals = decimals;
    }
  }
  variable.width =
      arrangement == kFixedColumns ? AsWidth(length) : std::max(variable.width, AsWidth(length));
}

}  // namespace textwizard
