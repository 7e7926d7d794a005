// Counts the fields of columns as ColumnEvidence does, at the pace of a file being read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "library/types/ColumnEvidence.h"
#include "library/types/ValueShape.h"
#include "watch/NullTexts.h"

namespace library {

// For stretches of less than 2^32 records. Most fields are plain numbers, words, or of the shape of
// the field before them in their column. What is counted of those lies side by side, half a cache
// line a column, so that many columns do not drive one another out of the nearest memory. One
// thread.
class ColumnCounters {
 public:
  ColumnCounters(std::size_t columns, const textwizard::NullTexts& nulls)
      : nulls_(nulls), hot_(columns), cold_(columns) {}

  // Takes the field of a column in a record that begins in line `line` (from 1).
  void Count(std::size_t column, std::string_view field, std::int64_t line);
  // The evidence of all fields counted; nothing is counted then.
  std::vector<ColumnEvidence> Take();

 private:
  // Of what the evidence does not know yet.
  struct Hot {
    std::uint32_t longest = 0;
    std::uint32_t empties = 0;
    // Whole numbers; numbers with a fraction; those whose point may be a grouping one, too; texts.
    std::uint32_t integers = 0;
    std::uint32_t fractions = 0;
    std::uint32_t groups = 0;
    std::uint32_t texts = 0;
    // Characters at most: in front of the point, behind it; in front of a decimal comma; all.
    std::uint8_t whole = 0;
    std::uint8_t fraction = 0;
    std::uint8_t commaWhole = 0;
    std::uint8_t longestRead = 0;
  };
  struct Cold {
    ValueShape shape;
    ValuePlan plan;
    ColumnEvidence evidence;
  };

  bool CountPlain(std::size_t column, std::string_view text, std::int64_t line);
  void CountNull(std::size_t column, std::string_view text, std::int64_t line);
  void CountOther(std::size_t column, std::string_view text, std::int64_t line);
  void NoteLength(std::size_t column, std::string_view field, std::int64_t line);
  void NoteGroup(std::size_t column, ReadingSet readings, std::string_view text, std::int64_t line);
  static ColumnEvidence Joined(const Hot& hot, ColumnEvidence evidence);

  const textwizard::NullTexts& nulls_;
  std::vector<Hot> hot_;
  std::vector<Cold> cold_;
};

}  // namespace library
