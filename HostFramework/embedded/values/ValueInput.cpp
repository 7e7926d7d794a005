#include "HostFramework/ValueInput.h"

#include <atomic>
#include <string_view>

#include "HostFramework/embedded/values/DateInput.h"
#include "HostFramework/embedded/values/DateTimeInput.h"
#include "HostFramework/embedded/values/FormatCodes.h"
#include "HostFramework/embedded/values/NumberInput.h"
#include "HostFramework/embedded/values/TimeInput.h"

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

int Convert(std::string_view text, int format, double* value) {
  const auto result = [](bool converted) { return converted ? kConverted : kNotAValue; };
  switch (format) {
    case kF:
    case kE:
    case kPct:
    case kComma:
    case kDollar:
    case kDot:
    case kN:
      return result(
          ReadNumber(text, format, decimalCharacter.load(std::memory_order_relaxed), value));
    case kDate:
    case kEDate:
      return result(ReadDate(text, value));
    case kADate:
      return result(ReadADate(text, value));
    case kSDate:
      return result(ReadSDate(text, value));
    case kJDate:
      return result(ReadJDate(text, value));
    case kQyr:
      return result(ReadQuarter(text, value));
    case kMoyr:
      return result(ReadMonthOfYear(text, value));
    case kWkyr:
      return result(ReadWeek(text, value));
    case kDateTime:
      return result(ReadDateTime(text, value));
    case kYmdhms:
      return result(ReadYmdhms(text, value));
    case kTime:
      return result(ReadTime(text, value));
    case kDTime:
      return result(ReadDTime(text, value));
    case kMTime:
      return result(ReadMTime(text, value));
    case kWkday:
      return result(ReadWeekday(text, value));
    case kMonth:
      return result(ReadMonthNumber(text, value));
    default:
      return kNoValueFormat;
  }
}

}  // namespace
}  // namespace embedded

int IocvConvertInput(const char* text, std::size_t length, int format, int /*flags*/,
                     double* value) {
  const std::string_view trimmed = embedded::Trimmed(text, length);
  if (trimmed.empty()) return embedded::kEmpty;
  return embedded::Convert(trimmed, format, value);
}

int iocvgetdecchar_() { return embedded::decimalCharacter.load(std::memory_order_relaxed); }

void iocvsetdecchardot_() { embedded::decimalCharacter.store('.', std::memory_order_relaxed); }

void iocvsetdeccharcomma_() { embedded::decimalCharacter.store(',', std::memory_order_relaxed); }
