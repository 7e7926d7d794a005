#include "HostFramework/ValueInput.h"

#include <array>
#include <atomic>
#include <string_view>

#include "HostFramework/Formats.h"
#include "HostFramework/embedded/values/DateInput.h"
#include "HostFramework/embedded/values/DateTimeInput.h"
#include "HostFramework/embedded/values/NumberInput.h"
#include "HostFramework/embedded/values/PlainNumber.h"
#include "HostFramework/embedded/values/TimeInput.h"
#include "HostFramework/embedded/values/ValueShape.h"

namespace embedded {
namespace {

constexpr int kConverted = 0;
constexpr int kEmpty = 1;
constexpr int kNotAValue = 2;
constexpr int kNoValueFormat = 3;

std::atomic<char> decimalCharacter{'.'};

std::string_view Trimmed(const char* text, std::size_t length) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
  const char* end = text + length;
  while (text != end && isBlank(*text)) ++text;
  while (text != end && isBlank(end[-1])) --end;
  return {text, static_cast<std::size_t>(end - text)};
}

// By format: the decimal character of a number, kHostsDecimal, or 0 for no number that may have a
// sign and a decimal character.
constexpr char kHostsDecimal = 'h';
constexpr auto kDecimals = [] {
  std::array<char, 40> decimals{};
  decimals[kFormatF] = decimals[kFormatE] = decimals[kFormatPct] = kHostsDecimal;
  decimals[kFormatComma] = decimals[kFormatDollar] = '.';
  decimals[kFormatDot] = ',';
  return decimals;
}();

// Reads a plain number with a sign or none and nothing around it: what nearly all fields are. False
// for any other text, which may still be a value.
inline bool ReadCommonNumber(const char* text, std::size_t length, int format, double* value) {
  const auto code = static_cast<unsigned>(format);
  if (code >= kDecimals.size() || kDecimals[code] == 0 || length == 0) return false;
  const char decimal = kDecimals[code] == kHostsDecimal
                           ? decimalCharacter.load(std::memory_order_relaxed)
                           : kDecimals[code];
  // Signs come as they please in a column, so that skipping one is no branch.
  const char sign = *text;
  const bool negative = sign == '-';
  const std::size_t skipped = negative | (sign == '+');
  length -= skipped;
  return length - 1 < PlainNumber::kLongest &&
         PlainNumber::Read(text + skipped, length, decimal, negative, value);
}

// Formats whose reading tells most values by their form sooner than the shape of a text is seen,
// and looks at the shape itself where that fails.
constexpr auto kReadBeforeShape = [] {
  std::array<bool, kFormatYmdhms + 1> formats{};
  for (const FormatCode format :
       {kFormatF, kFormatDollar, kFormatADate, kFormatSDate, kFormatYmdhms}) {
    formats[format] = true;
  }
  return formats;
}();

bool IsShaped(std::string_view text, int format) {
  const auto code = static_cast<unsigned>(format);
  return (code < kReadBeforeShape.size() && kReadBeforeShape[code]) ||
         ValueShape::MayBe(text, format);
}

int Convert(std::string_view text, int format, double* value) {
  const auto result = [](bool converted) { return converted ? kConverted : kNotAValue; };
  switch (format) {
    case kFormatF:
    case kFormatE:
    case kFormatPct:
    case kFormatComma:
    case kFormatDollar:
    case kFormatDot:
    case kFormatN:
      return result(
          ReadNumber(text, format, decimalCharacter.load(std::memory_order_relaxed), value));
    case kFormatDate:
    case kFormatEDate:
      return result(ReadDate(text, value));
    case kFormatADate:
      return result(ReadADate(text, value));
    case kFormatSDate:
      return result(ReadSDate(text, value));
    case kFormatJDate:
      return result(ReadJDate(text, value));
    case kFormatQyr:
      return result(ReadQuarter(text, value));
    case kFormatMoyr:
      return result(ReadMonthOfYear(text, value));
    case kFormatWkyr:
      return result(ReadWeek(text, value));
    case kFormatDateTime:
      return result(ReadDateTime(text, value));
    case kFormatYmdhms:
      return result(ReadYmdhms(text, value));
    case kFormatTime:
      return result(ReadTime(text, value));
    case kFormatDTime:
      return result(ReadDTime(text, value));
    case kFormatMTime:
      return result(ReadMTime(text, value));
    case kFormatWkday:
      return result(ReadWeekday(text, value));
    case kFormatMonth:
      return result(ReadMonthNumber(text, value));
    default:
      return kNoValueFormat;
  }
}

}  // namespace
}  // namespace embedded

int IocvConvertInput(const char* text, std::size_t length, int format, int /*flags*/,
                     double* value) {
  if (embedded::ReadCommonNumber(text, length, format, value)) return embedded::kConverted;
  const std::string_view trimmed = embedded::Trimmed(text, length);
  if (trimmed.empty()) return embedded::kEmpty;
  if (!embedded::IsShaped(trimmed, format)) return embedded::kNotAValue;
  if (trimmed.size() != length &&
      embedded::ReadCommonNumber(trimmed.data(), trimmed.size(), format, value)) {
    return embedded::kConverted;
  }
  return embedded::Convert(trimmed, format, value);
}

int iocvgetdecchar_() { return embedded::decimalCharacter.load(std::memory_order_relaxed); }

void iocvsetdecchardot_() { embedded::decimalCharacter.store('.', std::memory_order_relaxed); }

void iocvsetdeccharcomma_() { embedded::decimalCharacter.store(',', std::memory_order_relaxed); }
