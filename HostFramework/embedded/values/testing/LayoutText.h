// Tests only: random texts of the layouts by which columns are recognised as dates and times, made
// from the grammar of the layouts' expressions, with the value that each text has.
#pragma once

#include <charconv>
#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace embedded {

// A text under construction. Each operation appends what the expression in its comment matches.
class LayoutText {
 public:
  // What the finished text must convert to.
  enum class Outcome {
    kValue,      // value()
    kSomeValue,  // a value; the text can be read in two ways
    kMissing,    // none: no such month or date, or a form that is recognised but not read
    kOpen,       // it may name no month, or lacks the separator of minutes and seconds
  };

  explicit LayoutText(std::mt19937_64& random) : random_(random) {}

  const std::string& text() const { return text_; }
  Outcome outcome() const { return outcome_; }
  double value() const { return value_; }

  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  bool Maybe() { return Below(2) == 0; }
  void Literal(std::string_view text) { text_ += text; }
  // The index of the choice that was appended.
  int OneOf(std::initializer_list<std::string_view> choices) {
    const int index = Below(static_cast<int>(choices.size()));
    text_ += choices.begin()[index];
    return index;
  }

  // \s: blanks mostly, and the others that the class has.
  void Space() {
    if (Below(4) != 0) {
      text_ += ' ';
    } else {
      OneOf({"\t", "\n", "\r", "\f", "\v", "\u0085", "\u00A0", "\u2009", "\u2028", "\u3000"});
    }
  }
  void MaybeSpace() {
    if (Maybe()) Space();
  }
  // \d: ASCII mostly, and digits of other scripts.
  int Digit() {
    const int digit = Below(10);
    if (Below(50) != 0) {
      text_ += static_cast<char>('0' + digit);
    } else {
      static constexpr std::string_view kFirst[] = {"\u0660", "\u0966", "\uFF10"};
      std::string wide(kFirst[Below(3)]);
      wide.back() = static_cast<char>(wide.back() + digit);
      text_ += wide;
    }
    return digit;
  }
  // \d{count}
  int Digits(int count) {
    int value = 0;
    for (int i = 0; i < count; ++i) value = value * 10 + Digit();
    return value;
  }
  // \d{1,}, returned in ASCII; as many as `most`.
  std::string AnyDigits(int most) {
    std::string digits;
    for (int i = 1 + Below(most); i > 0; --i) digits += static_cast<char>('0' + Digit());
    return digits;
  }
  // A digit of the class, which can hold a literal bar too; nothing for that.
  std::optional<int> DigitOf(std::string_view members) {
    const char c = members[static_cast<std::size_t>(Below(static_cast<int>(members.size())))];
    text_ += c;
    return c == '|' ? std::nullopt : std::optional(c - '0');
  }
  // [first][second]
  std::optional<int> TwoOf(std::string_view first, std::string_view second) {
    const auto tens = DigitOf(first);
    const auto ones = DigitOf(second);
    return tens && ones ? std::optional(*tens * 10 + *ones) : std::nullopt;
  }

  // ([0]?[1-9]|[1|2][0-9]|[3][0|1])
  std::optional<int> Day() {
    switch (Below(3)) {
      case 0:
        OneOf({"", "0"});
        return DigitOf("123456789");
      case 1:
        return TwoOf("1|2", kAllDigits);
      default:
        return TwoOf("3", "0|1");
    }
  }
  // ([0]?[1-9]|[1][0-2])
  std::optional<int> Month() {
    if (Maybe()) return TwoOf("1", "012");
    OneOf({"", "0"});
    return DigitOf("123456789");
  }
  // [a-zA-Z]{3}: a month's English name or Roman numeral, or any letters, of which nothing is
  // known.
  std::optional<int> MonthLetters() {
    switch (Below(4)) {
      case 0: {
        for (int i = 0; i < 3; ++i) text_ += static_cast<char>((Maybe() ? 'a' : 'A') + Below(26));
        outcome_ = Outcome::kOpen;
        return 1;
      }
      case 1: {
        static constexpr int kMonths[] = {3, 7, 12};
        return kMonths[OneOf({"iii", "vii", "xii"})];
      }
      default:
        return 1 + OneOf({"jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct",
                          "nov", "dec"});
    }
  }
  // (\-|\.|\,|\/|\s)?
  bool MaybeSeparator() {
    if (Maybe()) return false;
    if (Maybe()) {
      Space();
    } else {
      OneOf({"-", ".", ",", "/"});
    }
    return true;
  }
  // \d{digits}, the year that it means.
  int Year(int digits) {
    if (digits == 4 && Below(8) != 0) {  // nearly all four-digit years are in the calendar
      const int century = 16 + Below(84);
      text_ += std::to_string(century);
      return century * 100 + Digits(2);
    }
    const int year = Digits(digits);
    return digits == 4 ? year : year < 69 ? 2000 + year : 1900 + year;
  }
  // (a|b|...): the number of the name, from 1.
  int Name(const std::vector<std::string>& names) {
    const int index = Below(static_cast<int>(names.size()));
    text_ += names[static_cast<std::size_t>(index)];
    return index + 1;
  }
  // (\-|\+?)
  bool Sign() { return OneOf({"-", "+", ""}) == 0; }
  // ([0-1]?[0-9]|[2][0-3])
  int HourOfDay() {
    switch (Below(3)) {
      case 0:
        return *DigitOf(kAllDigits);
      case 1:
        return *TwoOf("01", kAllDigits);
      default:
        return *TwoOf("2", "0123");
    }
  }
  // [0-5]?[0-9]
  int Sixty() { return Maybe() ? *DigitOf(kAllDigits) : TwoDigitSixty(); }
  // [0-5][0-9]
  int TwoDigitSixty() { return *TwoOf("012345", kAllDigits); }

  // The text is a date, and a time of day with a fraction of seconds.
  void IsDate(int year, std::optional<int> month, std::optional<int> day, std::int64_t seconds = 0,
              const std::string& fraction = {}) {
    using std::chrono::sys_days;
    if (outcome_ == Outcome::kOpen) return;
    outcome_ = Outcome::kMissing;
    if (!month || !day) return;
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (date.ok()) IsDay(sys_days(date), seconds, fraction);
  }
  void IsDay(std::chrono::sys_days day, std::int64_t seconds = 0,
             const std::string& fraction = {}) {
    using std::chrono::sys_days;
    constexpr std::chrono::year_month_day kZero{std::chrono::year(1582), std::chrono::October,
                                                std::chrono::day(14)};
    constexpr std::chrono::year_month_day kLast{std::chrono::year(9999), std::chrono::December,
                                                std::chrono::day(31)};
    outcome_ = Outcome::kMissing;
    if (day <= sys_days(kZero) || day > sys_days(kLast)) return;
    IsDuration(false, (day - sys_days(kZero)).count() * 86400 + seconds, fraction);
  }
  // The text is a number of seconds.
  void IsDuration(bool negative, std::int64_t seconds, const std::string& fraction = {}) {
    IsNumber(negative, std::to_string(seconds), fraction);
  }
  // The text is a decimal number.
  void IsNumber(bool negative, const std::string& digits, const std::string& fraction = {}) {
    const std::string number = digits + "." + fraction;
    std::from_chars(number.data(), number.data() + number.size(), value_);
    if (negative) value_ = -value_;
    outcome_ = Outcome::kValue;
  }
  void Is(int number) {
    value_ = number;
    outcome_ = Outcome::kValue;
  }
  // A value is there, but which one depends on how the text is cut.
  void IsAmbiguous() {
    if (outcome_ == Outcome::kValue) outcome_ = Outcome::kSomeValue;
    if (outcome_ == Outcome::kMissing) outcome_ = Outcome::kOpen;
  }
  void IsOpen() { outcome_ = Outcome::kOpen; }
  void IsMissing() { outcome_ = Outcome::kMissing; }

 private:
  static constexpr std::string_view kAllDigits = "0123456789";

  std::mt19937_64& random_;
  std::string text_;
  Outcome outcome_ = Outcome::kMissing;
  double value_ = 0;
};

}  // namespace embedded
