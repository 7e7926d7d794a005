// Dates read from their parts: seconds since 1582-10-14 00:00:00.
#pragma once

#include <cstdint>
#include <optional>

#include "HostFramework/Calendar.h"

namespace embedded {

inline constexpr std::int64_t kMinute = 60;
inline constexpr std::int64_t kHour = 60 * kMinute;
inline constexpr std::int64_t kDay = calendar::kSecondsPerDay;

// Midnight of the date. Nothing when there is no such date, or when it does not lie between
// 1582-10-15, the calendar's first day, and 9999-12-31.
inline std::optional<std::int64_t> Midnight(int year, int month, int day);
// The same with 0, which is no date's, for nothing. This is what one register holds: an optional
// goes through memory from function to function, which takes as long as the arithmetic.
std::int64_t MidnightOrZero(int year, int month, int day);

// Midnight of the day that is `days` after 1 January of the year (which may itself lie before the
// calendar's first day). Nothing when that day is outside the calendar.
std::optional<std::int64_t> MidnightAfterNewYear(int year, int days);

// The year that the last two digits of a year, 0 to 99, mean: see SetTwoDigitYearStart.
int YearOfTwoDigits(int digits);

inline std::optional<std::int64_t> Midnight(int year, int month, int day) {
  const std::int64_t midnight = MidnightOrZero(year, month, day);
  return midnight != 0 ? std::optional(midnight) : std::nullopt;
}

}  // namespace embedded
