#include "tests/differential/NaiveDetection.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include <unicode/unistr.h>

#include "HostFramework/Text.h"
#include "model/FormatCode.h"

namespace naive {
namespace {

using textwizard::TxtWzVar;

constexpr std::uint32_t kLongestString = 32767;
constexpr std::int64_t kWidestNumber = 40;

std::string TrimLeft(std::string text) {
  return text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
}
std::string TrimRight(std::string text) { return text.erase(text.find_last_not_of(' ') + 1); }

bool Has(const std::string& text, char c) { return text.find(c) != std::string::npos; }

void UpdateVarSizes(TxtWzVar& variable, std::string value, const char* decimalCharacters,
                    const CountingRules& rules) {
  if (rules.oneCasePerLine) value = TrimLeft(TrimRight(value));
  auto length = static_cast<std::int64_t>(value.size());
  const std::size_t place = value.find_last_of(decimalCharacters);
  if (place != std::string::npos) {
    const auto point = static_cast<std::int64_t>(place);
    const std::int64_t decimals = length - point - 1;
    if (point == 0) --length;
    if (decimals > variable.decimals) {
      variable.width = static_cast<std::uint32_t>(
          std::min(kWidestNumber, decimals + (std::int64_t{variable.width} - variable.decimals)));
      variable.decimals = static_cast<std::int32_t>(decimals);
    }
  }
  if (rules.fixed || length > variable.width) variable.width = static_cast<std::uint32_t>(length);
}

// Minimum widths of dates and times; 0 for what has none.
std::uint32_t MinimumWidth(std::uint32_t format) {
  switch (format) {
    case 20:
    case 25:
      return 9;
    case 21:
    case 24:
    case 85:
      return 5;
    case 22:
      return 17;
    case 23:
    case 30:
    case 38:
    case 39:
      return 8;
    case 28:
    case 29:
      return 6;
    case 86:
      return 16;
    default:
      return 0;
  }
}

}  // namespace

bool Detection::IsNumeric(std::string value, char swapped) {
  value = TrimRight(value);
  if (value == "," || value == ".") return false;
  if (swapped != 0) std::replace(value.begin(), value.end(), swapped, swapped == '.' ? ',' : '.');
  for (;;) {
    if (value == "," || value == ".") return false;
    char* stop = nullptr;
    std::strtod(value.c_str(), &stop);
    const auto read = static_cast<std::size_t>(stop - value.c_str());
    if (read == value.size()) return true;
    if (value[read] != ',') return false;
    if (read + 1 == value.size()) return true;
    value = TrimRight(value.substr(read + 1));
  }
}

bool Detection::Matches(icu::RegexMatcher* matcher, const std::string& value) {
  if (!matcher) return false;
  std::string utf8 = value;
  if (!qUTF8mode()) QANTMBCodePageToU8(nullptr, utf8, value);
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
  matcher->reset(text);
  UErrorCode status = U_ZERO_ERROR;
  return matcher->matches(status) && U_SUCCESS(status);
}

bool Detection::MatchesRow(int key, const std::string& value) const {
  const auto row = table_.regExMappings().find(key);
  if (row == table_.regExMappings().end()) return false;
  std::string lower = value;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return Matches(row->second.matcher.get(), lower);
}

int Detection::IsDateTime(std::string value, bool trimmed) const {
  if (trimmed) value = TrimLeft(TrimRight(value));
  for (const auto& [key, row] : table_.regExMappings()) {
    if (MatchesRow(key, value)) return key;
  }
  return 0;
}

bool Detection::CountDate(const std::string& field, const CountingRules& rules,
                          TxtWzVar& variable) const {
  if (!rules.worker && variable.dateKey != 0 && MatchesRow(variable.dateKey, field)) {
    ++variable.dateCount;
    return true;
  }
  const int key = field.size() >= 3 ? IsDateTime(field, !rules.oneCasePerLine) : 0;
  if (key == 0) return false;
  ++variable.dateCount;
  const auto length = static_cast<std::int32_t>(field.size());
  const auto behind = [&](const char* marks) {
    const std::size_t point = field.find_last_of(marks);
    return point == std::string::npos ? -1 : length - static_cast<std::int32_t>(point) - 1;
  };
  int stored = key;
  if (key >= 1018 && key <= 1020) {
    if (!rules.worker && variable.dateKey >= 1116) stored = variable.dateKey;
    const std::int32_t decimals = behind(".,");
    variable.width = static_cast<std::uint32_t>(key == 1020 ? 11 : length + (decimals >= 0));
    variable.decimals = key == 1020 ? 2 : std::max(decimals, 0);
  } else if (key == 1017) {
    if (length == 3 && variable.dateKey == 1103) stored = 1103;
  } else if (key == 1103) {
    variable.width = 3;
  } else if (key == 1115) {
    variable.width = static_cast<std::uint32_t>(length);
    variable.decimals = std::max(behind(".,:"), 0);
  } else if (key == 1117) {
    variable.width = 8;
    variable.decimals = 2;
  }
  variable.dateKey = stored;
  const auto row = table_.regExMappings().find(stored);
  if (row != table_.regExMappings().end()) {
    variable.width = std::max(variable.width, static_cast<std::uint32_t>(row->second.width));
    variable.decimals = std::max<std::int32_t>(variable.decimals, row->second.decimals);
  }
  return true;
}

void Detection::Count(std::string field, const CountingRules& rules, TxtWzVar& variable) const {
  if (!(Has(field, ',') && Has(field, '.')) && IsNumeric(field, rules.swapped)) {
    ++variable.numericCount;
    if (Has(field, 'E') || Has(field, 'e')) variable.hasExponent = true;
    UpdateVarSizes(variable, field, ".,", rules);
    return;
  }
  if (rules.leadingSpaces) field = TrimLeft(field);
  if (rules.multipleSpaces) field = TrimRight(field);
  if (CountDate(field, rules, variable)) return;
  const auto counts = [&](char sign, icu::RegexMatcher* matcher, std::uint64_t TxtWzVar::*count,
                          const char* decimalCharacters) {
    if (!Has(field, sign) || !Matches(matcher, field)) return false;
    ++(variable.*count);
    UpdateVarSizes(variable, field, decimalCharacters, rules);
    return true;
  };
  if (counts('$', table_.dollarMatcher.get(), &TxtWzVar::dollarCount, ".") ||
      counts('%', table_.percentMatcher.get(), &TxtWzVar::percentCount, ".,") ||
      counts(',', table_.commaMatcher.get(), &TxtWzVar::commaCount, ".") ||
      counts('.', table_.dotMatcher.get(), &TxtWzVar::dotCount, ",")) {
    return;
  }
  const auto length = static_cast<std::uint32_t>(field.size());
  if (rules.worker) {
    if (length > 0) ++variable.stringCount;
    if (length > kLongestString) {
      variable.maxStringLength = kLongestString;
    } else if (length > variable.maxStringLength) {
      variable.stringTruncated = variable.stringTruncated || variable.maxStringLength != 0;
      variable.maxStringLength = length;
    }
    return;
  }
  if (!TrimLeft(field).empty()) ++variable.stringCount;
  if (length > kLongestString) {
    variable.maxStringLength = kLongestString;
  } else if (variable.width < length) {
    variable.maxStringLength = length;
  }
}

void Detection::Merge(const TxtWzVar& from, TxtWzVar& into) {
  into.width = std::max(into.width, from.width);
  into.decimals = std::max(into.decimals, from.decimals);
  into.maxStringLength = std::max(into.maxStringLength, from.maxStringLength);
  for (std::uint64_t TxtWzVar::*const count :
       {&TxtWzVar::stringCount, &TxtWzVar::numericCount, &TxtWzVar::dateCount,
        &TxtWzVar::percentCount, &TxtWzVar::dollarCount, &TxtWzVar::commaCount,
        &TxtWzVar::dotCount}) {
    into.*count += from.*count;
  }
  if (into.dateKey == 0) {
    into.dateKey = from.dateKey;
  } else if (from.dateKey != 0) {
    into.dateKey = std::min(into.dateKey, from.dateKey);
  }
  into.hasExponent |= from.hasExponent;
  into.missingStored |= from.missingStored;
  into.stringTruncated |= from.stringTruncated;
}

void Detection::Settle(TxtWzVar& variable, double percentage) const {
  const double sum = static_cast<double>(
      variable.stringCount + variable.numericCount + variable.dateCount + variable.dollarCount +
      variable.percentCount + variable.commaCount + variable.dotCount);
  const auto holds = [&](std::uint64_t count) {
    const double share = count == 0 ? 0 : static_cast<double>(count) * 100 / sum;
    return percentage > 50 ? share >= percentage : share == 100;
  };
  const bool majority = percentage > 50;
  std::uint32_t type = 1;
  if (holds(variable.stringCount)) {
    type = 1;
  } else if (holds(variable.numericCount)) {
    type = majority && variable.hasExponent ? 17 : 5;
  } else if (majority && holds(variable.dollarCount)) {
    type = 4;
  } else if (majority && holds(variable.commaCount)) {
    type = 3;
  } else if (majority && holds(variable.dotCount)) {
    type = 32;
  } else if (majority && holds(variable.percentCount)) {
    type = 31;
  } else if (holds(variable.dateCount)) {
    const auto row = table_.regExMappings().find(variable.dateKey);
    if (row == table_.regExMappings().end()) {
      type = 5;
      variable.width = 8;
      variable.decimals = 2;
    } else {
      type = static_cast<std::uint32_t>(row->second.formatType);
    }
  }
  variable.formatType = type;
  const std::int64_t width = variable.width;
  // So many characters besides the decimals.
  const std::int64_t others = type == 5 || type == 3 || type == 32 ? 1
                              : type == 4 || type == 31            ? 2
                              : type == 17                         ? 7
                                                                   : 0;
  if (others > 0 && variable.decimals > width - others) {
    variable.decimals = static_cast<std::int32_t>(std::max<std::int64_t>(0, width - others));
  }
  if (type == 1) {
    variable.width = std::min(std::max(variable.maxStringLength, variable.width), kLongestString);
    variable.maxStringLength = variable.width;
    variable.decimals = 0;
  }
  variable.width = std::max(variable.width, MinimumWidth(type));
}

}  // namespace naive
