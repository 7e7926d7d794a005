// Numbers of cases as the values of typed columns.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "HostFramework/Calendar.h"
#include "HostFramework/DataSource.h"

namespace library {

// Days and seconds from 1582-10-14, where the host counts from, to 1970-01-01.
inline constexpr std::int64_t kEpochDay = calendar::kDay1970;
inline constexpr double kEpochSeconds =
    static_cast<double>(calendar::kDay1970 * calendar::kSecondsPerDay);

inline bool IsMissingNumber(double value) {
  return !(value > kSystemMissing && value <= std::numeric_limits<double>::max());
}

// Each sets *out to the value when the type can hold it exactly; else false, and *out is 0. `value`
// is not missing.

inline bool CellFloat64(double value, double* out) {
  *out = value;
  return true;
}

// Whole numbers that a double tells apart: up to 2^53 either way.
inline bool CellInt64(double value, std::int64_t* out) {
  constexpr double kMost = 9007199254740992.0;
  const bool holds = std::fabs(value) <= kMost && std::trunc(value) == value;
  *out = holds ? static_cast<std::int64_t>(value) : 0;
  return holds;
}

inline bool CellInt8(double value, std::int8_t* out) {
  const bool holds = std::fabs(value) <= 127 && std::trunc(value) == value;
  *out = holds ? static_cast<std::int8_t>(value) : std::int8_t{0};
  return holds;
}

// Whole days of the seconds since 1582-10-14.
inline bool CellDate32(double value, std::int32_t* out) {
  const double days = value / 86400.0;
  const bool holds = std::fabs(days) <= 2147000000.0 && std::trunc(days) == days;
  *out = holds ? static_cast<std::int32_t>(static_cast<std::int64_t>(days) - kEpochDay) : 0;
  return holds;
}

// Microseconds that read back to the same number of seconds. Long double: the microseconds of a
// date need more digits than a double has.
inline bool CellMicros(double seconds, std::int64_t* out) {
  constexpr double kMost = 9.2e12;
  *out = 0;
  if (!(std::fabs(seconds) <= kMost)) return false;
  const auto whole = static_cast<std::int64_t>(seconds);
  if (static_cast<double>(whole) == seconds) {
    *out = whole * 1000000;
    return true;
  }
  const std::int64_t micros = std::llroundl(static_cast<long double>(seconds) * 1e6L);
  if (static_cast<double>(static_cast<long double>(micros) / 1e6L) != seconds) return false;
  *out = micros;
  return true;
}

inline bool CellTimestamp(double value, std::int64_t* out) {
  if (!CellMicros(value, out)) return false;
  constexpr std::int64_t kEpochMicros = kEpochDay * 86400 * 1000000;
  *out -= kEpochMicros;
  return true;
}

}  // namespace library
