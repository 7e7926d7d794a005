// Cases of the arrangements in which a case is not a line, read off the records one after another:
// the one text of their rules for every engine.
//
// An engine says what it does with what is found:
//   bool NextRecord(bool keepEmpty)      goes to the next record; false when there is none
//   CaseWatch* watch()                   who is told of the case; null for nobody
//   std::uint32_t PositionOf(column)     the variable's place in the source's list
// of fixed columns, which have `line`, the record of the case that holds them
//   bool CutColumn(column, field)        see FixedColumn; of the record in hand
//   void TakeColumn(field, column)       converts a field
//   void StoreMissing(column, line)      the record of that line has nothing of the column
// and of values that run across lines
//   bool NextField(field, left)          cuts the next field of the record in hand; false when it
//                                        is used up. The case takes `left` more fields with this
//                                        one
//   std::size_t offset()                 byte of the record where the field behind it begins; asked
//                                        for the watch only
//   bool IsImported(column)              false for a variable that is skipped
//   void TakeField(field, column)        converts a field
//   void StoreMissing(column)            the data ended before the column
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reading/CaseWatch.h"

namespace textwizard {

// A case of fixed columns, of `lines` records. `columns`: those of imported variables, by rising
// line; `unreachable` of them are on lines that no case has. False when there is no record for it.
template <class Engine, class Columns>
bool ReadFixedCase(Engine&& engine, const Columns& columns, std::uint32_t lines,
                   std::int64_t unreachable) {
  bool ended = false;
  std::int64_t absent = 0;
  CaseWatch* const watch = engine.watch();
  auto column = columns.begin();
  for (std::uint32_t line = 1; line <= lines; ++line) {
    if (!ended) ended = !engine.NextRecord(true);
    if (ended && line == 1) return false;
    if (watch && !ended) watch->UseRecord();
    while (column != columns.end() && column->line < line) ++column;
    if (ended && column == columns.end()) break;
    for (; column != columns.end() && column->line == line; ++column) {
      std::string_view field;
      if (!ended && engine.CutColumn(*column, field)) {
        engine.TakeColumn(field, *column);
        continue;
      }
      engine.StoreMissing(*column, line);
      if (ended) ++absent;
      if (watch && !ended) watch->TakeShortRecord(engine.PositionOf(*column));
    }
    if (line == UINT32_MAX) break;
  }
  if (watch) watch->EndCase(absent + unreachable, ended ? absent : CaseWatch::kComplete);
  return true;
}

// A case of as many values as there are columns (skipped ones too, one at least), which go on in
// the record in hand where the case before ended. False when there is no value for it.
template <class Engine, class Columns>
bool ReadCountedCase(Engine&& engine, const Columns& columns) {
  bool linesLeft = true;
  std::int64_t absent = 0;
  CaseWatch* const watch = engine.watch();
  std::size_t left = columns.size();
  for (const auto& column : columns) {
    std::string_view field;
    std::size_t begin = watch ? engine.offset() : 0;
    bool found = engine.NextField(field, left);
    while (!found && linesLeft) {
      linesLeft = engine.NextRecord(false);
      begin = watch ? engine.offset() : 0;
      found = linesLeft && engine.NextField(field, left);
    }
    --left;
    if (!found && &column == columns.data()) return false;
    const bool imported = engine.IsImported(column);
    if (imported && found) {
      engine.TakeField(field, column);
    } else if (imported) {
      engine.StoreMissing(column);
      ++absent;
    }
    if (watch && found) {
      watch->EndField(engine.PositionOf(column), field, begin, engine.offset());
    }
  }
  if (watch) watch->EndCase(absent, linesLeft ? CaseWatch::kComplete : absent);
  return true;
}

}  // namespace textwizard
