// How a value widens the variable whose type is being found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "model/ImportSettings.h"
#include "model/TxtWzVar.h"

namespace textwizard {

// Offset of the last character of `text` that is one of `set`, or npos.
std::size_t LastOf(std::string_view text, std::string_view set);

// A text length as a width; a longer one than a width can hold counts as the largest.
std::uint32_t AsWidth(std::size_t length);

// Widens `variable` for a number written as `value`, whose fraction starts after the last of
// `decimalCharacters`. With fixed columns the width becomes the value's length, blanks included;
// else it only grows.
void UpdateVarSizes(TxtWzVar& variable, std::string_view value, std::string_view decimalCharacters,
                    Arrangement arrangement);

// The same for a value of `length` bytes, without blanks to trim, whose fraction starts after the
// offset `point` (npos: none).
void UpdateVarSizes(TxtWzVar& variable, std::size_t length, std::size_t point,
                    Arrangement arrangement);

}  // namespace textwizard
