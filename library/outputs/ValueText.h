// Numbers, dates and times as text. Nothing here allocates, depends on a locale or fails.
#pragma once

#include <cstddef>
#include <limits>

#include "HostFramework/DataSource.h"
#include "library/outputs/FormatName.h"

namespace library {

// Room that the text of any value needs.
inline constexpr std::size_t kValueTextRoom = 512;

// True for the system-missing value and for what is no finite number.
inline bool IsMissing(double value) {
  return !(value > kSystemMissing && value <= std::numeric_limits<double>::max());
}

// Writes the fewest digits that read back to the same double, and returns the end of the text.
// Plain digits from 0.0001 to below 1e16, where a person reads them best; beyond, an exponent or
// plain digits, whichever is shorter.
char* WriteNumber(char* out, double value);

// Writes a value that is not missing, and returns the end of the text: a date as yyyy-mm-dd, a
// date-time as yyyy-mm-ddTHH:MM:SS[.f], a time as [-]H:MM:SS[.f], with the fewest digits of the
// fraction that read back to the same double. A value outside the calendar (1582-10-15 to
// 9999-12-31), or a time above 1e15 seconds, is written as the number.
char* WriteValue(char* out, double value, ValueKind kind);

}  // namespace library
