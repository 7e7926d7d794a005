// What one look at a stretch of a file says: of its lines, its records, its columns.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "library/rewriting/QuoteRewriter.h"
#include "library/types/ColumnEvidence.h"
#include "model/ImportSettings.h"

namespace library {

// How the records of a file are cut, before anything is known of their values.
struct ColumnCut {
  // Delimiters, qualifier, encoding, arrangement (delimited lines or fixed columns with one line a
  // case). The other settings play no part.
  textwizard::ImportSettings settings;
  struct Field {
    // Of a column; else one that is passed over, and empty as far as all is well.
    bool imported = true;
    // Fixed columns: bytes of the record, from 0.
    std::uint32_t start = 0;
    std::uint32_t width = 0;
  };
  std::vector<Field> fields;
  // Fixed columns: blanks at a field's end are none of its own, but lay out the columns.
  bool padded = false;
};

// The fields of a record that are imported.
std::size_t ColumnsOf(const ColumnCut& cut);

// The summary of a stretch: two stretches that follow one another become one by Append, in any
// grouping the same. Lines are counted from the stretch's own first one until then.
struct PartSummary {
  // Physical lines that begin in the stretch.
  std::int64_t lines = 0;
  std::int64_t records = 0;
  // Records with text behind their last field that is not all delimiters and blanks.
  Witness surplus;
  // Records with text in a field that is passed over.
  Witness unexpected;
  // Records with bytes that are no character.
  Witness undecodable;
  // Of fixed columns: the mask of places that hold text in some record (FilledPlaces).
  std::string filled;
  // Control characters in the records (host text) but TAB, LF and CR, by number; where line ends
  // may be joined.
  std::array<std::int64_t, 32> controls{};
  // Of a part of a file in which line ends or escapes are replaced: the walk over its lines, from
  // the beginning of the first to the end of the last.
  std::optional<QuotePosition> quotes;
  // Of the imported fields, in their order.
  std::vector<ColumnEvidence> columns;

  explicit PartSummary(std::size_t columnCount = 0) : columns(columnCount) {}
  // `next` has as many columns.
  void Append(const PartSummary& next);
  bool operator==(const PartSummary&) const = default;
};

}  // namespace library
