// What a user has said about a bare file; everything else is found.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "library/types/DecimalCharacter.h"

namespace library {

// Characters of a line, from 1, both ends included. `to` 0: to the end of the line.
struct CharacterRange {
  std::int64_t from = 1;
  std::int64_t to = 0;
  bool operator==(const CharacterRange&) const = default;
};

struct SniffSettings {
  // A name that ICU knows.
  std::optional<std::string> encoding;
  // UTF-8; "" means that there is one column.
  std::optional<std::string> delimiter;
  // One character, UTF-8; "" means none.
  std::optional<std::string> qualifier;
  std::optional<DecimalCharacter> decimal;
  // Whether several blanks are one delimiter, where a blank is the delimiter.
  std::optional<bool> multipleBlanks;
  // Physical line where the data begins, from 1.
  std::optional<std::int64_t> firstLine;
  // Whether names stand above the data.
  std::optional<bool> header;
  // The columns of a fixed arrangement; not empty.
  std::optional<std::vector<CharacterRange>> fixed;
  // Looks at so many lines only, from the first.
  std::optional<std::int64_t> sampleLines;
};

}  // namespace library
