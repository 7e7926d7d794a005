// What is known about the values of one column: counts that add up, and the first of each kind.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "library/types/Reading.h"
#include "library/types/ValueReader.h"
#include "watch/NullTexts.h"

namespace library {

// How many, and the first of them: its physical line (from 1) and its text (UTF-8, at most
// kWitnessBytes). Line 0: none.
struct Witness {
  static constexpr std::size_t kWitnessBytes = 200;

  std::int64_t count = 0;
  std::int64_t line = 0;
  std::string text;

  // One more, of host text.
  void Add(std::string_view seen, std::int64_t seenLine) {
    if (line == 0) Set(seen, seenLine);
    ++count;
  }
  // Those of `next`, whose lines are counted `lines` lines later. The first is that of the first
  // line.
  void Append(const Witness& next, std::int64_t lines);
  void Set(std::string_view seen, std::int64_t seenLine);

  bool operator==(const Witness&) const = default;
};

// What numbers under one decimal character come to.
struct NumberEvidence {
  int whole = 0;     // characters in front of the decimal character, at most
  int fraction = 0;  // digits behind it, at most
  Witness grouped;
  std::int64_t exponents = 0;
  std::int64_t fractions = 0;  // numbers with digits behind it

  void Add(const NumberShape& shape, std::string_view text, std::int64_t line);
  void Append(const NumberEvidence& next, std::int64_t lines);
  bool operator==(const NumberEvidence&) const = default;
};

// Evidence of a stretch of a column: two stretches that follow one another become one by Append, in
// any grouping the same. Lines are counted from the stretch's own first one until then. One thread.
class ColumnEvidence {
 public:
  // The values that have the same readings. Those that have none are texts.
  struct Group {
    ReadingSet readings;
    Witness values;
    bool operator==(const Group&) const = default;
  };

  // Takes the field of a record that begins in line `line` (from 1).
  void Count(std::string_view field, std::int64_t line, const textwizard::NullTexts& nulls);
  // Takes what `next` has counted behind this stretch, which is `lines` lines long.
  void Append(const ColumnEvidence& next, std::int64_t lines);
  // Points become decimal commas and commas points, of all numbers: what another decimal character
  // makes of the same values.
  void SwapDecimals();

  // Not empty, not null.
  std::int64_t values() const { return values_; }
  const std::vector<Group>& groups() const { return groups_; }
  // Values that this reading has.
  std::int64_t Read(Reading reading) const;
  // The first value that it has not, and how many.
  Witness Unread(Reading reading) const;
  // The values that `left` reads and `right` does not.
  Witness Only(Reading left, Reading right) const;
  // The values that both read.
  Witness Both(Reading left, Reading right) const;

  const NumberEvidence& point() const { return point_; }
  const NumberEvidence& comma() const { return comma_; }
  const Witness& leadingZeros() const { return leadingZeros_; }
  const Witness& lostDigits() const { return lostDigits_; }
  // Dates: months in letters; years of two digits; dates and times of digits by the one character
  // between their parts; those that can be read in the other order, too.
  std::int64_t namedMonths() const { return namedMonths_; }
  std::int64_t shortYears() const { return shortYears_; }
  std::int64_t slashed() const { return separators_[0]; }
  std::int64_t dotted() const { return separators_[1]; }
  std::int64_t dashed() const { return separators_[2]; }
  const Witness& eitherOrder() const { return eitherOrder_; }
  int secondFraction() const { return secondFraction_; }
  bool hasSeconds() const { return hasSeconds_; }

  std::int64_t empties() const { return empties_; }
  const Witness& nulls() const { return nulls_; }
  // The longest field in bytes of host text, as it was cut; of several the first. Its `count` is
  // the bytes.
  const Witness& longest() const { return longest_; }
  // The longest value that has a reading, in bytes without the blanks around it.
  int longestRead() const { return longestRead_; }

  bool operator==(const ColumnEvidence&) const = default;

 private:
  friend class ColumnCounters;
  friend struct EvidenceFields;

  // The steps of Count: a field's length; a value that is no null text, with its readings.
  void CountLength(std::string_view field, std::int64_t line);
  void CountValue(const ValueReadings& found, std::string_view text, std::int64_t line);
  Group& GroupOf(ReadingSet readings);
  template <typename Chosen>
  Witness Sum(const Chosen& chosen) const;

  std::int64_t values_ = 0;
  std::int64_t empties_ = 0;
  Witness nulls_;
  std::vector<Group> groups_;
  NumberEvidence point_;
  NumberEvidence comma_;
  Witness leadingZeros_;
  Witness lostDigits_;
  std::int64_t namedMonths_ = 0;
  std::int64_t shortYears_ = 0;
  std::array<std::int64_t, 3> separators_{};
  Witness eitherOrder_;
  int secondFraction_ = 0;
  bool hasSeconds_ = false;
  int longestRead_ = 0;
  Witness longest_;
};

}  // namespace library
