// Reading times and durations: TIME, DTIME, MTIME.
#pragma once

#include <cstdint>
#include <string_view>

#include "HostFramework/embedded/values/TextCursor.h"

namespace embedded {

// Consumes all the digits here, at least one.
bool ReadDigits(TextCursor& cursor, DigitRun& digits);

// Seconds and the digits of their fraction, which may be none, rounded once to the nearest double.
double SecondsValue(std::int64_t seconds, const DigitRun& fraction);

// Consumes one or two digits below 60.
bool ReadSixty(TextCursor& cursor, int& value);

// A time of day or a number of hours: hours, minutes and, if given, seconds with a fraction.
struct ClockTime {
  DigitRun hours;
  int minutes = 0;
  int seconds = 0;
  DigitRun fraction;

  // For hours below 24.
  std::int64_t WholeSeconds() const;
};

// What may stand between seconds and their fraction.
enum class FractionMark { kPoint, kPointOrSeparator };

// Consumes hh:mm:ss when that is all there is and a clock time; else nothing.
bool AcceptFixedClock(TextCursor& cursor, ClockTime& clock);
// Consumes a clock time. kPoint takes a point or a comma before the fraction, kPointOrSeparator
// also a hyphen, a slash or one blank.
bool ReadClock(TextCursor& cursor, FractionMark mark, ClockTime& clock);
// The same, but only below 24 hours.
bool ReadTimeOfDay(TextCursor& cursor, FractionMark mark, ClockTime& clock);

// Each of these reads `text` (not empty, without blanks and tabs around it) to its end. Returns
// false and leaves *value alone when it is not a value of the format. Any thread; allocates
// nothing.
bool ReadTime(std::string_view text, double* value);
bool ReadDTime(std::string_view text, double* value);
bool ReadMTime(std::string_view text, double* value);

}  // namespace embedded
