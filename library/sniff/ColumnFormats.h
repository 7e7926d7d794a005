// A format that reads the sampled values of a column, by the conversion that will read the cases.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "library/sniff/SampleTable.h"
#include "library/sniff/SniffSettings.h"

namespace library {

// The format's text, such as "F8.2", "SDATE10", "A20". `values`: the column's cells below the
// header. Numbers whose digits mean something else than an amount (leading zeros, more digits than
// a double keeps) are texts, and so is what no format reads.
std::string FormatOf(const std::vector<const SampleCell*>& values, DecimalCharacter decimal);

// The decimal character of a table, and a value that shows it; an empty value where none does.
struct DecimalAnswer {
  DecimalCharacter decimal = DecimalCharacter::kPoint;
  std::string witness;
  std::size_t row = 0;
  // Values that show the other one.
  std::size_t against = 0;
};
DecimalAnswer FindDecimal(const SampleTable& table, std::size_t firstRow, std::size_t endRow);

}  // namespace library
