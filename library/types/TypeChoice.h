// The format of every column, from what is known about its values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "library/types/ColumnEvidence.h"
#include "library/types/DecimalCharacter.h"

namespace library {

// A format as a command writes it.
struct ChosenFormat {
  std::uint32_t code = textwizard::kFormatA;
  std::uint32_t width = 1;
  std::uint32_t decimals = 0;
  bool operator==(const ChosenFormat&) const = default;
};

// What there is to say about a column, besides its format.
struct ColumnRemark {
  enum Kind : std::uint8_t {
    kUnreadable,      // values that the format cannot read
    kMixed,           // a text because too many values are none of the type of most
    kLeadingZeros,    // a text because a number would lose zeros
    kLostDigits,      // a text because a number would lose digits
    kDayOrMonth,      // day and month may be meant the other way round
    kDecimalOrGroup,  // a point or comma may be meant as the other
    kTooLong,         // texts longer than the longest string
    kTimeZone,        // texts that would be date-times without their time zones
  };
  Kind kind;
  // The values that it is about.
  Witness values;
  // A format that reads the values of kDayOrMonth, kDecimalOrGroup the other way, or most values of
  // kMixed; with width. None for percentages, which only another decimal character reads so.
  std::optional<ChosenFormat> other;
};

struct ChosenType {
  ChosenFormat format;
  // Every value that is read is a whole number within 2^53.
  bool wholeNumbers = false;
  std::vector<ColumnRemark> remarks;
};

struct TypeSettings {
  // Share of a column's values that its format has to read, in percent.
  double leastShare = 95.0;
  // Of the data; `decimalGiven`: whatever the values say.
  DecimalCharacter decimal = DecimalCharacter::kPoint;
  bool decimalGiven = false;
  // Fixed columns: the bytes of each, which its format has to be as wide as; else empty.
  std::vector<std::uint32_t> columnWidths{};
};

struct TypeChoice {
  DecimalCharacter decimal = DecimalCharacter::kPoint;
  // The first value that speaks for it alone, and its column; line 0 when none does.
  Witness decimalWitness;
  std::size_t decimalColumn = 0;
  // Values that speak for the other one alone.
  std::int64_t decimalAgainst = 0;
  std::vector<ChosenType> columns;
};

// Chooses by counts: of the readings that a column's values have, the one that most have, where
// enough have it; a string where none is. The rest of the data decides what a column leaves open:
// the decimal character, and whether the day or the month comes first.
TypeChoice ChooseTypes(const std::vector<ColumnEvidence>& columns, const TypeSettings& settings);

// The format of that code with the width and decimals that the values need; any but X and AUTO.
ChosenFormat FitFormat(std::uint32_t code, const ColumnEvidence& evidence,
                       DecimalCharacter decimal);

}  // namespace library
