#include "HostFramework/embedded/values/NumberInput.h"

#include <charconv>
#include <cstdint>
#include <system_error>

#include "HostFramework/Formats.h"
#include "HostFramework/embedded/text/Utf8.h"
#include "HostFramework/embedded/values/Decimal.h"
#include "HostFramework/embedded/values/PlainNumber.h"
#include "HostFramework/embedded/values/TextCursor.h"

namespace embedded {
namespace {

// As many digits always fit an unsigned 64-bit integer.
constexpr std::ptrdiff_t kIntegerDigits = 19;

// No more digits are added to an exponent of this size: no text is long enough to make up for it.
constexpr std::int64_t kExponentLimit = 100'000'000'000'000'000;

// Stands for a separator that a format does not have: digits are consumed before a separator is
// looked for, so that it is never found.
constexpr char kNoSeparator = '0';

struct NumberRules {
  char decimal;
  char group;
  bool exponent;
  bool blanksBehind;  // white space may follow
  bool standard;      // most long texts will be in the form of the standard's parser
};

bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

// The digits of a number in hand: their value, which overflows silently after kIntegerDigits of
// them, and how many there are.
struct Digits {
  std::uint64_t value = 0;
  std::ptrdiff_t count = 0;

  void Append(int digit) {
    value = value * 10 + static_cast<unsigned>(digit);
    ++count;
  }
};

// What a TextCursor does, for a text that has nothing but ASCII where it matters: any other byte is
// no digit and no blank.
class ByteCursor {
 public:
  explicit ByteCursor(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

  bool AtEnd() const { return at_ == end_; }
  bool OnlyBlanks() const { return AtEnd(); }
  void Skip(std::size_t bytes) { at_ += bytes; }
  bool Accept(char ascii) {
    if (at_ == end_ || *at_ != ascii) return false;
    ++at_;
    return true;
  }
  bool AcceptLetter(char lower) {
    if (at_ == end_ || (*at_ | 0x20) != lower) return false;
    ++at_;
    return true;
  }
  int Digit() {
    if (at_ == end_ || static_cast<unsigned char>(*at_ - '0') >= 10) return -1;
    return *at_++ - '0';
  }

 private:
  const char* at_;
  const char* end_;
};

// Consumes all the digits here and returns how many there were.
template <typename Cursor>
std::ptrdiff_t TakeDigits(Cursor& at, Digits& digits) {
  const std::ptrdiff_t before = digits.count;
  for (int digit = at.Digit(); digit >= 0; digit = at.Digit()) digits.Append(digit);
  return digits.count - before;
}
// Consumes three digits. False when there are fewer.
template <typename Cursor>
bool TakeGroup(Cursor& at, Digits& digits) {
  for (int i = 0; i < 3; ++i) {
    const int digit = at.Digit();
    if (digit < 0) return false;
    digits.Append(digit);
  }
  return true;
}

// Reads the sign and the digits of an exponent. False when there is no digit.
template <typename Cursor>
bool ReadExponent(Cursor& at, std::int64_t& exponent) {
  const bool negative = at.Accept('-');
  if (!negative) at.Accept('+');
  int digit = at.Digit();
  if (digit < 0) return false;
  std::int64_t read = 0;
  for (; digit >= 0; digit = at.Digit()) {
    if (read < kExponentLimit) read = read * 10 + digit;
  }
  exponent += negative ? -read : read;
  return true;
}

// Reads a number without its sign, all that `at` has: any number there is.
template <typename Cursor>
bool ReadAny(Cursor at, const NumberRules& rules, double* value) {
  const Cursor first = at;
  Digits digits;
  const std::ptrdiff_t leading = TakeDigits(at, digits);
  if (leading > 0 && leading <= 3) {
    while (at.Accept(rules.group)) {
      if (!TakeGroup(at, digits)) return false;
    }
  }
  std::int64_t exponent = 0;
  if (at.Accept(rules.decimal)) exponent = -TakeDigits(at, digits);
  if (digits.count == 0) return false;
  if (rules.exponent && (at.AcceptLetter('e') || at.AcceptLetter('d')) &&
      !ReadExponent(at, exponent)) {
    return false;
  }
  if (!(rules.blanksBehind ? at.OnlyBlanks() : at.AtEnd())) return false;

  if (digits.count <= kIntegerDigits && ExactDecimal(digits.value, exponent, value)) return true;
  Decimal decimal;
  at = first;
  for (std::ptrdiff_t left = digits.count; left > 0;) {
    const int digit = at.Digit();
    if (digit < 0) {
      at.Skip(1);  // a separator
      continue;
    }
    decimal.Append(digit);
    --left;
  }
  return decimal.Round(exponent, value);
}

// Reads a number as the standard's parser does, whose form is ours when it names the same decimal
// character. False for other forms and for numbers that are out of range. It would also take a
// sign, an infinity and texts that are not a number, none of which begins as ours do.
bool ReadStandard(std::string_view text, double* value) {
  double read;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, read);
  if (last != end || error != std::errc()) return false;
  *value = read;
  return true;
}

// Whether a number without its sign can begin so.
bool MayBegin(char first, const NumberRules& rules) {
  return IsDigit(first) || first == rules.decimal || static_cast<unsigned char>(first) >= 0x80;
}

// What ByteCursor does not read as TextCursor does.
bool HasWideOrBlank(std::string_view text) {
  return AsciiPrefix(text.data(), text.size()) != text.size() ||
         static_cast<unsigned char>(text.back()) <= ' ';
}

// `mayBePlain`: PlainNumber did not refuse the text yet.
bool ReadMagnitude(std::string_view text, const NumberRules& rules, bool mayBePlain,
                   double* value) {
  if (text.empty() || !MayBegin(text.front(), rules)) return false;
  if (mayBePlain && text.size() <= PlainNumber::kLongest &&
      PlainNumber::Read(text.data(), text.size(), rules.decimal, false, value)) {
    return true;
  }
  if (rules.standard && text.size() > PlainNumber::kLongest && ReadStandard(text, value)) {
    return true;
  }
  if (ReadAny(ByteCursor(text), rules, value)) return true;
  return HasWideOrBlank(text) && ReadAny(TextCursor(text), rules, value);
}

NumberRules RulesOf(int code, char decimal) {
  switch (code) {
    case kFormatComma:
    case kFormatDollar:
      return {'.', ',', true, true, false};
    case kFormatDot:
      return {',', '.', true, true, false};
    case kFormatN:
      return {kNoSeparator, kNoSeparator, false, false, false};
    default:
      return {decimal, decimal == '.' ? ',' : '.', true, false, decimal == '.'};
  }
}

// Drops the percent sign at the end and the blanks before it.
std::string_view WithoutPercent(std::string_view text) {
  text.remove_suffix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

}  // namespace

bool ReadNumber(std::string_view text, int code, char decimal, double* value) {
  bool mayBePlain = code == kFormatN;
  if (code == kFormatPct && text.back() == '%') {
    text = WithoutPercent(text);
    mayBePlain = true;
  }
  const auto takeDollar = [&] {
    if (text.empty() || text.front() != '$') return false;
    text.remove_prefix(1);
    mayBePlain = true;
    return true;
  };
  const bool dollar = code == kFormatDollar && takeDollar();
  // Signs come as they please in a column, so that skipping one is no branch.
  const char sign = text.empty() || code == kFormatN ? '0' : text.front();
  const bool negative = sign == '-';
  text.remove_prefix(negative | (sign == '+'));
  if (code == kFormatDollar && !dollar) takeDollar();

  double magnitude;
  if (!ReadMagnitude(text, RulesOf(code, decimal), mayBePlain, &magnitude)) return false;
  constexpr double kSigns[] = {1, -1};
  *value = magnitude * kSigns[negative];
  return true;
}

}  // namespace embedded
