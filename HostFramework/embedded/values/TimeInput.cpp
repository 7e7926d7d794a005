#include "HostFramework/embedded/values/TimeInput.h"

#include <array>
#include <charconv>
#include <cstddef>

#include "HostFramework/embedded/values/Calendar.h"
#include "HostFramework/embedded/values/Decimal.h"
#include "HostFramework/embedded/values/FixedLayout.h"

namespace embedded {
namespace {

constexpr std::uint64_t kHoursOfDay = 24;
// Minutes of an hour and seconds of a minute.
constexpr int kSixty = 60;

// Consumes a sign. True when it is a minus.
bool ReadSign(TextCursor& cursor) {
  if (cursor.Accept('-')) return true;
  cursor.Accept('+');
  return false;
}

void AppendDigits(const DigitRun& run, Decimal& decimal) {
  for (TextCursor digits(run); !digits.AtEnd();) decimal.Append(digits.Digit());
}

// The seconds of a count that is too large for integers, by long multiplication, so that they are
// rounded once like all others. False when they are too many for a double.
bool LongSeconds(const DigitRun& count, std::int64_t unit, std::int64_t rest,
                 const DigitRun& fraction, double* value) {
  constexpr int kMostDigits = 309;  // as the largest double has
  constexpr int kUnitDigits = 5;
  std::array<char, kMostDigits + kUnitDigits> product;
  std::size_t used = 0;
  for (TextCursor digits(count); !digits.AtEnd();) {
    const int digit = digits.Digit();
    if (used == 0 && digit == 0) continue;
    if (used == kMostDigits) return false;
    product[used++] = static_cast<char>(digit);
  }
  std::int64_t carry = rest;
  for (std::size_t i = used; i-- > 0;) {
    carry += product[i] * unit;
    product[i] = static_cast<char>(carry % 10);
    carry /= 10;
  }
  Decimal decimal;
  for (std::int64_t place = 100'000; place > 0; place /= 10) {
    decimal.Append(static_cast<int>(carry / place % 10));
  }
  for (std::size_t i = 0; i < used; ++i) decimal.Append(product[i]);
  AppendDigits(fraction, decimal);
  return decimal.Round(-fraction.count, value);
}

// `count` units of `unit` seconds, and `rest` seconds more, less than one unit. False when that is
// too large.
bool Store(bool negative, const DigitRun& count, std::int64_t unit, std::int64_t rest,
           const DigitRun& fraction, double* value) {
  double seconds;
  if (count.IsExact()) {
    seconds = SecondsValue(static_cast<std::int64_t>(count.value) * unit + rest, fraction);
  } else if (!LongSeconds(count, unit, rest, fraction, &seconds)) {
    return false;
  }
  *value = negative ? -seconds : seconds;
  return true;
}

}  // namespace

bool ReadDigits(TextCursor& cursor, DigitRun& digits) {
  digits = cursor.Digits();
  return digits.count > 0;
}

double SecondsValue(std::int64_t seconds, const DigitRun& fraction) {
  const auto whole = static_cast<std::uint64_t>(seconds);
  const std::int64_t places = fraction.count;
  if (places == 0) return static_cast<double>(whole);

  double value = 0;
  // As many digits as an exactly scaled integer has.
  constexpr int kMostPlaces = 15;
  if (places <= kMostPlaces && fraction.IsExact()) {
    const auto scale = static_cast<std::uint64_t>(kPowersOfTen[places]);
    if (whole <= kExactIntegers / scale &&
        ExactDecimal(whole * scale + fraction.value, -places, &value)) {
      return value;
    }
  }
  Decimal decimal;
  char text[24];
  for (const char *at = text, *end = std::to_chars(text, text + sizeof text, whole).ptr; at != end;
       ++at) {
    decimal.Append(*at - '0');
  }
  AppendDigits(fraction, decimal);
  decimal.Round(-places, &value);
  return value;
}

bool ReadSixty(TextCursor& cursor, int& value) {
  const DigitRun run = cursor.Digits(3);
  value = static_cast<int>(run.value);
  return (run.count == 1 || run.count == 2) && value < kSixty;
}

std::int64_t ClockTime::WholeSeconds() const {
  return static_cast<std::int64_t>(hours.value) * kHour + minutes * kMinute + seconds;
}

bool AcceptFixedClock(TextCursor& cursor, ClockTime& clock) {
  constexpr FixedLayout kLayout("00:00:00");
  const std::string_view text = cursor.Rest();
  std::uint64_t parts;
  if (text.size() != FixedLayout::kSize || !kLayout.Matches(text.data(), &parts)) return false;
  const int minutes = FixedLayout::TwoDigits(parts, 3);
  const int seconds = FixedLayout::TwoDigits(parts, 6);
  if (minutes >= kSixty || seconds >= kSixty) return false;
  clock.hours.value = static_cast<std::uint64_t>(FixedLayout::TwoDigits(parts, 0));
  clock.hours.count = 2;
  clock.minutes = minutes;
  clock.seconds = seconds;
  cursor.Skip(FixedLayout::kSize);
  return true;
}

bool ReadClock(TextCursor& cursor, FractionMark mark, ClockTime& clock) {
  if (AcceptFixedClock(cursor, clock)) return true;
  if (!ReadDigits(cursor, clock.hours) || !cursor.Accept(':')) return false;
  if (!ReadSixty(cursor, clock.minutes)) return false;
  if (!cursor.Accept(':')) return true;
  if (!ReadSixty(cursor, clock.seconds)) return false;
  const bool marked =
      cursor.AcceptOneOf<'.', ','>() || (mark == FractionMark::kPointOrSeparator &&
                                         (cursor.AcceptOneOf<'-', '/'>() || cursor.Blank()));
  return !marked || ReadDigits(cursor, clock.fraction);
}

bool ReadTimeOfDay(TextCursor& cursor, FractionMark mark, ClockTime& clock) {
  if (!ReadClock(cursor, mark, clock)) return false;
  return clock.hours.IsExact() && clock.hours.value < kHoursOfDay;
}

bool ReadTime(std::string_view text, double* value) {
  TextCursor cursor(text);
  const bool negative = ReadSign(cursor);
  ClockTime clock;
  if (!ReadClock(cursor, FractionMark::kPointOrSeparator, clock) || !cursor.AtEnd()) return false;
  return Store(negative, clock.hours, kHour, clock.minutes * kMinute + clock.seconds,
               clock.fraction, value);
}

bool ReadDTime(std::string_view text, double* value) {
  TextCursor cursor(text);
  const bool negative = ReadSign(cursor);
  DigitRun days;
  if (!ReadDigits(cursor, days) || !(cursor.Accept(':') || cursor.Blanks())) return false;
  ClockTime clock;
  if (!ReadTimeOfDay(cursor, FractionMark::kPoint, clock) || !cursor.AtEnd()) return false;
  return Store(negative, days, kDay, clock.WholeSeconds(), clock.fraction, value);
}

bool ReadMTime(std::string_view text, double* value) {
  TextCursor cursor(text);
  const bool negative = ReadSign(cursor);
  DigitRun minutes;
  if (!ReadDigits(cursor, minutes)) return false;
  if (!(cursor.AcceptOneOf<':', '.', ','>() || cursor.Blank())) return false;
  int seconds;
  if (!ReadSixty(cursor, seconds)) return false;
  DigitRun fraction;
  if (cursor.AcceptOneOf<':', '.', ','>() && !ReadDigits(cursor, fraction)) return false;
  return cursor.AtEnd() && Store(negative, minutes, kMinute, seconds, fraction, value);
}

}  // namespace embedded
