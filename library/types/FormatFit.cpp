// Widths and decimals that fit every value.
#include <algorithm>

#include "library/types/TypeChoice.h"

namespace library {
namespace {

using namespace textwizard;

constexpr int kWidest = static_cast<int>(kMaxNumberWidth);
constexpr int kMostDecimals = static_cast<int>(kMaxDecimals);

ChosenFormat Make(std::uint32_t code, int width, int decimals) {
  return {code, static_cast<std::uint32_t>(std::min(width, kWidest)),
          static_cast<std::uint32_t>(decimals)};
}

// `signs`: columns for what stands beside the digits.
ChosenFormat FitNumber(std::uint32_t code, const NumberEvidence& numbers, int signs) {
  const int whole = std::max(numbers.whole, 1) + signs;
  const int room = std::clamp(kWidest - whole - 1, 0, kMostDecimals);
  const int decimals = std::min(numbers.fraction, room);
  return Make(code, whole + (decimals > 0 ? decimals + 1 : 0), decimals);
}

ChosenFormat FitExponent(const NumberEvidence& numbers, int longest) {
  // The sign, a digit, the point, and an exponent of five characters.
  constexpr int kAround = 8;
  const int decimals = std::clamp(numbers.fraction, 1, kMostDecimals);
  return Make(kFormatE, std::max(longest, decimals + kAround), decimals);
}

// Widths of a time format: without seconds, with them, and with a point behind them.
struct TimeWidths {
  int minutes;
  int seconds;
  int point;
};

ChosenFormat FitTime(std::uint32_t code, const ColumnEvidence& evidence, const TimeWidths& widths,
                     int least) {
  const int fraction = std::min(evidence.secondFraction(), kMostDecimals);
  const int width = fraction > 0            ? widths.point + fraction
                    : evidence.hasSeconds() ? widths.seconds
                                            : widths.minutes;
  return Make(code, std::max(width, least), fraction);
}

// Two columns less where every year has two digits.
ChosenFormat FitDate(std::uint32_t code, const ColumnEvidence& evidence, Reading reading,
                     int width) {
  const std::int64_t dates = evidence.Read(reading);
  const bool shortYears = dates > 0 && evidence.shortYears() >= dates;
  return Make(code, shortYears ? width - 2 : width, 0);
}

ChosenFormat FitName(std::uint32_t code, int longest) {
  constexpr int kAbbreviation = 3;
  return Make(code, longest > 0 && longest <= kAbbreviation ? kAbbreviation : 9, 0);
}

ChosenFormat FitString(std::int64_t longest) {
  return {kFormatA,
          static_cast<std::uint32_t>(std::clamp<std::int64_t>(longest, 1, kMaxStringWidth)), 0};
}

}  // namespace

ChosenFormat FitFormat(std::uint32_t code, const ColumnEvidence& evidence,
                       DecimalCharacter decimal) {
  const NumberEvidence& numbers =
      decimal == DecimalCharacter::kComma ? evidence.comma() : evidence.point();
  const int longest = evidence.longestRead();
  switch (code) {
    case kFormatA:
      return FitString(evidence.longest().count);
    case kFormatComma:
      return FitNumber(code, evidence.point(), 0);
    case kFormatDot:
      return FitNumber(code, evidence.comma(), 0);
    case kFormatDollar:
      return FitNumber(code, evidence.point(), 1);
    case kFormatPct:
      return FitNumber(code, numbers, 1);
    case kFormatE:
      return FitExponent(numbers, longest);
    case kFormatN:
      return Make(code, std::max(numbers.whole, 1), 0);
    case kFormatDate:
      return FitDate(code, evidence, Reading::kDayMonthYear, 11);
    case kFormatEDate:
      return FitDate(code, evidence, Reading::kDayMonthYear, 10);
    case kFormatADate:
      return FitDate(code, evidence, Reading::kMonthDayYear, 10);
    case kFormatSDate:
      return FitDate(code, evidence, Reading::kYearMonthDay, 10);
    case kFormatJDate:
      return Make(code, 7, 0);
    case kFormatQyr:
      return FitDate(code, evidence, Reading::kQuarter, 8);
    case kFormatMoyr:
      return FitDate(code, evidence, Reading::kMonthYear, 8);
    case kFormatWkyr:
      return FitDate(code, evidence, Reading::kWeek, 10);
    case kFormatWkday:
    case kFormatMonth:
      return FitName(code, longest);
    case kFormatDateTime:
      return FitTime(code, evidence, {17, 20, 21}, 0);
    case kFormatYmdhms:
      return FitTime(code, evidence, {16, 19, 20}, 0);
    case kFormatTime:
      return FitTime(code, evidence, {5, 8, 9}, longest);
    case kFormatDTime:
      return FitTime(code, evidence, {9, 12, 13}, longest);
    case kFormatMTime:
      return FitTime(code, evidence, {5, 5, 6}, longest);
    default:
      return FitNumber(code, numbers, 0);
  }
}

}  // namespace library
