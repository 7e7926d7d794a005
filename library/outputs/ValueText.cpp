#include "library/outputs/ValueText.h"

#include <array>
#include <bit>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "HostFramework/Calendar.h"

namespace library {
namespace {

// Whole seconds below this are exact in a double, with fractions still meaningful.
constexpr double kLongestTime = 1e15;
constexpr double kPlainFrom = 1e-4;
constexpr double kPlainBelow = 1e16;

// "00" to "99".
constexpr auto kTwoDigits = [] {
  std::array<char, 200> digits{};
  for (std::size_t number = 0; number < 100; ++number) {
    digits[2 * number] = static_cast<char>('0' + number / 10);
    digits[2 * number + 1] = static_cast<char>('0' + number % 10);
  }
  return digits;
}();

char* WriteTwoDigits(char* out, std::uint32_t number) {
  std::memcpy(out, kTwoDigits.data() + std::size_t{2} * number, 2);
  return out + 2;
}

// Eight digits of a number below 1e8, a byte each, the first one lowest.
std::uint64_t EightDigits(std::uint32_t number) {
  // Halves of four digits, then quarters of two, then digits, all at once.
  const std::uint64_t fours = number / 10000 | std::uint64_t{number % 10000} << 32U;
  const std::uint64_t hundreds = ((fours * 10486) >> 20U) & 0x0000007F0000007FU;
  const std::uint64_t twos = hundreds | (fours - 100 * hundreds) << 16U;
  const std::uint64_t tens = ((twos * 103) >> 10U) & 0x000F000F000F000FU;
  return tens | (twos - 10 * tens) << 8U;
}

constexpr std::uint64_t kZeros = 0x3030303030303030U;
constexpr std::uint32_t kEightDigits = 100000000;

char* WriteEightDigits(char* out, std::uint32_t number) {
  const std::uint64_t digits = EightDigits(number) + kZeros;
  std::memcpy(out, &digits, sizeof digits);
  return out + sizeof digits;
}

// Writes a whole number as std::to_chars does, without a decision on its length where it is short.
// There is room for 8 bytes more.
char* WriteWhole(char* out, std::uint64_t number) {
  if (number >= std::uint64_t{kEightDigits} * kEightDigits) {
    return std::to_chars(out, out + kValueTextRoom / 2, number).ptr;
  }
  const auto last = static_cast<std::uint32_t>(number % kEightDigits);
  const auto first = static_cast<std::uint32_t>(number / kEightDigits);
  const std::uint64_t digits = EightDigits(first != 0 ? first : last);
  // The last digit stands also when it is 0.
  const auto zeros = static_cast<unsigned>(std::countr_zero(digits | 1ULL << 56U)) / 8;
  const std::uint64_t text = (digits + kZeros) >> (8 * zeros);
  std::memcpy(out, &text, sizeof text);
  out += sizeof text - zeros;
  return first != 0 ? WriteEightDigits(out, last) : out;
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
  const auto whole = static_cast<std::int64_t>(value);
  if (static_cast<double>(whole) == value) return {whole, {}};
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
  const std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
  const std::size_t point = text.find('.');
  return {whole, point == std::string_view::npos ? std::string_view() : text.substr(point + 1)};
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

// Writes a number that is not whole, from kPlainFrom on, and has few decimals, as most numbers;
// null when it has more. The digits are those of std::to_chars, many times faster: a whole number
// of millionths that divided by a million gives the double also reads back to it, since the
// division is rounded as reading is. No other one does, as long as there are so few that
// neighbouring doubles lie far closer together than millionths; and so the zeros at its end are all
// that a shorter text lacks.
char* WriteFewDecimals(char* out, double size) {
  constexpr std::uint64_t kMillion = 1000000;
  constexpr double kBelow = 1e9;
  if (size >= kBelow) return nullptr;
  const auto millionths = static_cast<std::uint64_t>(size * kMillion + 0.5);
  if (static_cast<double>(millionths) / kMillion != size) return nullptr;
  out = WriteWhole(out, millionths / kMillion);
  *out++ = '.';
  const std::uint64_t digits = EightDigits(static_cast<std::uint32_t>(millionths % kMillion * 100));
  const std::uint64_t text = digits + kZeros;
  std::memcpy(out, &text, sizeof text);
  return out + sizeof text - static_cast<std::size_t>(std::countl_zero(digits)) / 8;
}

}  // namespace

char* WriteNumber(char* out, double value) {
  char* const end = out + kValueTextRoom;
  const double size = std::fabs(value);
  if (size < kPlainBelow) {
    const auto whole = static_cast<std::int64_t>(value);
    // Whole numbers are most numbers, and integer conversion is several times faster. A negative
    // zero keeps its sign only as a double.
    if (static_cast<double>(whole) == value && (whole != 0 || !std::signbit(value))) {
      *out = '-';
      return WriteWhole(out + (whole < 0 ? 1 : 0), static_cast<std::uint64_t>(size));
    }
    if (size >= kPlainFrom) {
      *out = '-';
      char* const plain = WriteFewDecimals(out + (value < 0 ? 1 : 0), size);
      if (plain != nullptr) return plain;
      return std::to_chars(out, end, value, std::chars_format::fixed).ptr;
    }
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
