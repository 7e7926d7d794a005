#include "HostFramework/embedded/values/Calendar.h"

#include <atomic>

#include "HostFramework/embedded/values/ValueSettings.h"

namespace embedded {
namespace {

constexpr int kLastYear = 9999;
constexpr int kCentury = 100;

// Days from 0000-03-01 to 1582-10-14: day 0 of the host's count.
constexpr std::int64_t kEpoch = 578'040;

std::atomic<int> twoDigitYearStart{kDefaultTwoDigitYearStart};

int DaysOfMonth(int year, int month) {
  constexpr int kDaysOfMonth[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDaysOfMonth[month - 1];
}

// Days since the epoch. Years are counted from March, so that the leap day is a year's last and the
// months before a date have lengths that one formula gives.
constexpr std::int64_t DayNumber(int year, int month, int day) {
  const int fromMarch = month > 2 ? month - 3 : month + 9;
  const int marchYear = month > 2 ? year : year - 1;
  const int dayOfYear = (153 * fromMarch + 2) / 5 + day - 1;
  return std::int64_t{365} * marchYear + marchYear / 4 - marchYear / 100 + marchYear / 400 +
         dayOfYear - kEpoch;
}

static_assert(DayNumber(1582, 10, 14) == 0);
static_assert(DayNumber(1970, 1, 1) * kDay == 12'219'379'200);

constexpr std::int64_t kFirstDay = DayNumber(1582, 10, 15);
constexpr std::int64_t kLastDay = DayNumber(kLastYear, 12, 31);

std::optional<std::int64_t> MidnightOfDay(std::int64_t day) {
  if (day < kFirstDay || day > kLastDay) return std::nullopt;
  return day * kDay;
}

}  // namespace

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

std::optional<std::int64_t> Midnight(int year, int month, int day) {
  if (year < 1 || year > kLastYear || month < 1 || month > 12) return std::nullopt;
  constexpr int kShortestMonth = 28;
  if (day < 1 || (day > kShortestMonth && day > DaysOfMonth(year, month))) return std::nullopt;
  return MidnightOfDay(DayNumber(year, month, day));
}

std::optional<std::int64_t> MidnightAfterNewYear(int year, int days) {
  if (year < 1 || year > kLastYear) return std::nullopt;
  return MidnightOfDay(DayNumber(year, 1, 1) + days);
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
