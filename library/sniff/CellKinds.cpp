#include "library/sniff/CellKinds.h"

#include <algorithm>

#include "detection/BlankTrim.h"
#include "library/report/ImportWatch.h"
#include "library/types/ValueReader.h"
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

}  // namespace

CellKinds::CellKinds()
    : classifier_(table_, textwizard::kDelimitedLines), nulls_(DefaultNullTexts()) {}

// A value that the classifier takes for a number: it does so of digits with any number of commas,
// and of words that strtod reads.
CellKind CellKinds::OfNumeric(std::string_view value) {
  const auto commas = std::count(value.begin(), value.end(), ',');
  if (commas == 0) {
    const bool plain = std::all_of(value.begin(), value.end(), [](char byte) {
      return IsDigit(byte) || byte == '.' || byte == '+' || byte == '-' || byte == 'e' ||
             byte == 'E';
    });
    return plain ? CellKind::kNumber : CellKind::kText;
  }
  const textwizard::NumberForms forms = classifier_.FormsOf(value);
  if (forms.test(static_cast<std::size_t>(NumberForm::kComma))) return CellKind::kAmount;
  if (commas == 1 && forms.test(static_cast<std::size_t>(NumberForm::kDot))) {
    return CellKind::kCommaNumber;
  }
  return CellKind::kText;
}

// Dates and times that the conversion reads and the classifier has no layout for, ISO 8601 first
// among them.
CellKind CellKinds::OfOthers(std::string_view value) {
  const ReadingSet readings = ReadValue(value).set;
  for (const Reading date : {Reading::kYearMonthDay, Reading::kMonthDayYear, Reading::kDayMonthYear,
                             Reading::kYearMonthDayTime, Reading::kDayMonthYearTime}) {
    if (readings.Has(date)) return CellKind::kDate;
  }
  return CellKind::kText;
}

CellKind CellKinds::Of(std::string_view value) {
  value = textwizard::TrimRight(textwizard::TrimLeft(value));
  if (value.empty()) return CellKind::kEmpty;
  if (nulls_.HoldsBare(value)) return CellKind::kMissing;
  std::size_t point = 0;
  if (classifier_.IsPlainNumber(value, &point)) return CellKind::kNumber;
  if (std::none_of(value.begin(), value.end(), IsDigit)) return CellKind::kText;
  const unsigned possible = classifier_.PossibleClasses(value);
  if ((possible & textwizard::ValueClassifier::kNumber) != 0 && classifier_.IsNumeric(value)) {
    if (const CellKind kind = OfNumeric(value); kind != CellKind::kText) return kind;
  }
  if ((possible & textwizard::ValueClassifier::kNumberForm) != 0 &&
      classifier_.FormsOf(value).any()) {
    return CellKind::kAmount;
  }
  if ((possible & textwizard::ValueClassifier::kDate) != 0) {
    const int key = classifier_.IsDateTime(value);
    const bool counts = key != 0 && !IsNameRow(key) &&
                        (!IsMinutesRow(key) || value.find(':') != std::string_view::npos);
    if (counts) return IsTimeRow(key) || IsMinutesRow(key) ? CellKind::kTime : CellKind::kDate;
  }
  return OfOthers(value);
}

}  // namespace library
