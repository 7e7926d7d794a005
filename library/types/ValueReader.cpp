#include "library/types/ValueReader.h"

#include <algorithm>
#include <array>
#include <bit>

#include "HostFramework/embedded/values/DateNames.h"
#include "HostFramework/embedded/values/NumberInput.h"
#include "HostFramework/embedded/values/TextCursor.h"
#include "library/types/NamePrefixes.h"
#include "reading/ValueConverter.h"
#include "watch/Rounding.h"

namespace library {
namespace {

// A longer text is no value of a format of at most 40 columns.
constexpr std::size_t kLongestValue = textwizard::kMaxNumberWidth;

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

// A text whose readings are those of `tries` that convert.
ValuePlan Trying(ReadingSet tries) {
  ValuePlan plan;
  if (!tries.empty()) plan.kind = ValuePlan::kTries;
  plan.tries = tries;
  return plan;
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

// Of a whole number without grouping.
bool HasLeadingZero(std::string_view text) {
  if (ClassOf(text.front()) == kPlusMinus) text.remove_prefix(1);
  return text.size() > 1 && text.front() == '0' && std::all_of(text.begin(), text.end(), IsDigit);
}

bool LosesDigits(std::string_view text, double value) {
  return text.size() >= textwizard::kRoundedDigits && textwizard::IsRounded(text, value);
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
  found.leadingZero = HasLeadingZero(text);
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
ValuePlan PlanTimes(std::string_view text, unsigned classes) {
  const Parts parts = PartsOf(IsDigit(text.front()) ? text : text.substr(1));
  const std::size_t colon = text.find(':');
  const bool separated =
      (classes & kSlash) != 0 || text.find('-', 1) < colon || text.find_first_of(".,") < colon;
  const bool letters = (classes & (kLetter | kExponent)) != 0;
  const bool compact = parts.lengths[0] >= 6;
  ValuePlan plan;
  if (!separated && !letters && !compact) {
    plan = (classes & kBlank) != 0 ? Trying(ReadingSet(Reading::kDaysTime))
                                   : Trying(ReadingSet(Reading::kTime, Reading::kMinutesSeconds));
  } else if (parts.lengths[0] == 4 || compact) {
    plan = Trying(ReadingSet(Reading::kYearMonthDayTime));
  } else if (parts.lengths[0] <= 2) {
    plan = Trying(ReadingSet(Reading::kDayMonthYearTime));
    // A single letter is the T between date and time.
    const std::size_t letter = text.find_first_not_of("0123456789-/., ");
    plan.found.monthInLetters = letter != std::string_view::npos && text[letter] != ':' &&
                                letter + 1 < text.size() && !IsDigit(text[letter + 1]);
    if (!plan.found.monthInLetters) plan.found.separator = parts.separator;
  }
  plan.found.secondFraction = SecondFraction(text);
  plan.found.hasSeconds = text.find(':', colon + 1) != std::string_view::npos;
  return plan;
}

// Dates of digits: one separator throughout, and no list or version number.
ValuePlan PlanDigitDates(std::string_view text, unsigned classes) {
  const Parts parts = PartsOf(text);
  if ((classes & (kCommaSign | kBlank)) != 0 || !parts.sameSeparator) return {};
  if (parts.count == 2) {
    const bool isMonth = parts.lengths[1] == 4 && parts.lengths[0] <= 2;
    return isMonth ? Trying(ReadingSet(Reading::kMonthYear)) : ValuePlan();
  }
  if (parts.count != 3) return {};
  const bool shortYear = parts.lengths[0] <= 2 && parts.lengths[2] <= 2;
  // 1.2.34 and 1-2-34 are rather the numbers of versions and parts.
  const bool padded = parts.lengths[0] == 2 && parts.lengths[1] == 2 && parts.lengths[2] == 2;
  if (shortYear && !padded && parts.separator != '/') return {};
  ReadingSet tries;
  if (parts.lengths[0] == 4 || shortYear) tries.Add(Reading::kYearMonthDay);
  if (parts.lengths[0] <= 2) {
    tries.Add(Reading::kMonthDayYear);
    tries.Add(Reading::kDayMonthYear);
  }
  ValuePlan plan = Trying(tries);
  plan.found.shortYear = shortYear;
  plan.found.separator = parts.separator;
  return plan;
}

// 31-Jan-2020, 31JAN20, 2020-Jan-31, 1 Q 2020, 12 WK 2020: digits first, letters in them.
ValuePlan PlanLetterDates(std::string_view text) {
  std::size_t digits = 0;
  while (digits < text.size() && IsDigit(text[digits])) ++digits;
  const std::size_t year = TrailingDigits(text).size();
  ReadingSet tries;
  if (digits == 1) tries.Add(Reading::kQuarter);
  if (digits <= 2) {
    tries.Add(Reading::kWeek);
    tries.Add(Reading::kDayMonthYear);
  }
  if (digits == 4) tries.Add(Reading::kYearMonthDay);
  ValuePlan plan = Trying(tries);
  plan.found.monthInLetters = true;
  plan.found.shortYear = digits <= 2 && year <= 2;
  return plan;
}

// Names of days and months; a month and a year; a month, a day and a year.
ValueReadings ReadNames(std::string_view text) {
  ValueReadings found;
  if (!NamePrefixes::Instance().MayBegin(text)) return found;
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

// The readings of a plan that convert.
ValueReadings Try(const ValuePlan& plan, std::string_view text) {
  ValueReadings found = plan.found;
  for (std::uint32_t left = plan.tries.bits(); left != 0; left &= left - 1) {
    const auto reading = static_cast<Reading>(std::countr_zero(left));
    if (Converts(text, reading)) found.set.Add(reading);
  }
  if (found.set.Has(Reading::kDayMonthYearTime) && !found.monthInLetters) {
    const std::string_view date = text.substr(0, text.find_first_of(" T"));
    found.eitherOrder = Converts(date, Reading::kMonthDayYear);
  }
  return found;
}

ValuePlan PlanOfText(std::string_view text) {
  const unsigned first = ClassOf(text.front());
  ValuePlan plan;
  if ((first & kOther) != 0 || text.size() > kLongestValue) return plan;
  if ((first & (kLetter | kExponent)) != 0) {
    plan.kind = ValuePlan::kNames;
    return plan;
  }
  const unsigned classes = ClassesIn(text);
  if ((classes & kDigit) == 0 || (classes & kOther) != 0) return plan;
  if ((classes & (kSlash | kColon | kLetter)) == 0) {
    const ValueReadings numbers = ReadNumbers(text, classes);
    if (!numbers.set.empty()) {
      // With an exponent the number may be too large.
      plan.kind = (classes & kExponent) != 0 ? ValuePlan::kNumber : ValuePlan::kSame;
      plan.found = numbers;
      return plan;
    }
  }
  if ((classes & (kPercentSign | kDollarSign)) != 0) return plan;
  if ((classes & kColon) != 0) return PlanTimes(text, classes);
  if ((first & kDigit) == 0) return plan;
  if ((classes & (kLetter | kExponent)) != 0) return PlanLetterDates(text);
  return PlanDigitDates(text, classes);
}

}  // namespace

ValuePlan PlanOf(std::string_view text) {
  ValuePlan plan = PlanOfText(text);
  const auto letters = std::count_if(text.begin(), text.end(), [](char byte) {
    return (ClassOf(byte) & (kLetter | kExponent)) != 0;
  });
  // One letter may be that of an exponent or another, which are the same to the shape; but no
  // number has a colon.
  plan.ofShape = letters != 1 || text.find(':') != std::string_view::npos;
  return plan;
}

ValueReadings ReadBy(const ValuePlan& plan, std::string_view text) {
  switch (plan.kind) {
    case ValuePlan::kNothing:
      break;
    case ValuePlan::kSame:
      if (text.size() < textwizard::kRoundedDigits) {
        ValueReadings found = plan.found;
        found.leadingZero = HasLeadingZero(text);
        return found;
      }
      return ReadNumbers(text, ClassesIn(text));
    case ValuePlan::kNumber:
      return ReadNumbers(text, ClassesIn(text));
    case ValuePlan::kTries:
      return Try(plan, text);
    case ValuePlan::kNames:
      return ReadNames(text);
  }
  return {};
}

}  // namespace library
