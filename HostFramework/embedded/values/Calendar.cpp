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

std::optional<std::int64_t> Midnight(int year, int month, int day) {
  constexpr int kLongestMonth = 31;
  if (year < 1 || year > kLastYear || month < 1 || day < 1) return std::nullopt;
  if (month > 12 || day > kLongestMonth) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok()) return std::nullopt;
  return MidnightOfDay(calendar::DayNumber(date));
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
