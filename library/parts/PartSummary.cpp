#include "library/parts/PartSummary.h"

#include <algorithm>

#include "library/parts/FilledPlaces.h"

namespace library {

std::size_t ColumnsOf(const ColumnCut& cut) {
  return static_cast<std::size_t>(
      std::count_if(cut.fields.begin(), cut.fields.end(),
                    [](const ColumnCut::Field& field) { return field.imported; }));
}

void PartSummary::Append(const PartSummary& next) {
  surplus.Append(next.surplus, lines);
  unexpected.Append(next.unexpected, lines);
  undecodable.Append(next.undecodable, lines);
  for (std::size_t i = 0; i < columns.size(); ++i) columns[i].Append(next.columns[i], lines);
  FilledPlaces::Append(next.filled, &filled);
  for (std::size_t i = 0; i < controls.size(); ++i) controls[i] += next.controls[i];
  if (next.quotes) {
    if (!quotes) quotes.emplace();
    quotes->Append(*next.quotes);
  }
  records += next.records;
  lines += next.lines;
}

}  // namespace library
