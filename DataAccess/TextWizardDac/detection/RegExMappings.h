// The patterns by which sample values are recognised: a table of date and time layouts, each with
// its display format, and the four number patterns (percentage, dollar, comma- and dot-grouped).
//
// Month and day names are those of the process locale at construction. Matchers are stateful: one
// table belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "detection/PatternMatcher.h"

namespace textwizard {

// The table has fewer rows.
inline constexpr std::size_t kMostDateRows = 60;

struct RegExToFormatMapping {
  std::int32_t key = 0;
  // Format that the row implies.
  std::int16_t width = 0;
  std::int16_t decimals = 0;
  std::int32_t formatType = 0;
  std::string formatName;
  // The layout in date-pattern letters; descriptive only.
  std::string icuPattern;
  // What recognises the layout in lower-cased text.
  std::string regex;
  // Of `regex`; shared by copies of the row.
  PatternMatcher matcher;
};

class RegExMappings {
 public:
  RegExMappings();
  ~RegExMappings();
  RegExMappings(const RegExMappings&) = delete;
  RegExMappings& operator=(const RegExMappings&) = delete;

  // The rows, by ascending key.
  const std::map<std::int32_t, RegExToFormatMapping>& regExMappings() const { return rows_; }

  std::string percentRegex, dollarRegex, commaRegex, dotRegex;
  PatternMatcher percentMatcher, dollarMatcher, commaMatcher, dotMatcher;

 private:
  void InitRegExMappings();
  std::map<std::int32_t, RegExToFormatMapping> rows_;
};

}  // namespace textwizard
