// The blank places between fixed columns, and lines that run across them: titles and notes.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "library/sniff/SniffSettings.h"

namespace library {

// Lines are UTF-8. One thread.
class ColumnGaps {
 public:
  // `columns` follow one another without places between; hardly any of `lines` is no record.
  ColumnGaps(const std::vector<std::string_view>& lines,
             const std::vector<CharacterRange>& columns);

  // The line fills at least half of the gaps that it reaches, so that it is no record.
  bool AreCrossedBy(std::string_view line) const;

 private:
  // Of each place of a line, from 0: the gap that it is in, from 1; 0 for none.
  std::vector<std::size_t> gaps_;
};

}  // namespace library
