#include "library/sniff/ColumnGaps.h"

#include <algorithm>

#include "library/sniff/Utf8.h"

namespace library {
namespace {

constexpr std::size_t kMostLines = 300;
// A border has blanks beside it in four of five lines, or it is none that a line may cross.
constexpr std::size_t kLinesAFill = 5;

// The blanks on end around each border, one after the other, as far as two.
template <typename Take>
void ForBorders(std::string_view line, const std::vector<std::size_t>& borders, const Take& take) {
  // Blanks at the line's end are no part of it.
  line = line.substr(0, line.find_last_not_of(' ') + 1);
  std::size_t place = 0;
  std::size_t at = 0;
  std::size_t blanks = 0;  // on end, before the place
  for (std::size_t i = 0; i < borders.size(); ++i) {
    for (; place < borders[i] && at < line.size(); ++place, at += Utf8Length(line[at])) {
      blanks = line[at] == ' ' ? blanks + 1 : 0;
    }
    if (at >= line.size()) return;
    std::size_t behind = 0;
    while (behind < 2 && line[at + behind] == ' ') ++behind;
    take(i, std::min<std::size_t>(2, blanks + behind));
  }
}

}  // namespace

ColumnGaps::ColumnGaps(const std::vector<std::string_view>& lines,
                       const std::vector<CharacterRange>& columns) {
  for (std::size_t i = 0; i + 1 < columns.size(); ++i) {
    borders_.push_back(static_cast<std::size_t>(columns[i].to));
  }
  // Lines that have at least one blank at the border, and at least two.
  std::vector<std::size_t> one(borders_.size());
  std::vector<std::size_t> two(borders_.size());
  std::vector<std::size_t> met(borders_.size());
  for (std::size_t i = 0; i < std::min(lines.size(), kMostLines); ++i) {
    ForBorders(lines[i], borders_, [&](std::size_t border, std::size_t blanks) {
      ++met[border];
      one[border] += blanks > 0 ? 1 : 0;
      two[border] += blanks > 1 ? 1 : 0;
    });
  }
  for (std::size_t i = 0; i < borders_.size(); ++i) {
    const std::size_t most = (kLinesAFill - 1) * met[i];
    least_.push_back(kLinesAFill * two[i] >= most ? 2 : kLinesAFill * one[i] >= most ? 1 : 0);
  }
}

bool ColumnGaps::AreCrossedBy(std::string_view line) const {
  std::size_t met = 0;
  std::size_t crossed = 0;
  ForBorders(line, borders_, [&](std::size_t border, std::size_t blanks) {
    if (least_[border] == 0) return;
    ++met;
    crossed += blanks < least_[border] ? 1 : 0;
  });
  return crossed > 0 && 2 * crossed >= met;
}

}  // namespace library
