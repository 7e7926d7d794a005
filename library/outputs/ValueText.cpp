#include "library/outputs/ValueText.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

#include "HostFramework/Calendar.h"

namespace library {
namespace {

// Whole seconds below this are exact in a double, with fractions still meaningful.
constexpr double kLongestTime = 1e15;
constexpr double kPlainFrom = 1e-4;
constexpr double kPlainBelow = 1e16;

char* WriteTwoDigits(char* out, std::uint32_t number) {
  *out++ = static_cast<char>('0' + number / 10);
  *out++ = static_cast<char>('0' + number % 10);
  return out;
}

// Writes the day of a moment inside the calendar as yyyy-mm-dd.
char* WriteDay(char* out, std::int64_t seconds) {
  const std::chrono::year_month_day date = calendar::DateOf(seconds / calendar::kSecondsPerDay);
  const auto year = static_cast<std::uint32_t>(static_cast<int>(date.year()));
  out = WriteTwoDigits(out, year / 100);
  out = WriteTwoDigits(out, year % 100);
  *out++ = '-';
  out = WriteTwoDigits(out, static_cast<unsigned>(date.month()));
  *out++ = '-';
  return WriteTwoDigits(out, static_cast<unsigned>(date.day()));
}

// A number of seconds that is not negative, cut at its decimal point. The fraction keeps the digits
// of the shortest text of the whole number: together with the seconds they read back to it.
struct Seconds {
  std::int64_t whole;
  std::string_view fraction;  // digits after the point; may be empty
};

Seconds Split(double value, char (&buffer)[kValueTextRoom]) {
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
  const std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
  const std::size_t point = text.find('.');
  return {static_cast<std::int64_t>(value),
          point == std::string_view::npos ? std::string_view() : text.substr(point + 1)};
}

char* WriteFraction(char* out, std::string_view fraction) {
  if (fraction.empty()) return out;
  *out++ = '.';
  return out + fraction.copy(out, fraction.size());
}

char* WriteMinutesAndSeconds(char* out, std::int64_t seconds) {
  const auto ofHour = static_cast<std::uint32_t>(seconds % 3600);
  *out++ = ':';
  out = WriteTwoDigits(out, ofHour / 60);
  *out++ = ':';
  return WriteTwoDigits(out, ofHour % 60);
}

char* WriteTime(char* out, double value) {
  char buffer[kValueTextRoom];
  if (value < 0) *out++ = '-';
  const Seconds time = Split(std::fabs(value), buffer);
  out = std::to_chars(out, out + kValueTextRoom / 2, time.whole / 3600).ptr;
  return WriteFraction(WriteMinutesAndSeconds(out, time.whole), time.fraction);
}

char* WriteDateTime(char* out, double value) {
  char buffer[kValueTextRoom];
  const Seconds time = Split(value, buffer);
  const auto ofDay = static_cast<std::uint32_t>(time.whole % calendar::kSecondsPerDay);
  out = WriteDay(out, time.whole);
  *out++ = 'T';
  out = WriteTwoDigits(out, ofDay / 3600);
  return WriteFraction(WriteMinutesAndSeconds(out, ofDay), time.fraction);
}

bool InCalendar(double value) {
  constexpr auto kBegin = static_cast<double>(calendar::kFirstDay * calendar::kSecondsPerDay);
  constexpr auto kEnd = static_cast<double>((calendar::kLastDay + 1) * calendar::kSecondsPerDay);
  return value >= kBegin && value < kEnd;
}

}  // namespace

bool IsMissing(double value) {
  return !(value > kSystemMissing && value <= std::numeric_limits<double>::max());
}

char* WriteNumber(char* out, double value) {
  char* const end = out + kValueTextRoom;
  const double size = std::fabs(value);
  if (size < kPlainBelow) {
    const auto whole = static_cast<std::int64_t>(value);
    // Whole numbers are most numbers, and integer conversion is several times faster. A negative
    // zero keeps its sign only as a double.
    if (static_cast<double>(whole) == value && (whole != 0 || !std::signbit(value))) {
      return std::to_chars(out, end, whole).ptr;
    }
    if (size >= kPlainFrom) return std::to_chars(out, end, value, std::chars_format::fixed).ptr;
  }
  return std::to_chars(out, end, value).ptr;
}

char* WriteValue(char* out, double value, ValueKind kind) {
  switch (kind) {
    case ValueKind::kDate:
      if (InCalendar(value)) return WriteDay(out, static_cast<std::int64_t>(value));
      break;
    case ValueKind::kDateTime:
      if (InCalendar(value)) return WriteDateTime(out, value);
      break;
    case ValueKind::kTime:
      if (std::fabs(value) < kLongestTime) return WriteTime(out, value);
      break;
    case ValueKind::kString:
    case ValueKind::kNumber:
      break;
  }
  return WriteNumber(out, value);
}

}  // namespace library
