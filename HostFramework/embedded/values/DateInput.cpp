#include "HostFramework/embedded/values/DateInput.h"

#include <chrono>

#include "HostFramework/Formats.h"
#include "HostFramework/embedded/values/Calendar.h"
#include "HostFramework/embedded/values/DateNames.h"
#include "HostFramework/embedded/values/FixedLayout.h"
#include "HostFramework/embedded/values/ValueShape.h"

namespace embedded {
namespace {

constexpr int kMonthsOfQuarter = 3;
constexpr int kDaysOfWeek = 7;
constexpr int kMostWeeks = 53;

// Consumes a Roman numeral from I to XII in any letter case and returns its value, or consumes
// nothing and returns 0.
int AcceptRomanMonth(TextCursor& cursor) {
  constexpr std::string_view kNumerals[] = {"i",   "ii",   "iii", "iv", "v",  "vi",
                                            "vii", "viii", "ix",  "x",  "xi", "xii"};
  constexpr std::size_t kLongest = 4;
  char letters[kLongest];
  std::size_t length = 0;
  TextCursor at = cursor;
  while (length < kLongest) {
    const char letter = static_cast<char>(at.Byte() | 0x20);
    if (letter != 'i' && letter != 'v' && letter != 'x') break;
    at.AcceptLetter(letter);
    letters[length++] = letter;
  }
  if (length == 0) return 0;
  int month = 0;
  for (const std::string_view numeral : kNumerals) {
    ++month;
    if (numeral == std::string_view(letters, length)) {
      cursor = at;
      return month;
    }
  }
  return 0;
}

// One or two digits as a number.
bool ReadShortNumber(TextCursor& cursor, int& number) {
  const DigitRun run = cursor.Digits(3);
  number = static_cast<int>(run.value);
  return run.count == 1 || run.count == 2;
}

// Consumes a month in digits: after it the text ends, or a separator and more digits follow. Digits
// that go on in another way can only be the beginning of a name, as months have in some languages.
bool AcceptMonthDigits(TextCursor& cursor, int& month) {
  TextCursor after = cursor;
  if (!ReadShortNumber(after, month)) return false;
  TextCursor next = after;
  if (!after.AtEnd() && !(ReadSeparator(next) && next.Digit() >= 0)) return false;
  cursor = after;
  return true;
}

// DD-MM-YYYY and YYYY-MM-DD: two words that overlap.
constexpr std::size_t kDateSize = 10;
constexpr std::size_t kSecondWord = kDateSize - FixedLayout::kSize;
constexpr FixedLayout kTwoTwo("00-00-00");
constexpr FixedLayout kTwoFour("-00-0000");
constexpr FixedLayout kFourTwo("0000-00-");

// DD-MMM-YYYY, the month in letters, and its second word.
constexpr std::size_t kNamedDateSize = 11;
constexpr std::size_t kNamedSecondWord = kNamedDateSize - FixedLayout::kSize;
constexpr std::size_t kMonthPlace = 3;
constexpr std::size_t kMonthLetters = 3;
constexpr FixedLayout kDayName("00-aaa-0");
constexpr FixedLayout kNameYear("aaa-0000");

struct FixedDate {
  int first;
  int second;
  int year;
};

bool ReadFixedDate(const char* text, FixedDate& date) {
  std::uint64_t start, end;
  if (!kTwoTwo.Matches(text, &start) || !kTwoFour.Matches(text + kSecondWord, &end)) return false;
  date = {FixedLayout::TwoDigits(start, 0), FixedLayout::TwoDigits(end, 1),
          FixedLayout::FourDigits(end, 4)};
  return true;
}

// Year, month and day.
bool ReadFixedYearFirst(const char* text, FixedDate& date) {
  std::uint64_t start, end;
  if (!kFourTwo.Matches(text, &start) || !kTwoTwo.Matches(text + kSecondWord, &end)) return false;
  date = {FixedLayout::TwoDigits(start, 5), FixedLayout::TwoDigits(end, 6),
          FixedLayout::FourDigits(start, 0)};
  return true;
}

// Whether a date of `size` bytes at the beginning of a text is not followed by another digit.
bool EndsBehind(std::string_view text, std::size_t size) {
  if (text.size() == size) return true;
  const auto next = static_cast<unsigned char>(text[size]);
  return next < '0' || (next > '9' && next < 0x80);
}

// Consumes DD-MM-YYYY or DD-MMM-YYYY, separated by one character each, when no further digit
// follows; false, and nothing consumed, when the text is another one. Such a text cannot be read in
// another way: *midnight is nothing when there is no such date.
bool AcceptFixedDayMonthYear(TextCursor& cursor, std::optional<std::int64_t>* midnight) {
  const std::string_view text = cursor.Rest();
  FixedDate date;
  std::size_t size = kDateSize;
  if (text.size() < kDateSize) return false;
  if (!ReadFixedDate(text.data(), date)) {
    size = kNamedDateSize;
    std::uint64_t start, end;
    if (text.size() < kNamedDateSize || !kDayName.Matches(text.data(), &start) ||
        !kNameYear.Matches(text.data() + kNamedSecondWord, &end)) {
      return false;
    }
    TextCursor month(text.substr(kMonthPlace));
    date = {FixedLayout::TwoDigits(start, 0), AcceptMonthName(month),
            FixedLayout::FourDigits(end, 4)};
    const auto left = month.Rest().size();
    if (left + kMonthPlace + kMonthLetters != text.size()) return false;
  }
  if (!EndsBehind(text, size)) return false;
  *midnight = Midnight(date.year, date.second, date.first);
  cursor.Skip(size);
  return true;
}

bool Store(std::optional<std::int64_t> seconds, double* value) {
  if (!seconds) return false;
  *value = static_cast<double>(*seconds);
  return true;
}

bool Store(const TextCursor& cursor, std::optional<std::int64_t> seconds, double* value) {
  return cursor.AtEnd() && Store(seconds, value);
}

// Dates part by part. Functions of their own, so that a date of a fixed layout does not pay for
// the room that the parts take.
[[gnu::noinline]] bool ReadMonthDayYear(std::string_view text, double* value) {
  if (!ValueShape::MayBe(text, kFormatADate)) return false;
  TextCursor cursor(text);
  int day, month, year;
  bool letters;
  if (!ReadMonth(cursor, month, letters) || !(ReadSeparator(cursor) || letters)) return false;
  if (!ReadDay(cursor, day) || !ReadSeparator(cursor) || !ReadYear(cursor, year)) return false;
  return Store(cursor, Midnight(year, month, day), value);
}

[[gnu::noinline]] bool ReadYearMonthDay(std::string_view text, double* value) {
  if (!ValueShape::MayBe(text, kFormatSDate)) return false;
  TextCursor cursor(text);
  int day, month, year;
  bool letters;
  if (!ReadYear(cursor, year)) return false;
  const bool before = ReadSeparator(cursor);
  if (!ReadMonth(cursor, month, letters) || !(before || letters)) return false;
  if (!(ReadSeparator(cursor) || letters) || !ReadDay(cursor, day)) return false;
  return Store(cursor, Midnight(year, month, day), value);
}

}  // namespace

bool ReadDay(TextCursor& cursor, int& day) { return ReadShortNumber(cursor, day); }

bool ReadMonth(TextCursor& cursor, int& month, bool& letters) {
  letters = !AcceptMonthDigits(cursor, month);
  if (!letters) return month >= 1 && month <= 12;
  month = AcceptMonthName(cursor);
  if (month == 0) month = AcceptRomanMonth(cursor);
  return month != 0;
}

bool ReadYear(TextCursor& cursor, int& year) {
  const DigitRun run = cursor.Digits(5);
  year = static_cast<int>(run.value);
  if (run.count == 2) year = YearOfTwoDigits(year);
  return run.count == 2 || run.count == 4;
}

bool ReadSeparator(TextCursor& cursor) {
  bool found = cursor.Blanks();
  if (cursor.AcceptOneOf<'-', '/', '.', ','>()) {
    cursor.Blanks();
    found = true;
  }
  return found;
}

std::optional<std::int64_t> ReadDayMonthYear(TextCursor& cursor) {
  std::optional<std::int64_t> midnight;
  if (AcceptFixedDayMonthYear(cursor, &midnight)) return midnight;
  int day, month, year;
  bool letters;
  if (!ReadDay(cursor, day)) return std::nullopt;
  const bool before = ReadSeparator(cursor);
  if (!ReadMonth(cursor, month, letters) || !(before || letters)) return std::nullopt;
  if (!(ReadSeparator(cursor) || letters) || !ReadYear(cursor, year)) return std::nullopt;
  return Midnight(year, month, day);
}

std::int64_t FixedYearMonthDay(std::string_view text) {
  FixedDate date;
  if (text.size() < kDateSize || !ReadFixedYearFirst(text.data(), date)) return 0;
  return MidnightOrZero(date.year, date.first, date.second);
}

bool ReadDate(std::string_view text, double* value) {
  TextCursor cursor(text);
  const auto seconds = ReadDayMonthYear(cursor);
  return Store(cursor, seconds, value);
}

bool ReadADate(std::string_view text, double* value) {
  FixedDate date;
  if (text.size() != kDateSize || !ReadFixedDate(text.data(), date)) {
    return ReadMonthDayYear(text, value);
  }
  return Store(Midnight(date.year, date.first, date.second), value);
}

bool ReadSDate(std::string_view text, double* value) {
  FixedDate date;
  if (text.size() != kDateSize || !ReadFixedYearFirst(text.data(), date)) {
    return ReadYearMonthDay(text, value);
  }
  return Store(Midnight(date.year, date.first, date.second), value);
}

bool ReadJDate(std::string_view text, double* value) {
  constexpr int kDayOfYearDigits = 1000;
  TextCursor cursor(text);
  const DigitRun run = cursor.Digits(8);
  if (run.count != 5 && run.count != 7) return false;
  const int digits = static_cast<int>(run.value);
  const int day = digits % kDayOfYearDigits;
  int year = digits / kDayOfYearDigits;
  if (run.count == 5) year = YearOfTwoDigits(year);
  if (day < 1 || day > (std::chrono::year(year).is_leap() ? 366 : 365)) return false;
  return Store(cursor, MidnightAfterNewYear(year, day - 1), value);
}

bool ReadQuarter(std::string_view text, double* value) {
  TextCursor cursor(text);
  const int quarter = cursor.Digit();
  if (quarter < 1 || quarter > 4) return false;
  cursor.Blanks();
  if (!cursor.AcceptLetter('q')) return false;
  cursor.Blanks();
  int year;
  if (!ReadYear(cursor, year)) return false;
  return Store(cursor, Midnight(year, (quarter - 1) * kMonthsOfQuarter + 1, 1), value);
}

bool ReadMonthOfYear(std::string_view text, double* value) {
  TextCursor cursor(text);
  int month, year;
  bool letters;
  if (!ReadMonth(cursor, month, letters) || !(ReadSeparator(cursor) || letters)) return false;
  if (!ReadYear(cursor, year)) return false;
  return Store(cursor, Midnight(year, month, 1), value);
}

bool ReadWeek(std::string_view text, double* value) {
  TextCursor cursor(text);
  int week, year;
  if (!ReadShortNumber(cursor, week) || week < 1 || week > kMostWeeks) return false;
  cursor.Blanks();
  if (!cursor.AcceptLetter('w') || !cursor.AcceptLetter('k')) return false;
  cursor.Blanks();
  if (!ReadYear(cursor, year)) return false;
  return Store(cursor, MidnightAfterNewYear(year, (week - 1) * kDaysOfWeek), value);
}

bool ReadWeekday(std::string_view text, double* value) {
  TextCursor cursor(text);
  int day = AcceptDayName(cursor);
  if (day == 0) day = cursor.Digit();
  if (day < 1 || day > kDaysOfWeek) return false;
  return Store(cursor, day, value);
}

bool ReadMonthNumber(std::string_view text, double* value) {
  TextCursor cursor(text);
  int month;
  bool letters;
  if (!ReadMonth(cursor, month, letters)) return false;
  return Store(cursor, month, value);
}

}  // namespace embedded
