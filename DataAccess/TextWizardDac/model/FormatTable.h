// The formats that a command can name: their defaults and limits.
#pragma once

#include <cstdint>
#include <string_view>

#include "model/FormatCode.h"

namespace textwizard {

struct FormatRow {
  // The name in a command.
  std::string_view name;
  std::uint32_t code;
  // What a command means that gives neither width nor decimals.
  std::uint32_t defaultWidth;
  std::uint32_t defaultDecimals;
  // Column width from which a format without width and decimals has two decimals; 0 is never.
  std::uint32_t columnsForFraction;
  // The lower-case word of the compact header's vocabulary; empty when there is none.
  std::string_view typeWord;

  // The display format's own; 1 for a field that is none.
  std::uint32_t MinWidth(std::uint32_t decimals) const;
  std::uint32_t MaxWidth() const;
};

// The row of a format that a command can name, by its name (exact match, so upper-cased by the
// caller) or by its code; null when none has it.
const FormatRow* FindFormat(std::string_view name);
const FormatRow* FindFormat(std::uint32_t code);
// The row of a type word, in any letter case (host text); null when none has it.
const FormatRow* FindTypeWord(const char* word);

// The name that reports give a format code, for all codes that the host's variables can carry;
// "badFormat" for any other, a skipped field's and AUTO's included.
std::string_view FormatNameOf(std::uint32_t code);

}  // namespace textwizard
