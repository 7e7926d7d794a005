// Field text into the value of a case's cell.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "HostFramework/ValueInput.h"
#include "model/FormatCode.h"

namespace textwizard {

// Reads a field of any format but A and X. Compact dates and times without separators are rewritten
// first. False when the text is not a value: the caller then stores the missing value. Any thread;
// allocates nothing.
inline bool ConvertNumber(std::string_view field, std::uint32_t formatType, double* value);

// How a string variable takes a field.
struct StringRules {
  // Remove leading blanks of a field that is too long.
  bool leadingSpaces = false;
  // Conversion on workers: a field two bytes too long that is enclosed in double quotation marks or
  // apostrophes is not counted as truncated.
  bool enclosedFitsUnmarked = false;
};

struct StringValue {
  // What the variable's cells take: cut to whole characters that fit and padded by whoever stores.
  std::string_view text;
  // The text does not fit the cells.
  bool truncated = false;
};

// `width`: bytes that the variable's cells take. Any thread; the result is a view of `field`.
inline StringValue ConvertString(std::string_view field, std::size_t width,
                                 const StringRules& rules);

// --- The ways of most fields, in line
bool ConvertDateOrTime(std::string_view field, std::uint32_t formatType, double* value);
StringValue ConvertLongString(std::string_view field, std::size_t width, const StringRules& rules);

inline bool ConvertNumber(std::string_view field, std::uint32_t formatType, double* value) {
  switch (formatType) {
    case kFormatDate:
    case kFormatADate:
    case kFormatEDate:
    case kFormatSDate:
    case kFormatTime:
      return ConvertDateOrTime(field, formatType, value);
    default:
      return IocvConvertInput(field.data(), field.size(), static_cast<int>(formatType), 0, value) ==
             0;
  }
}

inline StringValue ConvertString(std::string_view field, std::size_t width,
                                 const StringRules& rules) {
  if (field.size() <= width) return {field, false};
  return ConvertLongString(field, width, rules);
}

}  // namespace textwizard
