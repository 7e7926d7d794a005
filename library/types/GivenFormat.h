// A format that a person gives for a column.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "library/types/TypeChoice.h"

namespace library {

struct GivenFormat {
  ChosenFormat format;
  // The text names a width; else the values decide.
  bool hasWidth = false;
  // The widest that the format can be.
  std::uint32_t most = 0;
};

// Reads a format as a command writes it, in any letter case: "F8.2", "ADATE", "a20". False for what
// no variable can have; *problem is then a sentence (UTF-8).
bool ReadGivenFormat(const std::string& text, GivenFormat* format, std::string* problem);

// The reading that a format has of a column's values; nothing for strings and formats that are
// never chosen.
std::optional<Reading> ReadingOf(std::uint32_t code, DecimalCharacter decimal);

}  // namespace library
