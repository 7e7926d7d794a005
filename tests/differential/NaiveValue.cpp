#include "tests/differential/NaiveValue.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "HostFramework/Formats.h"

namespace naive {
namespace {

constexpr std::int64_t kDaySeconds = 86400;
// A count with more digits is not exact in the seconds' arithmetic here.
constexpr std::size_t kMostCountDigits = 12;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

// What is left of a text.
class Rest {
 public:
  explicit Rest(std::string_view text) : text_(text) {}

  bool AtEnd() const { return text_.empty(); }
  bool TakeOneOf(std::string_view set) {
    if (text_.empty() || !IsOneOf(text_[0], set)) return false;
    text_.remove_prefix(1);
    return true;
  }
  std::string Digits() { return Run(IsDigit); }
  std::string Letters() {
    std::string letters = Run(IsLetter);
    for (char& c : letters) c = static_cast<char>(c | 0x20);
    return letters;
  }
  bool Blanks() { return !Run(IsBlank).empty(); }
  bool OneBlank() { return TakeOneOf(" \t\n\v\f\r"); }
  // One of - / . , with blanks around it or not, or blanks.
  bool Separator() {
    const bool blanks = Blanks();
    if (!TakeOneOf("-/.,")) return blanks;
    Blanks();
    return true;
  }

 private:
  std::string Run(bool (*belongs)(char)) {
    const auto end = std::find_if_not(text_.begin(), text_.end(), belongs);
    std::string run(text_.begin(), end);
    text_.remove_prefix(run.size());
    return run;
  }

  std::string_view text_;
};

// The text with an ASCII digit for every decimal digit of another script, and without white space
// at its end if that may stand there. Other characters beyond ASCII are in no number.
std::string InAscii(std::string_view text, bool dropBlanks) {
  constexpr char kInNoNumber = '?';
  const auto size = static_cast<std::int32_t>(text.size());
  const icu::UnicodeString unicode =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), size));
  std::string ascii;
  std::size_t kept = 0;
  for (std::int32_t at = 0; at < unicode.length(); at = unicode.moveIndex32(at, 1)) {
    const UChar32 character = unicode.char32At(at);
    const int digit = u_charDigitValue(character);
    if (digit >= 0) {
      ascii += static_cast<char>('0' + digit);
    } else {
      ascii += character < 0x80 ? static_cast<char>(character) : kInNoNumber;
    }
    if (!u_isUWhiteSpace(character)) kept = ascii.size();
  }
  if (dropBlanks) ascii.resize(kept);
  return ascii;
}

std::optional<double> ReadNumber(std::string_view given, int format, char decimal) {
  const bool isAmount = format == kFormatComma || format == kFormatDollar || format == kFormatDot;
  const std::string ascii = InAscii(given, isAmount);
  std::string_view text = ascii;
  char group = decimal == '.' ? ',' : '.';
  if (format == kFormatComma || format == kFormatDollar) decimal = '.', group = ',';
  if (format == kFormatDot) decimal = ',', group = '.';
  if (format == kFormatPct && !text.empty() && text.back() == '%') {
    text.remove_suffix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  }
  if (format == kFormatN) {
    if (!std::all_of(text.begin(), text.end(), IsDigit)) return std::nullopt;
    return std::strtod(std::string(text).c_str(), nullptr);
  }
  Rest rest(text);
  bool negative = false;
  const bool dollar = format == kFormatDollar && rest.TakeOneOf("$");
  if (rest.TakeOneOf("-")) {
    negative = true;
  } else {
    rest.TakeOneOf("+");
  }
  if (format == kFormatDollar && !dollar) rest.TakeOneOf("$");

  std::string number = rest.Digits();
  if (!number.empty() && number.size() <= 3) {
    while (rest.TakeOneOf(std::string_view(&group, 1))) {
      const std::string three = rest.Digits();
      if (three.size() != 3) return std::nullopt;
      number += three;
    }
  }
  std::size_t digits = number.size();
  if (rest.TakeOneOf(std::string_view(&decimal, 1))) {
    const std::string fraction = rest.Digits();
    digits += fraction.size();
    number += "." + fraction;
  }
  if (digits == 0) return std::nullopt;
  if (rest.TakeOneOf("eEdD")) {
    number += 'e';
    if (rest.TakeOneOf("-")) {
      number += '-';
    } else {
      rest.TakeOneOf("+");
    }
    const std::string exponent = rest.Digits();
    if (exponent.empty()) return std::nullopt;
    number += exponent;
  }
  if (!rest.AtEnd()) return std::nullopt;
  const double value = std::strtod(number.c_str(), nullptr);
  if (std::isinf(value)) return std::nullopt;
  return negative ? -value : value;
}

constexpr std::array<std::string_view, 12> kMonths = {
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december"};
constexpr std::array<std::string_view, 12> kNumerals = {"i",   "ii",   "iii", "iv", "v",  "vi",
                                                        "vii", "viii", "ix",  "x",  "xi", "xii"};
constexpr std::array<std::string_view, 7> kDays = {"sunday",   "monday", "tuesday", "wednesday",
                                                   "thursday", "friday", "saturday"};

// From 1: the name, full or its first three letters; 0 for none.
template <std::size_t N>
int PlaceOf(const std::array<std::string_view, N>& names, const std::string& letters) {
  for (std::size_t i = 0; i < N; ++i) {
    if (letters == names[i] || letters == names[i].substr(0, 3)) return static_cast<int>(i + 1);
  }
  return 0;
}

// One or two digits; -1 for another count of them.
int Short(const std::string& digits) {
  return digits.size() == 1 || digits.size() == 2 ? std::atoi(digits.c_str()) : -1;
}

// A month in digits or in letters; 0 for none.
int Month(Rest& rest, bool* letters) {
  const std::string word = rest.Letters();
  *letters = !word.empty();
  if (!*letters) {
    const int month = Short(rest.Digits());
    return month >= 1 && month <= 12 ? month : 0;
  }
  if (const int month = PlaceOf(kMonths, word)) return month;
  const auto* const numeral = std::find(kNumerals.begin(), kNumerals.end(), word);
  return numeral == kNumerals.end() ? 0 : static_cast<int>(numeral - kNumerals.begin()) + 1;
}

// -1 for what is no year.
int Year(const std::string& digits) {
  const int year = std::atoi(digits.c_str());
  if (digits.size() == 2) return year < 69 ? 2000 + year : 1900 + year;
  return digits.size() == 4 ? year : -1;
}

// Seconds of the day that is `days` after the date; nothing outside the calendar.
std::optional<std::int64_t> Seconds(int year, int month, int day, int days = 0) {
  using namespace std::chrono;
  const year_month_day date{std::chrono::year(year), std::chrono::month(unsigned(month)),
                            std::chrono::day(unsigned(day))};
  if (year < 0 || month < 1 || day < 1 || !date.ok()) return std::nullopt;
  const sys_days at = sys_days(date) + std::chrono::days(days);
  constexpr sys_days kStart = sys_days(std::chrono::year(1582) / 10 / 14);
  if (at <= kStart || at > sys_days(std::chrono::year(9999) / 12 / 31)) return std::nullopt;
  return (at - kStart).count() * kDaySeconds;
}

// The parts of a date in the order of the format, and what stands between them.
std::optional<std::int64_t> Date(Rest& rest, std::string_view order) {
  int parts[3] = {1, 1, 1};  // day, month, year
  bool afterLetters = false;
  bool separated = true;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i > 0) separated = rest.Separator();
    bool letters = false;
    switch (order[i]) {
      case 'd':
        parts[0] = Short(rest.Digits());
        break;
      case 'm':
        parts[1] = Month(rest, &letters);
        break;
      default:
        parts[2] = Year(rest.Digits());
    }
    if (!separated && !letters && !afterLetters) return std::nullopt;
    afterLetters = letters;
  }
  return Seconds(parts[2], parts[1], parts[0]);
}

struct Time {
  std::int64_t count = 0;  // hours, days or minutes
  std::int64_t rest = 0;   // seconds beyond them
  std::string fraction;
};

double Total(std::int64_t seconds, const std::string& fraction) {
  return std::strtod((std::to_string(seconds) + "." + fraction).c_str(), nullptr);
}

// Less than sixty in one or two digits.
bool Sixty(Rest& rest, int* value) {
  *value = Short(rest.Digits());
  return *value >= 0 && *value < 60;
}

// hh:mm[:ss[fraction]]. Nothing when that is not what is there.
std::optional<Time> Clock(Rest& rest, std::string_view marks, std::string* hours) {
  Time time;
  *hours = rest.Digits();
  int minutes = 0, seconds = 0;
  if (hours->empty() || !rest.TakeOneOf(":") || !Sixty(rest, &minutes)) return std::nullopt;
  if (rest.TakeOneOf(":")) {
    if (!Sixty(rest, &seconds)) return std::nullopt;
    if (rest.TakeOneOf(marks)) {
      time.fraction = rest.Digits();
      if (time.fraction.empty()) return std::nullopt;
    }
  }
  time.rest = minutes * 60 + seconds;
  return time;
}

constexpr std::string_view kPoint = ".,";
constexpr std::string_view kPointOrSeparator = ".,-/ \t\n\v\f\r";

std::optional<double> TimeOfDay(Rest& rest, std::string_view marks, std::int64_t before) {
  std::string hours;
  const std::optional<Time> time = Clock(rest, marks, &hours);
  if (!time || !rest.AtEnd()) return std::nullopt;
  while (hours.size() > 1 && hours[0] == '0') hours.erase(0, 1);
  if (Short(hours) < 0 || Short(hours) >= 24) return std::nullopt;
  return Total(before + Short(hours) * 3600 + time->rest, time->fraction);
}

bool TakeSign(Rest& rest) {
  if (rest.TakeOneOf("-")) return true;
  rest.TakeOneOf("+");
  return false;
}

std::optional<double> Signed(bool negative, std::optional<double> value) {
  if (value && negative) *value = -*value;
  return value;
}

std::optional<double> WholeDate(std::string_view text, std::string_view order) {
  Rest rest(text);
  const auto seconds = Date(rest, order);
  if (!seconds || !rest.AtEnd()) return std::nullopt;
  return static_cast<double>(*seconds);
}

// A count and its unit's word, then a year: QYR and WKYR.
std::optional<double> PartOfYear(std::string_view text, std::string_view word, int most) {
  Rest rest(text);
  const std::string count = rest.Digits();
  rest.Blanks();
  const std::string letters = rest.Letters();
  rest.Blanks();
  const int year = Year(rest.Digits());
  const int part = Short(count);
  if (letters != word || year < 0 || !rest.AtEnd()) return std::nullopt;
  if (part < 1 || part > most) return std::nullopt;
  const auto seconds = word == "q"
                           ? (count.size() == 1 ? Seconds(year, part * 3 - 2, 1) : std::nullopt)
                           : Seconds(year, 1, 1, (part - 1) * 7);
  if (!seconds) return std::nullopt;
  return static_cast<double>(*seconds);
}

std::optional<double> JDate(std::string_view text) {
  if ((text.size() != 5 && text.size() != 7) || !std::all_of(text.begin(), text.end(), IsDigit)) {
    return std::nullopt;
  }
  const std::string digits(text);
  const int year = Year(digits.substr(0, digits.size() - 3));
  const int day = std::atoi(digits.substr(digits.size() - 3).c_str());
  const bool leap = std::chrono::year(year).is_leap();
  if (day < 1 || day > (leap ? 366 : 365)) return std::nullopt;
  const auto seconds = Seconds(year, 1, 1, day - 1);
  if (!seconds) return std::nullopt;
  return static_cast<double>(*seconds);
}

std::optional<double> Name(std::string_view text, bool months) {
  Rest rest(text);
  bool letters = false;
  int place = 0;
  if (months) {
    place = Month(rest, &letters);
  } else {
    place = PlaceOf(kDays, rest.Letters());
    if (place == 0 && text.size() == 1 && text[0] >= '1' && text[0] <= '7') {
      place = text[0] - '0';
      rest.Digits();
    }
  }
  if (place == 0 || !rest.AtEnd()) return std::nullopt;
  return place;
}

// A sign, a count of units and what follows it: TIME, DTIME, MTIME. False when the count is long.
bool Duration(std::string_view text, int format, std::optional<double>* value) {
  Rest rest(text);
  const bool negative = TakeSign(rest);
  *value = std::nullopt;
  if (format == kFormatTime) {
    std::string hours;
    const auto time = Clock(rest, kPointOrSeparator, &hours);
    if (hours.size() > kMostCountDigits) return false;
    if (time && rest.AtEnd()) {
      *value = Total(std::strtoll(hours.c_str(), nullptr, 10) * 3600 + time->rest, time->fraction);
    }
  } else {
    const std::string count = rest.Digits();
    if (count.size() > kMostCountDigits) return false;
    const std::int64_t units = std::strtoll(count.c_str(), nullptr, 10);
    if (count.empty()) return true;
    if (format == kFormatDTime) {
      if (!rest.TakeOneOf(":") && !rest.Blanks()) return true;
      *value = TimeOfDay(rest, kPoint, units * kDaySeconds);
    } else {
      int seconds = 0;
      std::string fraction;
      if (!(rest.TakeOneOf(":.,") || rest.OneBlank()) || !Sixty(rest, &seconds)) return true;
      if (rest.TakeOneOf(":.,")) {
        fraction = rest.Digits();
        if (fraction.empty()) return true;
      }
      if (!rest.AtEnd()) return true;
      *value = Total(units * 60 + seconds, fraction);
    }
  }
  *value = Signed(negative, *value);
  return true;
}

std::optional<double> DateTime(std::string_view text) {
  Rest rest(text);
  const auto midnight = Date(rest, "dmy");
  if (!midnight || !(rest.TakeOneOf("tT") || rest.Blanks())) return std::nullopt;
  return TimeOfDay(rest, kPointOrSeparator, *midnight);
}

// Only YYYY-MM-DD, separated by single characters, and hh:mm[:ss[.f]] behind a blank or a T.
std::optional<Value> Ymdhms(std::string_view text) {
  Rest rest(text);
  const auto separator = [&] { return rest.TakeOneOf("-/.,"); };
  const std::string year = rest.Digits();
  bool known = year.size() == 4 && separator();
  const std::string month = rest.Digits();
  known = known && month.size() == 2 && separator();
  const std::string day = rest.Digits();
  known = known && day.size() == 2 && rest.TakeOneOf(" tT");
  // The hour has one digit or two here.
  if (!known || Short(Rest(rest).Digits()) < 0) return std::nullopt;
  const auto midnight = Seconds(Year(year), Short(month), Short(day));
  const std::optional<double> value = midnight ? TimeOfDay(rest, ".", *midnight) : std::nullopt;
  // What this does not take may be a value in another of the many forms.
  if (!value) return std::nullopt;
  return Value{value};
}

}  // namespace

std::optional<Value> ReadValue(std::string_view text, int format, char decimal) {
  switch (format) {
    case kFormatF:
    case kFormatE:
    case kFormatPct:
    case kFormatComma:
    case kFormatDollar:
    case kFormatDot:
    case kFormatN:
      return Value{ReadNumber(text, format, decimal)};
    default:
      break;
  }
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (!std::all_of(text.begin(), text.end(), isAscii)) return std::nullopt;
  std::optional<double> duration;
  switch (format) {
    case kFormatDate:
    case kFormatEDate:
      return Value{WholeDate(text, "dmy")};
    case kFormatADate:
      return Value{WholeDate(text, "mdy")};
    case kFormatSDate:
      return Value{WholeDate(text, "ymd")};
    case kFormatMoyr:
      return Value{WholeDate(text, "my")};
    case kFormatJDate:
      return Value{JDate(text)};
    case kFormatQyr:
      return Value{PartOfYear(text, "q", 4)};
    case kFormatWkyr:
      return Value{PartOfYear(text, "wk", 53)};
    case kFormatWkday:
      return Value{Name(text, false)};
    case kFormatMonth:
      return Value{Name(text, true)};
    case kFormatDateTime:
      return Value{DateTime(text)};
    case kFormatYmdhms:
      return Ymdhms(text);
    case kFormatTime:
    case kFormatDTime:
    case kFormatMTime:
      if (Duration(text, format, &duration)) return Value{duration};
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace naive
