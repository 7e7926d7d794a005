#include "HostFramework/embedded/values/Calendar.h"

#include <atomic>
#include <chrono>

#include "HostFramework/Calendar.h"
#include "HostFramework/embedded/values/ValueSettings.h"

namespace embedded {
namespace {

constexpr int kLastYear = 9999;
constexpr int kCentury = 100;

std::atomic<int> twoDigitYearStart{kDefaultTwoDigitYearStart};

std::optional<std::int64_t> MidnightOfDay(std::int64_t day) {
  if (day < calendar::kFirstDay || day > calendar::kLastDay) return std::nullopt;
  return day * kDay;
}

}  // namespace

std::int64_t MidnightOrZero(int year, int month, int day) {
  constexpr int kShortestMonth = 28;
  constexpr int kLongestMonth = 31;
  if (year < 1 || year > kLastYear || month < 1 || day < 1) return 0;
  if (month > 12 || day > kLongestMonth) return 0;
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (day > kShortestMonth && !date.ok()) return 0;
  const std::int64_t number = calendar::DayNumber(date);
  // No date that there is comes after the last day.
  return number < calendar::kFirstDay ? 0 : number * kDay;
}

std::optional<std::int64_t> MidnightAfterNewYear(int year, int days) {
  if (year < 1 || year > kLastYear) return std::nullopt;
  return MidnightOfDay(calendar::DayNumber(std::chrono::year(year) / std::chrono::January / 1) +
                       days);
}

int YearOfTwoDigits(int digits) {
  const int start = twoDigitYearStart.load(std::memory_order_relaxed);
  const int year = start - start % kCentury + digits;
  return year < start ? year + kCentury : year;
}

bool SetTwoDigitYearStart(int year) {
  constexpr int kFirstWholeYear = 1583;
  if (year < kFirstWholeYear || year > kLastYear - kCentury + 1) return false;
  twoDigitYearStart.store(year, std::memory_order_relaxed);
  return true;
}

int TwoDigitYearStart() { return twoDigitYearStart.load(std::memory_order_relaxed); }

}  // namespace embedded
