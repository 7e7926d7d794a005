// The calendar of the host's dates: Gregorian, day 0 being 1582-10-14, from which dates count
// seconds.
#pragma once

#include <chrono>
#include <cstdint>

namespace calendar {

inline constexpr std::int64_t kSecondsPerDay = 86'400;

inline constexpr std::chrono::sys_days kDayZero{std::chrono::year(1582) / std::chrono::October /
                                                14};

// The number of the day.
constexpr std::int64_t DayNumber(std::chrono::sys_days day) { return (day - kDayZero).count(); }

// The first and the last day that a date can have: 1582-10-15 and 9999-12-31.
inline constexpr std::int64_t kFirstDay = 1;
inline constexpr std::int64_t kLastDay =
    DayNumber(std::chrono::year(9999) / std::chrono::December / 31);

// The number of 1970-01-01, from which others count.
inline constexpr std::int64_t kDay1970 = DayNumber(std::chrono::sys_days());

// The date of a day from kFirstDay to kLastDay.
constexpr std::chrono::year_month_day DateOf(std::int64_t day) {
  return kDayZero + std::chrono::days(static_cast<std::int32_t>(day));
}

}  // namespace calendar
