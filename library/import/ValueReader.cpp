#include "library/import/ValueReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "HostFramework/embedded/values/DateNames.h"
#include "HostFramework/embedded/values/NumberInput.h"
#include "HostFramework/embedded/values/TextCursor.h"
#include "reading/ValueConverter.h"

namespace library {
namespace {

// A longer text is no value of a format of at most 40 columns.
constexpr std::size_t kLongestValue = textwizard::kMaxNumberWidth;
// As many significant digits are always kept.
constexpr int kSafeDigits = 15;

enum Class : std::uint16_t {
  kDigit = 1,
  kPointSign = 2,
  kCommaSign = 4,
  kPlusMinus = 8,
  kSlash = 16,
  kColon = 32,
  kBlank = 64,
  kPercentSign = 128,
  kDollarSign = 256,
  kExponent = 512,  // E
  kLetter = 1024,
  kOther = 2048,
};

constexpr auto kClasses = [] {
  std::array<std::uint16_t, 256> classes{};
  classes.fill(kOther);
  const auto set = [&](char byte, Class kind) { classes[static_cast<unsigned char>(byte)] = kind; };
  for (char digit = '0'; digit <= '9'; ++digit) set(digit, kDigit);
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    set(letter, kLetter);
    set(static_cast<char>(letter | 0x20), kLetter);
  }
  // Letters of the names of months in other languages.
  for (unsigned byte = 0x80; byte < 0x100; ++byte) classes[byte] = kLetter;
  set('E', kExponent);
  set('e', kExponent);
  set('.', kPointSign);
  set(',', kCommaSign);
  set('+', kPlusMinus);
  set('-', kPlusMinus);
  set('/', kSlash);
  set(':', kColon);
  set(' ', kBlank);
  set('%', kPercentSign);
  set('$', kDollarSign);
  return classes;
}();

unsigned ClassOf(char byte) { return kClasses[static_cast<unsigned char>(byte)]; }
bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

unsigned ClassesIn(std::string_view text) {
  unsigned classes = 0;
  for (const char byte : text) classes |= ClassOf(byte);
  return classes;
}

bool Converts(std::string_view text, Reading reading) {
  double value;
  return textwizard::ConvertNumber(text, FormatOf(reading), &value);
}

// What stands where in a text that begins with a digit, behind its sign.
struct Parts {
  int count = 0;  // runs of digits
  std::array<int, 8> lengths{};
  // What stands between the first runs, when it is one character and the same one.
  char separator = 0;
  bool sameSeparator = true;
};

Parts PartsOf(std::string_view text) {
  Parts parts;
  std::size_t at = 0;
  while (at < text.size() && parts.count < static_cast<int>(parts.lengths.size())) {
    const std::size_t begin = at;
    while (at < text.size() && IsDigit(text[at])) ++at;
    parts.lengths[static_cast<std::size_t>(parts.count++)] = static_cast<int>(at - begin);
    const std::size_t between = at;
    while (at < text.size() && !IsDigit(text[at])) ++at;
    if (at == text.size() && at == between) break;
    const bool one = at - between == 1 && at < text.size();
    if (parts.count == 1) parts.separator = one ? text[between] : '\0';
    if (!one || text[between] != parts.separator) parts.sameSeparator = false;
  }
  return parts;
}

NumberShape ShapeOf(std::string_view text, char decimal) {
  NumberShape shape;
  const char group = decimal == '.' ? ',' : '.';
  bool inFraction = false;
  for (const char byte : text) {
    if (byte == decimal) {
      inFraction = true;
    } else if (!IsDigit(byte) && (byte | 0x20) >= 'd' && (byte | 0x20) <= 'e') {
      shape.exponent = true;
      break;
    } else if (byte == '%' || byte == ' ') {
      break;
    } else if (byte == '$') {
      continue;
    } else if (inFraction) {
      ++shape.fraction;
    } else {
      ++shape.whole;
      shape.grouped = shape.grouped || byte == group;
    }
  }
  return shape;
}

bool ReadsNumber(std::string_view text, std::uint32_t format, char decimal, double* value) {
  return embedded::ReadNumber(text, static_cast<int>(format), decimal, value);
}

bool HasLeadingZero(std::string_view text, unsigned classes) {
  if ((classes & ~unsigned{kDigit | kPlusMinus}) != 0) return false;
  if (!IsDigit(text.front())) text.remove_prefix(1);
  return text.size() > 1 && text.front() == '0';
}

// Numbers, percentages and dollar amounts.
ValueReadings ReadNumbers(std::string_view text, unsigned classes) {
  ValueReadings found;
  double value = 0;
  if ((classes & kDollarSign) != 0) {
    if (!ReadsNumber(text, textwizard::kFormatDollar, '.', &value)) return found;
    found.set.Add(Reading::kDollar);
    found.point = ShapeOf(text, '.');
    found.losesDigits = LosesDigits(text, value);
    return found;
  }
  const bool percent = (classes & kPercentSign) != 0;
  const std::uint32_t format = percent ? textwizard::kFormatPct : textwizard::kFormatF;
  if (ReadsNumber(text, format, '.', &value)) {
    found.set.Add(Reading::kPointPercent);
    if (!percent) {
      found.set.Add(Reading::kPoint);
      found.set.Add(Reading::kDollar);
    }
    found.point = ShapeOf(text, '.');
  }
  // Without either sign a number is the same to both.
  const bool same = (classes & (kPointSign | kCommaSign)) == 0;
  if (same ? !found.set.empty() : ReadsNumber(text, format, ',', &value)) {
    found.set.Add(Reading::kCommaPercent);
    if (!percent) found.set.Add(Reading::kComma);
    found.comma = same ? found.point : ShapeOf(text, ',');
  }
  if (found.set.empty()) return found;
  found.leadingZero = HasLeadingZero(text, classes);
  found.losesDigits = LosesDigits(text, value);
  return found;
}

// A fraction of a second is what the last point, comma or third colon ... leaves behind it.
int SecondFraction(std::string_view text) {
  const std::size_t point = text.find_last_of(".,");
  if (point == std::string_view::npos || text.rfind(':') == std::string_view::npos) return 0;
  if (point < text.rfind(':')) return 0;
  return static_cast<int>(text.size() - point - 1);
}

// Whether a name of a month or a day begins the text, and the month's length; 0 for none.
std::size_t MonthNameAt(std::string_view text) {
  embedded::TextCursor cursor(text);
  return embedded::AcceptMonthName(cursor) != 0 ? text.size() - cursor.Rest().size() : 0;
}
std::size_t DayNameAt(std::string_view text) {
  embedded::TextCursor cursor(text);
  return embedded::AcceptDayName(cursor) != 0 ? text.size() - cursor.Rest().size() : 0;
}

std::string_view TrailingDigits(std::string_view text) {
  std::size_t at = text.size();
  while (at > 0 && IsDigit(text[at - 1])) --at;
  return text.substr(at);
}

// Times, durations, and dates with a time.
ValueReadings ReadTimes(std::string_view text, unsigned classes) {
  ValueReadings found;
  const Parts parts = PartsOf(IsDigit(text.front()) ? text : text.substr(1));
  const std::size_t colon = text.find(':');
  const bool separated =
      (classes & kSlash) != 0 || text.find('-', 1) < colon || text.find_first_of(".,") < colon;
  const bool letters = (classes & (kLetter | kExponent)) != 0;
  const bool compact = parts.lengths[0] >= 6;
  const auto tries = [&](Reading reading) {
    if (!Converts(text, reading)) return false;
    found.set.Add(reading);
    return true;
  };
  found.secondFraction = SecondFraction(text);
  found.hasSeconds = text.find(':', colon + 1) != std::string_view::npos;
  if (!separated && !letters && !compact) {
    if ((classes & kBlank) != 0) {
      tries(Reading::kDaysTime);
    } else {
      tries(Reading::kTime);
      tries(Reading::kMinutesSeconds);
    }
    return found;
  }
  if (parts.lengths[0] == 4 || compact) tries(Reading::kYearMonthDayTime);
  if (parts.lengths[0] <= 2 && tries(Reading::kDayMonthYearTime)) {
    const std::string_view date = text.substr(0, text.find_first_of(" T"));
    found.eitherOrder = Converts(date, Reading::kMonthDayYear);
    found.monthInLetters = MonthNameAt(date.substr(std::min(
                               date.size(), date.find_first_not_of("0123456789-/., ")))) != 0;
    if (!found.monthInLetters) found.separator = parts.separator;
  }
  return found;
}

// Dates of digits: one separator throughout, and no list or version number.
ValueReadings ReadDigitDates(std::string_view text, unsigned classes) {
  ValueReadings found;
  const Parts parts = PartsOf(text);
  if ((classes & (kCommaSign | kBlank)) != 0 || !parts.sameSeparator) return found;
  const auto tries = [&](Reading reading) {
    if (Converts(text, reading)) found.set.Add(reading);
  };
  if (parts.count == 2) {
    if (parts.lengths[1] == 4 && parts.lengths[0] <= 2) tries(Reading::kMonthYear);
    return found;
  }
  if (parts.count != 3) return found;
  const bool shortYear = parts.lengths[0] <= 2 && parts.lengths[2] <= 2;
  // 1.2.34 and 1-2-34 are rather the numbers of versions and parts.
  const bool padded = parts.lengths[0] == 2 && parts.lengths[1] == 2 && parts.lengths[2] == 2;
  if (shortYear && !padded && parts.separator != '/') return found;
  if (parts.lengths[0] == 4 || shortYear) tries(Reading::kYearMonthDay);
  if (parts.lengths[0] <= 2) {
    tries(Reading::kMonthDayYear);
    tries(Reading::kDayMonthYear);
  }
  found.shortYear = shortYear;
  found.separator = parts.separator;
  return found;
}

// 31 Jan 2020, 31JAN20, 2020-Jan-31, 1 Q 2020, 12 WK 2020: digits first, letters in them.
ValueReadings ReadLetterDates(std::string_view text) {
  ValueReadings found;
  std::size_t at = 0;
  while (at < text.size() && IsDigit(text[at])) ++at;
  const std::size_t digits = at;
  while (at < text.size() && (ClassOf(text[at]) & (kLetter | kExponent)) == 0) ++at;
  const std::string_view letters = text.substr(at);
  const auto tries = [&](Reading reading) {
    if (Converts(text, reading)) found.set.Add(reading);
  };
  const char first = letters.empty() ? '\0' : static_cast<char>(letters.front() | 0x20);
  found.shortYear = TrailingDigits(text).size() <= 2;
  if (first == 'q' && digits == 1) {
    tries(Reading::kQuarter);
  } else if (first == 'w' && digits <= 2) {
    tries(Reading::kWeek);
  } else if (digits <= 4 && MonthNameAt(letters) != 0) {
    tries(digits == 4 ? Reading::kYearMonthDay : Reading::kDayMonthYear);
    found.monthInLetters = true;
    found.shortYear = digits <= 2 && found.shortYear;
  }
  return found;
}

// Names of days and months; a month and a year; a month, a day and a year.
ValueReadings ReadNames(std::string_view text) {
  ValueReadings found;
  if (DayNameAt(text) == text.size() && Converts(text, Reading::kDayName)) {
    found.set.Add(Reading::kDayName);
  }
  const std::size_t month = MonthNameAt(text);
  if (month == 0) return found;
  if (month == text.size()) {
    if (Converts(text, Reading::kMonthName)) found.set.Add(Reading::kMonthName);
    return found;
  }
  const std::size_t year = TrailingDigits(text).size();
  if (year == 0) return found;
  // "May 15" is rather a day of May than its year.
  const bool mark = text[month] == '-' || text[month] == '/';
  if ((year == 4 || mark) && Converts(text, Reading::kMonthYear)) {
    found.set.Add(Reading::kMonthYear);
  }
  if (Converts(text, Reading::kMonthDayYear)) {
    found.set.Add(Reading::kMonthDayYear);
    found.monthInLetters = true;
  }
  found.shortYear = year == 2;
  return found;
}

}  // namespace

ValueReadings ReadValue(std::string_view text) {
  const unsigned first = ClassOf(text.front());
  if ((first & kOther) != 0 || text.size() > kLongestValue) return {};
  if ((first & (kLetter | kExponent)) != 0) return ReadNames(text);
  const unsigned classes = ClassesIn(text);
  if ((classes & kDigit) == 0 || (classes & kOther) != 0) return {};
  if ((classes & (kSlash | kColon | kLetter)) == 0) {
    ValueReadings numbers = ReadNumbers(text, classes);
    if (!numbers.set.empty()) return numbers;
  }
  if ((classes & (kPercentSign | kDollarSign)) != 0) return {};
  if ((classes & kColon) != 0) return ReadTimes(text, classes);
  if ((first & kDigit) == 0) return {};
  if ((classes & (kLetter | kExponent)) != 0) return ReadLetterDates(text);
  return ReadDigitDates(text, classes);
}

bool LosesDigits(std::string_view text, double value) {
  if (text.size() <= static_cast<std::size_t>(kSafeDigits)) return false;
  // The significant digits, without zeros at either end.
  std::array<char, kLongestValue> digits;
  int count = 0;
  for (const char byte : text) {
    if ((ClassOf(byte) & (kLetter | kExponent)) != 0) break;
    if (!IsDigit(byte) || (count == 0 && byte == '0')) continue;
    if (count == static_cast<int>(digits.size())) return true;
    digits[static_cast<std::size_t>(count++)] = byte;
  }
  while (count > 0 && digits[static_cast<std::size_t>(count - 1)] == '0') --count;
  if (count <= kSafeDigits) return false;
  std::array<char, 64> read;
  std::snprintf(read.data(), read.size(), "%.*e", count - 1, std::fabs(value));
  // d.ddd...e+xx
  if (read[0] != digits[0]) return true;
  return !std::equal(digits.begin() + 1, digits.begin() + count, read.begin() + 2);
}

}  // namespace library
