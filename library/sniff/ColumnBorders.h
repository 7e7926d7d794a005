// Where one fixed column ends and the next one begins.
#pragma once

#include <string_view>
#include <vector>

#include "library/sniff/SniffSettings.h"

namespace library {

// The columns that hold `runs`, the places that lines of data (UTF-8) fill: one after the other
// from place 1 on, each run with blanks beside it. A border lies where the most places on end are
// blank that hardly any line fills, so that no value is cut, and no name in the lines `above` the
// data: at the left end of those blanks where right-aligned values follow, else at the right end.
// A name above blanks alone, between two columns that have names, is a column without values.
std::vector<CharacterRange> ColumnsOfRuns(const std::vector<std::string_view>& lines,
                                          const std::vector<std::string_view>& above,
                                          const std::vector<CharacterRange>& runs);

}  // namespace library
