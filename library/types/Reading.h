// The ways in which a value can be read: what a format is chosen from.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "model/FormatCode.h"

namespace library {

// Those of numbers tell the decimal character, which F and PCT leave to the host.
enum class Reading : std::uint8_t {
  kPoint,  // 1234.5 and 1,234.5: F with a decimal point, COMMA
  kComma,  // 1234,5 and 1.234,5: F with a decimal comma, DOT
  kPointPercent,
  kCommaPercent,
  kDollar,
  kYearMonthDay,      // SDATE
  kMonthDayYear,      // ADATE
  kDayMonthYear,      // DATE; EDATE where days and months are digits
  kYearMonthDayTime,  // YMDHMS
  kDayMonthYearTime,  // DATETIME
  kTime,              // TIME
  kMinutesSeconds,    // MTIME
  kDaysTime,          // DTIME
  kQuarter,           // QYR
  kMonthYear,         // MOYR
  kWeek,              // WKYR
  kDayName,           // WKDAY
  kMonthName,         // MONTH
};
inline constexpr std::size_t kReadings = 18;

// Some of them.
class ReadingSet {
 public:
  constexpr ReadingSet() = default;
  template <typename... Rest>
  constexpr explicit ReadingSet(Reading first, Rest... rest) : bits_(Bit(first)) {
    (Add(rest), ...);
  }

  constexpr bool Has(Reading reading) const { return (bits_ & Bit(reading)) != 0; }
  constexpr void Add(Reading reading) { bits_ |= Bit(reading); }
  constexpr bool empty() const { return bits_ == 0; }
  constexpr std::uint32_t bits() const { return bits_; }
  static constexpr ReadingSet FromBits(std::uint32_t bits) {
    ReadingSet set;
    set.bits_ = bits & ((1U << kReadings) - 1);
    return set;
  }
  constexpr ReadingSet operator|(ReadingSet other) const { return FromBits(bits_ | other.bits_); }
  bool operator==(const ReadingSet&) const = default;

 private:
  static constexpr std::uint32_t Bit(Reading reading) {
    return 1U << static_cast<unsigned>(reading);
  }
  std::uint32_t bits_ = 0;
};

// What values of the set are to who takes the other decimal character for theirs.
constexpr ReadingSet WithSwappedDecimals(ReadingSet readings) {
  constexpr std::array<Reading, kReadings> kSwapped = [] {
    std::array<Reading, kReadings> swapped{};
    for (std::size_t i = 0; i < kReadings; ++i) swapped[i] = static_cast<Reading>(i);
    swapped[static_cast<std::size_t>(Reading::kPoint)] = Reading::kComma;
    swapped[static_cast<std::size_t>(Reading::kComma)] = Reading::kPoint;
    swapped[static_cast<std::size_t>(Reading::kPointPercent)] = Reading::kCommaPercent;
    swapped[static_cast<std::size_t>(Reading::kCommaPercent)] = Reading::kPointPercent;
    return swapped;
  }();
  ReadingSet swapped;
  for (std::size_t i = 0; i < kReadings; ++i) {
    if (readings.Has(static_cast<Reading>(i))) swapped.Add(kSwapped[i]);
  }
  return swapped;
}

constexpr bool IsNumber(Reading reading) { return reading <= Reading::kDollar; }

// The format that reads it: of numbers the one that has the same decimal character at all times,
// which there is none of for percentages.
constexpr std::uint32_t FormatOf(Reading reading) {
  using namespace textwizard;
  constexpr std::array<std::uint32_t, kReadings> kFormats = {
      kFormatComma, kFormatDot,  kFormatPct,    kFormatPct,      kFormatDollar, kFormatSDate,
      kFormatADate, kFormatDate, kFormatYmdhms, kFormatDateTime, kFormatTime,   kFormatMTime,
      kFormatDTime, kFormatQyr,  kFormatMoyr,   kFormatWkyr,     kFormatWkday,  kFormatMonth};
  return kFormats[static_cast<std::size_t>(reading)];
}

}  // namespace library
