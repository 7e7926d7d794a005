#include "detection/TypeSettling.h"

#include <algorithm>
#include <cstdint>

#include "HostFramework/Text.h"
#include "model/FormatCode.h"

namespace textwizard {

namespace {

// Above this threshold a share may decide; up to it only unanimity does.
constexpr double kMajority = 50.0;
constexpr double kAll = 100.0;

// What a variable becomes whose date layout or whose type is not known.
constexpr std::uint32_t kFallbackWidth = 8;
constexpr std::int32_t kFallbackDecimals = 2;

// A listing gives names and strings no more columns than these, and two between columns.
constexpr int kLongestName = 32;
constexpr int kWidestString = 24;
constexpr int kColumnGap = 2;

// Bytes of the host's text that one byte of the file may become.
constexpr std::uint32_t kUtf8Growth = 3;
constexpr std::uint32_t kCodePageGrowth = 2;

void FallBack(TxtWzVar& variable) {
  variable.formatType = kFormatF;
  variable.width = kFallbackWidth;
  variable.decimals = kFallbackDecimals;
}

void SettleDate(TxtWzVar& variable, const RegExMappings& table) {
  const auto row = table.regExMappings().find(variable.dateKey);
  if (row == table.regExMappings().end()) {
    FallBack(variable);
  } else {
    variable.formatType = static_cast<std::uint32_t>(row->second.formatType);
  }
}

// Width below which a date or time type cannot be shown; 0 for types without such a bound.
std::uint32_t MinimumWidth(std::uint32_t formatType) {
  const DisplayFormat* format = DisplayFormatOf(formatType);
  const bool isDateOrTime =
      format && (format->kind == ValueKind::kDate || format->kind == ValueKind::kDateTime ||
                 format->kind == ValueKind::kTime);
  return isDateOrTime ? static_cast<std::uint32_t>(MinWidthFound(*format)) : 0;
}

// Leaves room for `others` characters besides the decimals.
void LimitDecimals(TxtWzVar& variable, std::int64_t others) {
  const std::int64_t room = std::int64_t{variable.width} - others;
  variable.decimals = static_cast<std::int32_t>(
      std::max<std::int64_t>(0, std::min<std::int64_t>(variable.decimals, room)));
}

}  // namespace

void SettleType(TxtWzVar& variable, double minPercentage, const RegExMappings& table) {
  const double sum = static_cast<double>(
      variable.stringCount + variable.numericCount + variable.dateCount + variable.dollarCount +
      variable.percentCount + variable.commaCount + variable.dotCount);
  const auto share = [sum](std::uint64_t count) {
    return count == 0 ? 0.0 : static_cast<double>(count) * kAll / sum;
  };
  variable.formatType = kFormatA;
  if (minPercentage > kMajority) {
    // Only one class can hold more than half of the values.
    const auto decides = [&](std::uint64_t count) { return share(count) >= minPercentage; };
    if (decides(variable.numericCount)) {
      variable.formatType = variable.hasExponent ? kFormatE : kFormatF;
    } else if (decides(variable.dollarCount)) {
      variable.formatType = kFormatDollar;
    } else if (decides(variable.commaCount)) {
      variable.formatType = kFormatComma;
    } else if (decides(variable.dotCount)) {
      variable.formatType = kFormatDot;
    } else if (decides(variable.percentCount)) {
      variable.formatType = kFormatPct;
    } else if (decides(variable.dateCount)) {
      SettleDate(variable, table);
    }
    return;
  }
  // Amounts, percentages and exponents are not told apart here.
  if (share(variable.numericCount) == kAll) {
    variable.formatType = kFormatF;
  } else if (share(variable.dateCount) == kAll) {
    SettleDate(variable, table);
  }
}

void NormaliseFormat(TxtWzVar& variable) {
  switch (variable.formatType) {
    case kFormatSkip:
    case kFormatWkday:
    case kFormatMonth:
      return;
    case kFormatA:
      // Also where a wider number was seen (docs/decisions.md).
      variable.width =
          std::min(std::max(variable.maxStringLength, variable.width), kMaxStringWidth);
      variable.maxStringLength = variable.width;
      variable.decimals = 0;
      return;
    case kFormatF:
    case kFormatComma:
    case kFormatDot:
      LimitDecimals(variable, 1);  // the decimal character
      return;
    case kFormatDollar:
    case kFormatPct:
      LimitDecimals(variable, 2);  // and the sign of the unit
      return;
    case kFormatN:
      variable.decimals = 0;
      return;
    case kFormatE:
      LimitDecimals(variable, 7);  // sign, digit, decimal character and the exponent
      return;
    default:
      break;
  }
  const std::uint32_t minimum = MinimumWidth(variable.formatType);
  if (minimum == 0) {
    FallBack(variable);
  } else {
    variable.width = std::max(variable.width, minimum);
  }
}

void DefineVariable(QANT_DataSource* source, TxtWzVar& variable, FileEncoding encoding) {
  if (variable.formatType == kFormatSkip) return;
  const bool isString = variable.formatType == kFormatA;
  std::uint32_t width = variable.width;
  int status = 0;
  QANT_Variable* made =
      QANT_DataSource::MakeVariable(source, isString ? static_cast<int>(width) : 0, &status);
  made->SetName(variable.name.c_str());
  if (isString) {
    const bool utf16 =
        encoding == kEncodingUtf16BigEndian || encoding == kEncodingUtf16LittleEndian;
    if (qUTF8mode()) {
      if (utf16 || encoding == kEncodingLocale) width *= kUtf8Growth;
    } else if (utf16) {
      width *= kCodePageGrowth;
    }
    width = std::min(width, kMaxStringWidth);
    variable.maxStringLength = width;
  }
  const auto type = static_cast<int>(variable.formatType);
  const auto shown = static_cast<int>(width);
  made->SetFormat(type, shown, variable.decimals);
  made->SetWriteFormat(type, shown, variable.decimals);
  if (made->GetDisplayWidth() < shown) {
    const int columns = isString ? std::min(shown, kWidestString) : shown;
    const int nameColumns =
        static_cast<int>(std::min<std::size_t>(variable.name.size(), kLongestName));
    made->SetDisplayWidth(std::max(nameColumns, columns) + kColumnGap);
  }
}

}  // namespace textwizard
