#include "HostFramework/embedded/values/NumberInput.h"

#include <charconv>
#include <cstdint>
#include <system_error>

#include "HostFramework/embedded/values/Decimal.h"
#include "HostFramework/embedded/values/FormatCodes.h"
#include "HostFramework/embedded/values/PlainNumber.h"

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
  bool standard;  // most long texts will be in the form of the standard's parser
};

bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

// Appends the digits at `at` to `digits` (which overflows silently after kIntegerDigits of them).
const char* SkipDigits(const char* at, const char* end, std::uint64_t& digits) {
  for (; at != end && IsDigit(*at); ++at) {
    digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
  }
  return at;
}

// Reads the sign and the digits of an exponent. False when there is no digit.
bool ReadExponent(const char*& at, const char* end, std::int64_t& exponent) {
  const bool negative = at != end && *at == '-';
  if (at != end && (*at == '-' || *at == '+')) ++at;
  const char* const first = at;
  std::int64_t read = 0;
  for (; at != end && IsDigit(*at); ++at) {
    if (read < kExponentLimit) read = read * 10 + (*at - '0');
  }
  exponent += negative ? -read : read;
  return at != first;
}

// Reads a number without its sign from `at` to `end`, all of it: any number there is.
bool ReadAny(const char* at, const char* end, const NumberRules& rules, double* value) {
  const char* const first = at;
  std::uint64_t digits = 0;
  std::ptrdiff_t separators = 0;
  at = SkipDigits(at, end, digits);
  if (at != end && *at == rules.group && at != first && at - first <= 3) {
    do {
      if (end - at < 4 || !IsDigit(at[1]) || !IsDigit(at[2]) || !IsDigit(at[3])) return false;
      digits = digits * 1000 +
               static_cast<std::uint64_t>((at[1] - '0') * 100 + (at[2] - '0') * 10 + (at[3] - '0'));
      at += 4;
      ++separators;
    } while (at != end && *at == rules.group);
  }
  std::int64_t exponent = 0;
  if (at != end && *at == rules.decimal) {
    const char* const fraction = ++at;
    ++separators;
    at = SkipDigits(at, end, digits);
    exponent = fraction - at;
  }
  const char* const last = at;
  const std::ptrdiff_t count = last - first - separators;
  if (count == 0) return false;
  if (at != end && rules.exponent) {
    const char letter = static_cast<char>(*at | 0x20);
    if ((letter != 'e' && letter != 'd') || !ReadExponent(++at, end, exponent)) return false;
  }
  if (at != end) return false;

  if (count <= kIntegerDigits && ExactDecimal(digits, exponent, value)) return true;
  Decimal decimal;
  for (at = first; at != last; ++at) {
    if (IsDigit(*at)) decimal.Append(*at - '0');
  }
  return decimal.Round(exponent, value);
}

// Reads a number as the standard's parser does, whose form is ours when it names the same decimal
// character. False for other forms and for numbers that are out of range.
bool ReadStandard(const char* at, const char* end, double* value) {
  // It would also take a sign, an infinity and texts that are not a number.
  if (at == end || !(IsDigit(*at) || *at == '.')) return false;
  double read;
  const auto [last, error] = std::from_chars(at, end, read);
  if (last != end || error != std::errc()) return false;
  *value = read;
  return true;
}

bool ReadMagnitude(const char* at, const char* end, const NumberRules& rules, double* value) {
  const auto length = static_cast<std::size_t>(end - at);
  if (length - 1 < PlainNumber::kLongest &&
      PlainNumber::Read(at, length, rules.decimal, false, value)) {
    return true;
  }
  if (rules.standard && ReadStandard(at, end, value)) return true;
  return ReadAny(at, end, rules, value);
}

NumberRules RulesOf(int code, char decimal) {
  switch (code) {
    case kComma:
    case kDollar:
      return {'.', ',', true, false};
    case kDot:
      return {',', '.', true, false};
    case kN:
      return {kNoSeparator, kNoSeparator, false, false};
    default:
      return {decimal, decimal == '.' ? ',' : '.', true, decimal == '.'};
  }
}

// Drops one percent sign at the end and the blanks before it.
std::string_view WithoutPercent(std::string_view text) {
  if (text.back() != '%') return text;
  text.remove_suffix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

}  // namespace

bool ReadNumber(std::string_view text, int code, char decimal, double* value) {
  if (code == kPct) text = WithoutPercent(text);
  const char* at = text.data();
  const char* const end = at + text.size();
  bool dollar = code != kDollar;  // true once no dollar sign may follow
  if (!dollar && at != end && *at == '$') {
    dollar = true;
    ++at;
  }
  // Signs come as they please in a column, so that skipping one is no branch.
  const char sign = at != end && code != kN ? *at : '0';
  const bool negative = sign == '-';
  at += negative | (sign == '+');
  if (!dollar && at != end && *at == '$') ++at;

  double magnitude;
  if (!ReadMagnitude(at, end, RulesOf(code, decimal), &magnitude)) return false;
  constexpr double kSigns[] = {1, -1};
  *value = magnitude * kSigns[negative];
  return true;
}

}  // namespace embedded
