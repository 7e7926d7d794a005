#include "library/import/PartSummary.h"

namespace library {

void PartSummary::Append(const PartSummary& next) {
  surplus.Append(next.surplus, lines);
  unexpected.Append(next.unexpected, lines);
  undecodable.Append(next.undecodable, lines);
  for (std::size_t i = 0; i < columns.size(); ++i) columns[i].Append(next.columns[i], lines);
  for (std::size_t i = 0; i < controls.size(); ++i) controls[i] += next.controls[i];
  records += next.records;
  lines += next.lines;
}

}  // namespace library
