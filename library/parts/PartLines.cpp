#include "library/parts/PartLines.h"

#include <algorithm>

namespace library {

const PartLines::Start* PartLines::CaseStart(std::int64_t unitsBefore) const {
  const auto found = std::find_if(starts.begin(), starts.end(), [&](const Start& start) {
    return (unitsBefore + start.units) % unitsPerCase == 0;
  });
  return found == starts.end() ? nullptr : &*found;
}

void PartLines::AddStart(const Start& start) {
  // There is one for every remainder.
  if (static_cast<std::int64_t>(starts.size()) == unitsPerCase) return;
  const auto remainder = static_cast<std::size_t>(start.units % unitsPerCase);
  if (taken_.size() <= remainder) taken_.resize(remainder + 1);
  if (taken_[remainder]) return;
  taken_[remainder] = true;
  starts.push_back(start);
}

void PartLines::Append(const PartLines& next) {
  if (dataEnds) return;
  for (const Start& start : next.starts) {
    AddStart({units + start.units, lines + start.lines, start.byte});
  }
  if (begin < 0) begin = next.begin;
  if (next.end >= 0) end = next.end;
  lines += next.lines;
  units += next.units;
  dataEnds = next.dataEnds;
}

}  // namespace library
