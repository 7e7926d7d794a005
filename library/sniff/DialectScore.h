// How well a dialect describes lines of text: in how few bits the lines can be told, once the
// dialect is known.
//
// Columns whose values are alike are short to tell, and so are records of one width; punctuation
// that is data, qualifiers that are data, records of other widths cost what they surprise. So one
// measure weighs the share of records of the modal width, the agreement of types down each column
// and the evidence at the qualifiers' edges against each other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "library/sniff/CellKinds.h"
#include "library/sniff/Dialect.h"
#include "library/sniff/RecordCutter.h"

namespace library {

struct DialectScore {
  // Bits that the lines cost with this dialect, the dialect's own rarity included.
  double bits = 0.0;
  std::size_t records = 0;
  // Fields of most records, and how many records have so many.
  std::size_t modalWidth = 0;
  std::size_t modalRecords = 0;
  QuoteCounts quotes;
  // Qualified fields that nothing closes, and characters that a backslash escapes.
  std::int64_t unclosed = 0;
  std::int64_t escapes = 0;
  // Qualifiers that do not enclose.
  std::int64_t strays = 0;
  // Pieces that a delimiter of several characters should not have.
  std::size_t unfit = 0;
};

// What `dialect` qualifies in the first `count` of `lines`: the counts of its score.
DialectScore CountQuotes(const std::vector<std::string_view>& lines, std::size_t count,
                         const Dialect& dialect);

// Scores the first `count` of `lines` (see JoinRecords).
DialectScore ScoreDialect(const std::vector<std::string_view>& lines, std::size_t count,
                          const Dialect& dialect, CellKinds& kinds);

}  // namespace library
