#include "library/sniff/ValueKinds.h"

#include <algorithm>
#include <array>

#include "HostFramework/ValueInput.h"
#include "detection/BlankTrim.h"
#include "model/FormatCode.h"
#include "model/ImportSettings.h"

namespace library {
namespace {

using textwizard::NumberForm;

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

// Keys of the classifier's rows that say little about a value by themselves: names of days and
// months, which are words, and minutes with seconds, which are numbers unless a colon stands there.
bool IsNameRow(int key) { return key == 1016 || key == 1017 || key == 1102 || key == 1103; }
bool IsMinutesRow(int key) { return key == 1116 || key == 1117; }
bool IsTimeRow(int key) { return (key >= 1018 && key <= 1022) || key == 1101; }

// The shortest date that is looked at, and the longest date and time.
constexpr std::size_t kShortestDate = 6;
constexpr std::size_t kLongestDate = 32;

}  // namespace

bool IsMissingText(std::string_view text) {
  static constexpr std::array<std::string_view, 8> kTexts = {"NA",  "N/A", "NULL", "null",
                                                             "NaN", "nan", ".",    "-"};
  return text.size() <= 4 && std::find(kTexts.begin(), kTexts.end(), text) != kTexts.end();
}

ValueKinds::ValueKinds() : classifier_(table_, textwizard::kDelimitedLines) {}

// A value that the classifier takes for a number: it does so of digits with any number of commas,
// and of words that strtod reads.
ValueKind ValueKinds::OfNumeric(std::string_view value) {
  const auto commas = std::count(value.begin(), value.end(), ',');
  if (commas == 0) {
    const bool plain = std::all_of(value.begin(), value.end(), [](char byte) {
      return IsDigit(byte) || byte == '.' || byte == '+' || byte == '-' || byte == 'e' ||
             byte == 'E';
    });
    return plain ? ValueKind::kNumber : ValueKind::kText;
  }
  const textwizard::NumberForms forms = classifier_.FormsOf(value);
  if (forms.test(static_cast<std::size_t>(NumberForm::kComma))) return ValueKind::kAmount;
  if (commas == 1 && forms.test(static_cast<std::size_t>(NumberForm::kDot))) {
    return ValueKind::kCommaNumber;
  }
  return ValueKind::kText;
}

// Dates that the host reads and the classifier has no layout for, ISO 8601 first among them.
bool ValueKinds::IsHostDate(std::string_view value) const {
  if (value.size() < kShortestDate || value.size() > kLongestDate || !IsDigit(value.front())) {
    return false;
  }
  const auto separators = std::count_if(value.begin(), value.end(), [](char byte) {
    return byte == '-' || byte == '/' || byte == '.' || byte == ' ';
  });
  if (separators < 2) return false;
  double seconds = 0;
  for (const int format : {textwizard::kFormatSDate, textwizard::kFormatYmdhms,
                           textwizard::kFormatDate, textwizard::kFormatADate}) {
    if (IocvConvertInput(value.data(), value.size(), format, 0, &seconds) == 0) return true;
  }
  return false;
}

ValueKind ValueKinds::Of(std::string_view value) {
  value = textwizard::TrimRight(textwizard::TrimLeft(value));
  if (value.empty()) return ValueKind::kEmpty;
  if (IsMissingText(value)) return ValueKind::kMissing;
  std::size_t point = 0;
  if (classifier_.IsPlainNumber(value, &point)) return ValueKind::kNumber;
  if (std::none_of(value.begin(), value.end(), IsDigit)) return ValueKind::kText;
  const unsigned possible = classifier_.PossibleClasses(value);
  if ((possible & textwizard::ValueClassifier::kNumber) != 0 && classifier_.IsNumeric(value)) {
    if (const ValueKind kind = OfNumeric(value); kind != ValueKind::kText) return kind;
  }
  if ((possible & textwizard::ValueClassifier::kNumberForm) != 0 &&
      classifier_.FormsOf(value).any()) {
    return ValueKind::kAmount;
  }
  if ((possible & textwizard::ValueClassifier::kDate) != 0) {
    const int key = classifier_.IsDateTime(value);
    const bool counts = key != 0 && !IsNameRow(key) &&
                        (!IsMinutesRow(key) || value.find(':') != std::string_view::npos);
    if (counts) return IsTimeRow(key) || IsMinutesRow(key) ? ValueKind::kTime : ValueKind::kDate;
  }
  return IsHostDate(value) ? ValueKind::kDate : ValueKind::kText;
}

}  // namespace library
