#include "library/sniff/ColumnFormats.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include <fmt/format.h>

#include "HostFramework/ValueInput.h"
#include "model/FormatTable.h"

namespace library {
namespace {

using textwizard::FormatCode;

// Digits that a double keeps, whatever they are.
constexpr std::size_t kSafeDigits = 15;
constexpr std::size_t kWidestNumber = textwizard::kMaxNumberWidth;
constexpr std::size_t kMostDecimals = textwizard::kMaxDecimals;
constexpr std::size_t kWidestString = textwizard::kMaxStringWidth;

// Dates and times in the order in which they are tried: ISO layouts first, then what is usual.
constexpr std::array kDateFormats = {
    textwizard::kFormatSDate, textwizard::kFormatYmdhms, textwizard::kFormatADate,
    textwizard::kFormatEDate, textwizard::kFormatDate,   textwizard::kFormatDateTime,
    textwizard::kFormatTime,  textwizard::kFormatDTime,  textwizard::kFormatMoyr,
    textwizard::kFormatQyr,   textwizard::kFormatWkyr,
};

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

std::size_t CountDigits(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsDigit));
}

bool HasLeadingZero(std::string_view text) {
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  return text.size() > 1 && text[0] == '0' && IsDigit(text[1]);
}

// Whether a double holds the number that the digits of `text` say: their first digits suffice, or
// it is written back with the same ones.
bool KeepsDigits(std::string_view text, char decimal) {
  std::string digits;
  for (const char byte : text) {
    if (IsDigit(byte)) digits += byte;
    if (byte == decimal) digits += '.';
    if (byte == 'e' || byte == 'E') break;
  }
  if (CountDigits(digits) <= kSafeDigits) return true;
  double value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  char back[kWidestNumber + 1];
  const auto end = std::to_chars(back, back + sizeof back, value, std::chars_format::fixed);
  if (end.ec != std::errc()) return false;
  const bool fraction = digits.find('.') != std::string::npos;
  while (fraction && (digits.back() == '0' || digits.back() == '.')) digits.pop_back();
  return std::string_view(back, static_cast<std::size_t>(end.ptr - back)) == digits;
}

bool Reads(std::string_view text, FormatCode format) {
  double value = 0;
  return IocvConvertInput(text.data(), text.size(), static_cast<int>(format), 0, &value) == 0;
}

std::string Named(FormatCode format, std::size_t width, std::size_t decimals) {
  const textwizard::FormatRow& row = *textwizard::FindFormat(format);
  width = std::clamp<std::size_t>(width, row.MinWidth(static_cast<std::uint32_t>(decimals)),
                                  row.MaxWidth());
  return decimals == 0 ? fmt::format("{}{}", row.name, width)
                       : fmt::format("{}{}.{}", row.name, width, decimals);
}

struct Numbers {
  std::size_t width = 1;
  std::size_t decimals = 0;
  bool grouped = false;
  bool dollar = false;
  bool percent = false;
  bool exponent = false;
};

// What a column of numbers needs; nothing where a value is none, or would lose something.
std::optional<Numbers> Measure(const std::vector<std::string_view>& values, char decimal) {
  Numbers numbers;
  const char group = decimal == ',' ? '.' : ',';
  for (const std::string_view text : values) {
    if (HasLeadingZero(text) || !KeepsDigits(text, decimal)) return std::nullopt;
    numbers.width = std::max(numbers.width, text.size());
    numbers.grouped |= text.find(group) != std::string_view::npos;
    numbers.dollar |= text.find('$') != std::string_view::npos;
    numbers.percent |= text.find('%') != std::string_view::npos;
    numbers.exponent |= text.find_first_of("eE") != std::string_view::npos;
    if (const std::size_t point = text.rfind(decimal); point != std::string_view::npos) {
      numbers.decimals = std::max(numbers.decimals, CountDigits(text.substr(point)));
    }
  }
  if (numbers.dollar && numbers.percent) return std::nullopt;
  numbers.decimals = std::min(numbers.decimals, kMostDecimals);
  numbers.width = std::min(std::max(numbers.width, numbers.decimals + 2), kWidestNumber);
  return numbers;
}

std::optional<std::string> NumberFormat(const std::vector<std::string_view>& values,
                                        DecimalCharacter decimal) {
  const bool comma = decimal == DecimalCharacter::kComma;
  const std::optional<Numbers> numbers = Measure(values, comma ? ',' : '.');
  if (!numbers) return std::nullopt;
  FormatCode format = textwizard::kFormatF;
  if (numbers->dollar) {
    format = textwizard::kFormatDollar;
  } else if (numbers->percent) {
    format = textwizard::kFormatPct;
  } else if (numbers->exponent) {
    format = textwizard::kFormatE;
  } else if (numbers->grouped) {
    format = comma ? textwizard::kFormatDot : textwizard::kFormatComma;
  }
  return Named(format, numbers->width, numbers->decimals);
}

std::string StringFormat(const std::vector<const SampleCell*>& values) {
  std::size_t width = 1;
  for (const SampleCell* cell : values) width = std::max(width, cell->text.size());
  return fmt::format("A{}", std::min(width, kWidestString));
}

}  // namespace

std::string FormatOf(const std::vector<const SampleCell*>& values, DecimalCharacter decimal) {
  std::vector<std::string_view> texts;
  bool numbers = true;
  bool dates = true;
  for (const SampleCell* cell : values) {
    if (cell->empty() || cell->kind == ValueKind::kMissing) continue;
    texts.push_back(cell->text);
    numbers = numbers && cell->kind >= ValueKind::kNumber && cell->kind <= ValueKind::kAmount;
    dates = dates && (cell->kind == ValueKind::kDate || cell->kind == ValueKind::kTime);
  }
  if (texts.empty()) return StringFormat(values);
  if (numbers) {
    if (const auto format = NumberFormat(texts, decimal)) return *format;
  }
  if (dates) {
    std::size_t width = 0;
    for (const std::string_view text : texts) width = std::max(width, text.size());
    for (const FormatCode format : kDateFormats) {
      const bool all = std::all_of(texts.begin(), texts.end(),
                                   [&](std::string_view text) { return Reads(text, format); });
      if (all) return Named(format, width, 0);
    }
  }
  return StringFormat(values);
}

DecimalAnswer FindDecimal(const SampleTable& table, std::size_t firstRow, std::size_t endRow) {
  DecimalAnswer comma;
  DecimalAnswer point;
  std::size_t commas = 0;
  std::size_t points = 0;
  for (std::size_t i = firstRow; i < std::min(endRow, table.rows().size()); ++i) {
    const SampleRow& row = table.rows()[i];
    const SampleCell* const cells = table.Cells(row);
    for (std::size_t j = 0; j < row.count; ++j) {
      const std::string_view text = cells[j].text;
      const bool isComma = cells[j].kind == ValueKind::kCommaNumber;
      const bool isPoint =
          (cells[j].kind == ValueKind::kNumber || cells[j].kind == ValueKind::kAmount) &&
          text.find('.') != std::string_view::npos;
      if (isComma && commas++ == 0) {
        comma.witness = text;
        comma.row = i;
      }
      if (isPoint && points++ == 0) {
        point.witness = text;
        point.row = i;
      }
    }
  }
  comma.decimal = DecimalCharacter::kComma;
  comma.against = points;
  point.against = commas;
  return commas > points ? comma : point;
}

}  // namespace library
