// How the records of a file are cut into fields.
#pragma once

#include <string>
#include <vector>

#include "library/sniff/SniffResult.h"

namespace library {

// Texts are UTF-8.
struct Dialect {
  // One character, or several that stand for one delimiter together; empty: one column.
  std::string delimiter;
  // A run of the blanks that delimit counts as one.
  bool multipleBlanks = false;
  // One character; empty for none.
  std::string qualifier;
  Escape escape = Escape::kNone;
  // The columns of a fixed arrangement; then nothing else counts. Empty: delimited.
  std::vector<CharacterRange> columns;

  bool fixed() const { return !columns.empty(); }
  bool operator==(const Dialect&) const = default;
};

}  // namespace library
