// Columns as a person writes them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "library/sniff/SniffSettings.h"

namespace library {

// Columns such as "1-8,9-20,25,30-": characters of a line, in their order and without overlap; the
// last one may be open. Nothing for another text; then *problem is a sentence (UTF-8).
std::optional<std::vector<CharacterRange>> ParseCharacterRanges(std::string_view text,
                                                                std::string* problem);

}  // namespace library
