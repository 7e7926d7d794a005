// Where the lines of a fixed arrangement are blank: what lies between its columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "library/sniff/CellKinds.h"
#include "library/sniff/SniffSettings.h"

namespace library {

// Counts, for each character's place in a line, the lines that are not blank there. Masks of parts
// of a file add up to that of the file. One thread.
class BlankMask {
 public:
  // Places that are looked at.
  static constexpr std::size_t kMostPlaces = 10000;

  // A line of UTF-8.
  void Add(std::string_view line);
  void Merge(const BlankMask& other);

  std::uint64_t lines() const { return lines_; }
  // Lines that are not blank at a place, from 1.
  std::uint64_t FilledAt(std::int64_t place) const {
    const auto index = static_cast<std::size_t>(place - 1);
    return index < filled_.size() ? filled_[index] : 0;
  }
  // The runs of places between those that hardly any line fills, from the first column's start to
  // the last one's end. Fewer than two: the lines have no columns.
  std::vector<CharacterRange> Runs() const;

 private:
  std::vector<std::uint32_t> filled_;
  std::uint64_t lines_ = 0;
};

// The ways in which the lines may be cut at fixed places, the likeliest first; none where they have
// no columns. A line of rules ("---- ------") shows the columns; else the mask's runs do, of all
// lines or of those below the first ones, which may be titles, each with blanks beside it (see
// ColumnsOfRuns). The blanks within "1 Jan 2020" and before a date's time are no such, nor is one
// blank between words where the columns stand two apart. Without any blanks, lines are cut where
// all of them change between digits and letters.
std::vector<std::vector<CharacterRange>> FixedColumns(const std::vector<std::string_view>& lines,
                                                      CellKinds& kinds);

// The bytes of `line` (UTF-8) that hold the characters of a range.
std::string_view CutCharacters(std::string_view line, const CharacterRange& range);

}  // namespace library
