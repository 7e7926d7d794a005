#include "library/sniff/ColumnGaps.h"

#include <algorithm>

#include "library/sniff/Utf8.h"

namespace library {
namespace {

constexpr std::size_t kMostLines = 300;
// A place is in a gap where at most one of so many lines fills it.
constexpr std::size_t kLinesAFill = 10;

// Calls `take` with each place of the line, from 0, and whether it is filled.
template <typename Take>
void ForPlaces(std::string_view line, std::size_t places, const Take& take) {
  std::size_t place = 0;
  for (std::size_t at = 0; at < line.size() && place < places; at += Utf8Length(line[at])) {
    take(place++, line[at] != ' ');
  }
}

}  // namespace

ColumnGaps::ColumnGaps(const std::vector<std::string_view>& lines,
                       const std::vector<CharacterRange>& columns) {
  if (columns.size() < 2) return;
  gaps_.resize(static_cast<std::size_t>(columns.back().from));
  std::vector<std::size_t> filled(gaps_.size());
  const std::size_t count = std::min(lines.size(), kMostLines);
  for (std::size_t i = 0; i < count; ++i) {
    ForPlaces(lines[i], filled.size(),
              [&](std::size_t place, bool isFilled) { filled[place] += isFilled ? 1 : 0; });
  }
  const auto isGap = [&](std::int64_t place) {
    return filled[static_cast<std::size_t>(place)] * kLinesAFill <= count;
  };
  for (std::size_t i = 0; i + 1 < columns.size(); ++i) {
    // The column's last place, and the next one's first; the blank ones beside them are the gap.
    const std::int64_t last = columns[i].to - 1;
    const std::int64_t least = columns[i].from - 1;
    const std::int64_t most = columns[i + 1].to == 0 ? columns[i + 1].from : columns[i + 1].to;
    for (std::int64_t place = last; place > least && isGap(place); --place) {
      gaps_[static_cast<std::size_t>(place)] = i + 1;
    }
    for (std::int64_t place = last + 1;
         place < std::min(most, static_cast<std::int64_t>(gaps_.size())) && isGap(place); ++place) {
      gaps_[static_cast<std::size_t>(place)] = i + 1;
    }
  }
}

bool ColumnGaps::AreCrossedBy(std::string_view line) const {
  std::size_t met = 0;
  std::size_t crossed = 0;
  std::size_t lastMet = 0;
  std::size_t lastCrossed = 0;
  // Blanks at the line's end are no part of it.
  line = line.substr(0, line.find_last_not_of(' ') + 1);
  ForPlaces(line, gaps_.size(), [&](std::size_t place, bool isFilled) {
    const std::size_t gap = gaps_[place];
    if (gap == 0) return;
    if (gap != lastMet) ++met;
    lastMet = gap;
    if (!isFilled) return;
    if (gap != lastCrossed) ++crossed;
    lastCrossed = gap;
  });
  return crossed > 0 && 2 * crossed >= met;
}

}  // namespace library
