#include "HostFramework/embedded/values/DateTimeInput.h"

#include <cstdint>
#include <optional>

#include "HostFramework/Formats.h"
#include "HostFramework/embedded/values/Calendar.h"
#include "HostFramework/embedded/values/DateInput.h"
#include "HostFramework/embedded/values/TimeInput.h"
#include "HostFramework/embedded/values/ValueShape.h"

namespace embedded {
namespace {

constexpr int kShortYear = 2;
constexpr int kLongYear = 4;

std::int64_t DigitsAhead(TextCursor cursor) { return cursor.Digits().count; }

// Consumes what separates a date from the time after it.
bool AcceptGap(TextCursor& cursor) { return cursor.AcceptLetter('t') || cursor.Blanks(); }

// Consumes what separates the parts of a time under YMDHMS.
bool AcceptTimeMark(TextCursor& cursor) {
  return cursor.AcceptOneOf<':', '.', ','>() || cursor.Blank();
}

bool ReadTwoDigits(TextCursor& cursor, int& value) {
  const DigitRun run = cursor.Digits(2);
  value = static_cast<int>(run.value);
  return run.count == 2;
}

// Year, month, day and hour of YMDHMS. Each part is separated from the one before it or glued to
// it; a month or a day in digits that has a glued neighbour needs two of them. The hour is glued to
// a date of two-digit year only when nothing separates the date's parts: what looks so otherwise is
// a day first and a year of four digits last.
class YmdhReader {
 public:
  explicit YmdhReader(TextCursor& cursor) : cursor_(cursor) {}

  bool Read(int yearDigits) {
    const DigitRun run = cursor_.Digits(yearDigits);
    if (run.count != yearDigits) return false;
    year_ = static_cast<int>(run.value);
    shortYear_ = yearDigits == kShortYear;
    if (shortYear_) year_ = YearOfTwoDigits(year_);
    return ReadMonthPart() && ReadDayAndHour() && !(glued_ && oneDigit_);
  }

  // Seconds at the full hour; nothing when there is no such date or hour.
  std::optional<std::int64_t> Seconds() const {
    const auto midnight = Midnight(year_, month_, day_);
    if (!midnight || hour_ >= 24) return std::nullopt;
    return *midnight + hour_ * kHour;
  }

 private:
  // Reads the month and what separates it from the day.
  bool ReadMonthPart() {
    const bool separated = ReadSeparator(cursor_);
    separated_ = separated;
    const std::int64_t digits = DigitsAhead(cursor_);
    if (digits > 2 || (digits == 2 && !separated)) {
      glued_ = true;
      return ReadTwoDigits(cursor_, month_) && (digits > 2 || ReadDaySeparator());
    }
    bool letters;
    if (!ReadMonth(cursor_, month_, letters)) return false;
    oneDigit_ = !letters && digits == 1;
    return (separated || letters) && (ReadDaySeparator() || letters);
  }

  bool ReadDaySeparator() {
    const bool found = ReadSeparator(cursor_);
    separated_ = separated_ || found;
    return found;
  }

  bool ReadDayAndHour() {
    const std::int64_t digits = DigitsAhead(cursor_);
    if (digits == 4) {
      if (shortYear_ && separated_) return false;
      glued_ = true;
      return ReadTwoDigits(cursor_, day_) && ReadTwoDigits(cursor_, hour_);
    }
    oneDigit_ = oneDigit_ || digits == 1;
    if (!ReadDay(cursor_, day_) || !AcceptGap(cursor_)) return false;
    const DigitRun run = cursor_.Digits(3);
    hour_ = static_cast<int>(run.value);
    return run.count == 1 || run.count == 2;
  }

  TextCursor& cursor_;
  int year_ = 0;
  int month_ = 0;
  int day_ = 0;
  int hour_ = 0;
  bool shortYear_ = false;
  bool separated_ = false;  // a separator stands before the month or the day
  bool glued_ = false;
  bool oneDigit_ = false;
};

bool ReadYmdhmsWithYear(std::string_view text, int yearDigits, double* value) {
  TextCursor cursor(text);
  YmdhReader date(cursor);
  if (!date.Read(yearDigits)) return false;
  const auto fullHour = date.Seconds();
  if (!fullHour) return false;

  int minutes;
  if (!AcceptTimeMark(cursor) || !ReadSixty(cursor, minutes)) return false;
  int seconds = 0;
  DigitRun fraction;
  if (AcceptTimeMark(cursor)) {
    if (!ReadSixty(cursor, seconds)) return false;
    if (cursor.AcceptOneOf<':', '.', ','>() && !ReadDigits(cursor, fraction)) return false;
  }
  if (!cursor.AtEnd()) return false;
  *value = SecondsValue(*fullHour + minutes * kMinute + seconds, fraction);
  return true;
}

// YYYY-MM-DD hh:mm:ss, or a T for the blank: what most programs write. False for any other text.
bool ReadFixedYmdhms(std::string_view text, double* value) {
  constexpr std::size_t kDateSize = 10;
  const std::int64_t midnight = FixedYearMonthDay(text);
  if (midnight == 0) return false;
  TextCursor cursor(text.substr(kDateSize));
  ClockTime clock;
  if (!cursor.Accept(' ') && !cursor.AcceptLetter('t')) return false;
  if (!AcceptFixedClock(cursor, clock) || clock.hours.value >= 24) return false;
  *value = static_cast<double>(midnight + clock.WholeSeconds());
  return true;
}

// Part by part.
[[gnu::noinline]] bool ReadAnyYmdhms(std::string_view text, double* value) {
  if (!ValueShape::MayBe(text, kFormatYmdhms)) return false;
  // How many of the first digits are the year's can depend on what follows them: 2012-31 is a year
  // and a month of two digits each, 201201-31 a year of four. Where both would do, six digits
  // before the hour are yymmdd, and otherwise the year has four.
  constexpr int kShortDate = 6;
  const bool shortFirst = DigitsAhead(TextCursor(text)) == kShortDate;
  return ReadYmdhmsWithYear(text, shortFirst ? kShortYear : kLongYear, value) ||
         ReadYmdhmsWithYear(text, shortFirst ? kLongYear : kShortYear, value);
}

}  // namespace

bool ReadDateTime(std::string_view text, double* value) {
  TextCursor cursor(text);
  const auto midnight = ReadDayMonthYear(cursor);
  if (!midnight || !AcceptGap(cursor)) return false;
  ClockTime clock;
  if (!ReadTimeOfDay(cursor, FractionMark::kPointOrSeparator, clock) || !cursor.AtEnd()) {
    return false;
  }
  *value = SecondsValue(*midnight + clock.WholeSeconds(), clock.fraction);
  return true;
}

bool ReadYmdhms(std::string_view text, double* value) {
  return ReadFixedYmdhms(text, value) || ReadAnyYmdhms(text, value);
}

}  // namespace embedded
