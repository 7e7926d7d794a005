// One variable of an import: where its field lies, its display format, and what dictionary building
// and case reading learn about its values.
#pragma once

#include <cstdint>
#include <string>

namespace textwizard {

// Characters of a variable's name; the rest of a longer one is cut off.
inline constexpr std::uint32_t kMaxNameCharacters = 64;

class TxtWzVar {
 public:
  TxtWzVar();
  TxtWzVar(const TxtWzVar&) = default;
  TxtWzVar& operator=(const TxtWzVar&) = default;
  virtual ~TxtWzVar();

  // Sets every number, key and flag to zero or false and both names to empty.
  void ClearAllValues();
  // Sets the name and its upper-case copy (host text).
  void SetVarName(const char* name);

  // Fixed columns: first byte of the field in its record, from 0; 0 when delimited.
  std::uint32_t startColumn;
  // Fixed columns: record of the case that holds the field, from 1; 0 when delimited.
  std::uint32_t recordNumber;
  // Field width of numbers: the format's, or the column count of fixed columns.
  std::uint32_t width;
  std::int32_t decimals;
  // Byte width of a string variable; detection keeps the length of long values here.
  std::uint32_t maxStringLength;
  // Display-format code (FormatCode); kFormatAuto until detected, kFormatSkip for a skipped field.
  std::uint32_t formatType;
  std::string name;
  // The key of duplicate checks and look-ups.
  std::string upperName;
  // Sample values by class.
  std::uint64_t stringCount;
  std::uint64_t numericCount;
  std::uint64_t dateCount;
  std::uint64_t percentCount;
  std::uint64_t dollarCount;
  std::uint64_t commaCount;
  std::uint64_t dotCount;
  // Key of the date or time pattern adopted for the variable; 0 is none.
  std::int32_t dateKey;
  // A numeric sample value used E notation.
  bool hasExponent;
  // While reading cases: a value could not be converted and a missing value was stored.
  bool missingStored;
  // While reading cases: a string was longer than the variable's cells. While workers detect types:
  // string lengths vary; cleared when the type is settled.
  bool stringTruncated;
};

}  // namespace textwizard
