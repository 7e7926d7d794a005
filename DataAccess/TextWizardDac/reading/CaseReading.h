// Cases of the arrangements in which a case is not a line, read off the records one after another:
// the one text of their rules for every engine.
//
// An engine says what it does with what is found:
//   bool NextRecord(bool keepEmpty)      goes to the next record; false when there is none
//   CaseWatch* watch()                   who is told of the case; null for nobody
//   void StoreMissing(column, line)      the record of that line has nothing of the column
// and of fixed columns
//   bool CutColumn(column, field)        see FixedColumn; of the record in hand
//   void TakeColumn(field, column)       converts a field
//   std::uint32_t PositionOf(column)     the variable's place in the source's list
// Its columns have `line`, the record of the case that holds them.
#pragma once

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

}  // namespace textwizard
