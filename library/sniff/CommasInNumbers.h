// Commas that are part of numbers, where they might as well cut the lines.
#pragma once

#include <string_view>
#include <vector>

#include "library/sniff/CellKinds.h"
#include "library/sniff/Dialect.h"

namespace library {

// Lines are UTF-8. What a comma cuts in two everywhere is one number with a decimal comma: parts
// behind the comma of one length, some of them with a zero in front, and no sign there.
bool AreDecimalCommas(const std::vector<std::string_view>& lines, CellKinds& kinds);

// How the commas stand in the records that `dialect`, of another delimiter, cuts in `width` fields.
struct CommaPlaces {
  // There are some, and every one that no qualifiers enclose stands between two digits.
  bool betweenDigits = false;
  // The first of these records has neither a comma nor a digit: names that the dialect cuts.
  bool underNames = false;
};
CommaPlaces FindCommas(const std::vector<std::string_view>& lines, const Dialect& dialect,
                       std::size_t width);

}  // namespace library
