// The blanks between fixed columns, and lines that run across them: titles and notes.
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

  // The line has fewer blanks than hardly any other at half of the borders that it reaches, so that
  // it is no record.
  bool AreCrossedBy(std::string_view line) const;

 private:
  // Characters before each border between two columns, and the blanks around it (0, 1 or 2) that
  // hardly any line has fewer of.
  std::vector<std::size_t> borders_;
  std::vector<std::size_t> least_;
};

}  // namespace library
