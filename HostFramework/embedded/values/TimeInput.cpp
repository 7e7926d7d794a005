#include "HostFramework/embedded/values/TimeInput.h"

#include <charconv>
#include <cmath>

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

// `count` units of `unit` seconds, and `rest` seconds more. False when that is too large.
bool Store(bool negative, const DigitRun& count, std::int64_t unit, std::int64_t rest,
           const SecondsFraction& fraction, double* value) {
  double seconds;
  if (count.IsExact()) {
    seconds = SecondsValue(static_cast<std::int64_t>(count.value) * unit + rest, fraction);
  } else {
    seconds = count.large * static_cast<double>(unit) + static_cast<double>(rest);
    if (!std::isfinite(seconds)) return false;
  }
  *value = negative ? -seconds : seconds;
  return true;
}

}  // namespace

bool ReadFraction(TextCursor& cursor, SecondsFraction& fraction) {
  fraction.start = cursor;
  fraction.digits = cursor.Digits();
  return fraction.digits.count > 0;
}

double SecondsValue(std::int64_t seconds, const SecondsFraction& fraction) {
  const auto whole = static_cast<std::uint64_t>(seconds);
  const int places = fraction.digits.count;
  if (places == 0) return static_cast<double>(whole);

  double value = 0;
  // As many digits as an exactly scaled integer has.
  constexpr int kMostPlaces = 15;
  if (places <= kMostPlaces && fraction.digits.IsExact()) {
    const auto scale = static_cast<std::uint64_t>(kPowersOfTen[places]);
    if (whole <= kExactIntegers / scale &&
        ExactDecimal(whole * scale + fraction.digits.value, -places, &value)) {
      return value;
    }
  }
  Decimal decimal;
  char text[24];
  for (const char *at = text, *end = std::to_chars(text, text + sizeof text, whole).ptr; at != end;
       ++at) {
    decimal.Append(*at - '0');
  }
  TextCursor digits = fraction.start;
  for (int i = 0; i < places; ++i) decimal.Append(digits.Digit());
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
  clock.hours = cursor.Digits();
  if (clock.hours.count == 0 || !cursor.Accept(':') || !ReadSixty(cursor, clock.minutes)) {
    return false;
  }
  if (!cursor.Accept(':')) return true;
  if (!ReadSixty(cursor, clock.seconds)) return false;
  const bool marked =
      cursor.AcceptOneOf<'.', ','>() || (mark == FractionMark::kPointOrSeparator &&
                                         (cursor.AcceptOneOf<'-', '/'>() || cursor.Blank()));
  return !marked || ReadFraction(cursor, clock.fraction);
}

bool ReadTimeOfDay(TextCursor& cursor, FractionMark mark, ClockTime& clock) {
  return ReadClock(cursor, mark, clock) && clock.hours.IsExact() && clock.hours.value < kHoursOfDay;
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
  const DigitRun days = cursor.Digits();
  if (days.count == 0 || !(cursor.Accept(':') || cursor.Blanks())) return false;
  ClockTime clock;
  if (!ReadTimeOfDay(cursor, FractionMark::kPoint, clock) || !cursor.AtEnd()) return false;
  return Store(negative, days, kDay, clock.WholeSeconds(), clock.fraction, value);
}

bool ReadMTime(std::string_view text, double* value) {
  TextCursor cursor(text);
  const bool negative = ReadSign(cursor);
  const DigitRun minutes = cursor.Digits();
  if (minutes.count == 0 || !(cursor.AcceptOneOf<':', '.', ','>() || cursor.Blank())) return false;
  int seconds;
  if (!ReadSixty(cursor, seconds)) return false;
  SecondsFraction fraction;
  if (cursor.AcceptOneOf<':', '.', ','>() && !ReadFraction(cursor, fraction)) return false;
  return cursor.AtEnd() && Store(negative, minutes, kMinute, seconds, fraction, value);
}

}  // namespace embedded
