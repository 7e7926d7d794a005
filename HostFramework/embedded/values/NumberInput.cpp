#include "HostFramework/embedded/values/NumberInput.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "HostFramework/embedded/values/Decimal.h"
#include "HostFramework/embedded/values/FormatCodes.h"

namespace embedded {
namespace {

// As many digits always fit an unsigned 64-bit integer.
constexpr std::ptrdiff_t kIntegerDigits = 19;

// An explicit exponent is held here: no text is long enough for its digits to make up for it.
constexpr std::int64_t kExponentLimit = 1'000'000'000'000'000'000;

// Stands for a separator that a format does not have: digits are consumed before a separator is
// looked for, so that it is never found.
constexpr char kNoSeparator = '0';

struct NumberRules {
  char decimal;
  char group;
  bool exponent;
};

bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

std::uint64_t LoadEight(const char* text) {
  std::uint64_t bytes;
  std::memcpy(&bytes, text, sizeof bytes);
  return bytes;
}

// True when all eight bytes are '0' to '9': the high half of each is 3, and stays 3 when 6 is
// added.
bool AreEightDigits(std::uint64_t bytes) {
  return ((bytes & 0xF0F0F0F0F0F0F0F0) |
          (((bytes + 0x0606060606060606) & 0xF0F0F0F0F0F0F0F0) >> 4)) == 0x3333333333333333;
}

// The value of eight digits, the first in the lowest byte: neighbours are joined to pairs, pairs to
// fours, fours to eight.
std::uint32_t EightDigits(std::uint64_t bytes) {
  bytes -= 0x3030303030303030;
  bytes = bytes * 10 + (bytes >> 8);
  constexpr std::uint64_t kMask = 0x000000FF000000FF;
  constexpr std::uint64_t kFirst = 0x000F424000000064;   // 100 + (1000000 << 32)
  constexpr std::uint64_t kSecond = 0x0000271000000001;  // 1 + (10000 << 32)
  return static_cast<std::uint32_t>(
      ((bytes & kMask) * kFirst + ((bytes >> 16) & kMask) * kSecond) >> 32);
}

// Appends the digits at `at` to `digits` (which overflows silently after kIntegerDigits of them).
const char* SkipDigits(const char* at, const char* end, std::uint64_t& digits) {
  if constexpr (std::endian::native == std::endian::little) {
    while (end - at >= 8 && AreEightDigits(LoadEight(at))) {
      digits = digits * 100'000'000 + EightDigits(LoadEight(at));
      at += 8;
    }
  }
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

// Reads a number without its sign from `at` to `end`, all of it.
bool ReadMagnitude(const char* at, const char* end, const NumberRules& rules, double* value) {
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

NumberRules RulesOf(int code, char decimal) {
  switch (code) {
    case kComma:
    case kDollar:
      return {'.', ',', true};
    case kDot:
      return {',', '.', true};
    case kN:
      return {kNoSeparator, kNoSeparator, false};
    default:
      return {decimal, decimal == '.' ? ',' : '.', true};
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
  bool negative = false;
  if (at != end && code != kN && (*at == '-' || *at == '+')) {
    negative = *at == '-';
    ++at;
  }
  if (!dollar && at != end && *at == '$') ++at;

  double magnitude;
  if (!ReadMagnitude(at, end, RulesOf(code, decimal), &magnitude)) return false;
  *value = negative ? -magnitude : magnitude;
  return true;
}

}  // namespace embedded
