#include "HostFramework/embedded/values/NumberInput.h"

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <system_error>

#include "HostFramework/embedded/values/Decimal.h"
#include "HostFramework/embedded/values/FormatCodes.h"

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

template <typename Word>
Word Load(const char* text) {
  Word bytes;
  std::memcpy(&bytes, text, sizeof bytes);
  return bytes;
}

// Eight characters at a time: the first one in the lowest byte, texts that are shorter with zeros
// in front.
constexpr std::uint64_t kZeros = 0x3030303030303030;
constexpr std::size_t kWord = sizeof(std::uint64_t);

// The first of `length` characters that are more than one word and at most two.
std::uint64_t LoadHead(const char* text, std::size_t length) {
  return Load<std::uint64_t>(text) << (2 * kWord - length) * 8 |
         (kZeros >> 8) >> (length - kWord - 1) * 8;
}

// All of 1 to 8 characters. Nothing outside the text is read.
std::uint64_t LoadShort(const char* text, std::size_t length) {
  std::uint64_t bytes;
  if (length >= 4) {
    bytes = Load<std::uint32_t>(text) | std::uint64_t{Load<std::uint32_t>(text + length - 4)}
                                            << (length - 4) * 8;
  } else {
    const auto at = [text](std::size_t i) {
      return std::uint64_t{static_cast<unsigned char>(text[i])} << i * 8;
    };
    bytes = at(0) | at(length / 2) | at(length - 1);
  }
  return bytes << (kWord - length) * 8 | (kZeros >> 8) >> (length - 1) * 8;
}

// The high bit of each byte that is not a digit.
std::uint64_t NotDigits(std::uint64_t bytes) {
  constexpr std::uint64_t kLow = 0x7F7F7F7F7F7F7F7F;
  constexpr std::uint64_t kAboveNine = 0x7676767676767676;  // 10 more reaches the high bit
  bytes ^= kZeros;
  return (((bytes & kLow) + kAboveNine) | bytes) & ~kLow;
}

// The value of eight digits: neighbours are joined to pairs, pairs to fours, fours to eight.
std::uint32_t EightDigits(std::uint64_t bytes) {
  bytes -= kZeros;
  bytes = bytes * 10 + (bytes >> 8);
  constexpr std::uint64_t kMask = 0x000000FF000000FF;
  constexpr std::uint64_t kFirst = 0x000F424000000064;   // 100 + (1000000 << 32)
  constexpr std::uint64_t kSecond = 0x0000271000000001;  // 1 + (10000 << 32)
  return static_cast<std::uint32_t>(
      ((bytes & kMask) * kFirst + ((bytes >> 16) & kMask) * kSecond) >> 32);
}

// Takes the one character that is no digit out of `bytes`, if it is the decimal character, and
// moves up those before it; `filler` comes in from below. False when another character is no digit.
bool CloseGap(std::uint64_t& bytes, std::uint64_t notDigits, char decimal, std::uint64_t filler,
              int& places) {
  const int position = std::countr_zero(notDigits) & ~7;
  if ((notDigits & (notDigits - 1)) != 0) return false;
  if (static_cast<char>(bytes >> position) != decimal) return false;
  const std::uint64_t above = bytes & (~std::uint64_t{0} << position) << 8;
  const std::uint64_t below = bytes & ~(~std::uint64_t{0} << position);
  bytes = above | below << 8 | filler;
  places += static_cast<int>(kWord) - 1 - position / 8;
  return true;
}

// Reads what most numbers are: 1 to 16 characters, digits with one decimal character or none. All
// digits are found and valued together, without a branch that depends on their number. Returns
// false for any other text, which may still be a number.
bool ReadPlain(const char* text, std::size_t length, char decimal, double* value) {
  if constexpr (std::endian::native != std::endian::little) return false;
  constexpr std::uint64_t kZero = '0';
  int places = 0;
  if (length <= kWord) {
    std::uint64_t bytes = LoadShort(text, length);
    if (const std::uint64_t notDigits = NotDigits(bytes)) {
      if (length == 1 || !CloseGap(bytes, notDigits, decimal, kZero, places)) return false;
    }
    *value = EightDigits(bytes) / kPowersOfTen[places];
    return true;
  }
  std::uint64_t head = LoadHead(text, length);
  std::uint64_t tail = Load<std::uint64_t>(text + length - kWord);
  const std::uint64_t notInHead = NotDigits(head);
  if (const std::uint64_t notInTail = NotDigits(tail)) {
    if (notInHead != 0 || !CloseGap(tail, notInTail, decimal, head >> 56, places)) return false;
    head = head << 8 | kZero;
  } else if (notInHead != 0) {
    if (!CloseGap(head, notInHead, decimal, kZero, places)) return false;
    places += static_cast<int>(kWord);
  }
  const std::uint64_t digits = EightDigits(head) * std::uint64_t{100'000'000} + EightDigits(tail);
  return ExactDecimal(digits, -places, value);
}

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
  if (length - 1 < 2 * kWord && ReadPlain(at, length, rules.decimal, value)) return true;
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
