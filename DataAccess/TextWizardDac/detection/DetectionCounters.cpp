#include "detection/DetectionCounters.h"

#include <algorithm>

#include "detection/BlankTrim.h"
#include "detection/VariableWidening.h"
#include "model/FormatCode.h"

namespace textwizard {

namespace {

// Keys of rows whose values set more than the row's own width and decimals.
constexpr int kMonth9 = 1017;
constexpr int kTime5 = 1018;
constexpr int kTime8 = 1019;
constexpr int kTime11 = 1020;
constexpr int kMonth3 = 1103;
constexpr int kYmdhms22 = 1115;
constexpr int kMTime5 = 1116;
constexpr int kMTime7 = 1117;

// A shorter text is no date.
constexpr std::size_t kShortestDate = 3;
constexpr std::size_t kShortMonthName = 3;

bool Has(std::string_view field, char c) { return field.find(c) != std::string_view::npos; }

}  // namespace

DetectionCounters::DetectionCounters(const RegExMappings& table, const DetectionRules& rules)
    : rules_(rules), table_(table), classifier_(table, rules.arrangement) {}

CountedAs DetectionCounters::CountUnplain(std::string_view field, unsigned possible,
                                          TxtWzVar& variable) {
  if ((possible & ValueClassifier::kNumber) != 0 && CountNumber(field, variable)) {
    return CountedAs::kNumber;
  }
  order_ = DayAndMonth::kNone;
  if (rules_.leadingSpaces || rules_.multipleSpaces) {
    if (rules_.leadingSpaces) field = TrimLeft(field);
    if (rules_.multipleSpaces) field = TrimRight(field);
    possible = classifier_.PossibleClasses(field);
  }
  if ((possible & ValueClassifier::kDate) != 0 && CountDate(field, variable)) {
    return CountedAs::kDate;
  }
  if ((possible & ValueClassifier::kNumberForm) != 0) {
    const CountedAs as = CountNumberForm(field, variable);
    if (as != CountedAs::kString) return as;
  }
  CountString(field, variable);
  return CountedAs::kString;
}

bool DetectionCounters::CountNumber(std::string_view field, TxtWzVar& variable) {
  if (CountPadded(field, variable)) return true;
  // With both separators a text is no number here, whatever the parser says.
  if (!IsNumeric(field) || (Has(field, ',') && Has(field, '.'))) return false;
  ++variable.numericCount;
  if (Has(field, 'E') || Has(field, 'e')) variable.hasExponent = true;
  UpdateVarSizes(variable, field, ".,", rules_.arrangement);
  return true;
}

// As nearly all numbers of fixed columns are.
bool DetectionCounters::CountPadded(std::string_view field, TxtWzVar& variable) {
  const bool padded = field.front() == ' ' || field.back() == ' ';
  if (!padded || rules_.swapDecimal) return false;
  std::string_view number = TrimLeft(field);
  const std::size_t blanks = field.size() - number.size();
  number = TrimRight(number);
  std::size_t point = 0;
  if (!classifier_.IsPlainNumber(number, &point)) return false;
  ++variable.numericCount;
  if (rules_.arrangement == kDelimitedLines) {
    UpdateVarSizes(variable, number.size(), point, rules_.arrangement);
  } else {
    if (point != std::string_view::npos) point += blanks;
    UpdateVarSizes(variable, field.size(), point, rules_.arrangement);
  }
  return true;
}

bool DetectionCounters::IsNumeric(std::string_view field) {
  // Only a worker is ever asked to swap.
  return rules_.swapDecimal ? classifier_.IsNumericSwapped(field, rules_.decimalCharacter)
                            : classifier_.IsNumeric(field);
}

bool DetectionCounters::CountDate(std::string_view field, TxtWzVar& variable) {
  // The sampling pass tries the adopted row first and then leaves the sizes as they are; a worker
  // looks for the first matching row every time.
  if (rules_.pass == DetectionPass::kSampling && variable.dateKey != 0 &&
      classifier_.MatchesRow(field, variable.dateKey)) {
    ++variable.dateCount;
    order_ = classifier_.order();
    dateKey_ = variable.dateKey;
    return true;
  }
  if (field.size() < kShortestDate) return false;
  const int key = classifier_.IsDateTime(field);
  order_ = classifier_.order();
  if (key == 0) return false;
  ++variable.dateCount;
  dateKey_ = key;
  AdoptDateKey(key, field, variable);
  return true;
}

void DetectionCounters::AdoptDateKey(int key, std::string_view field, TxtWzVar& variable) {
  bool keepKey = false;
  switch (key) {
    case kYmdhms22: {
      const std::size_t point = LastOf(field, ".,:");
      variable.width = AsWidth(field.size());
      variable.decimals = point == std::string_view::npos
                              ? 0
                              : static_cast<std::int32_t>(AsWidth(field.size() - point - 1));
      break;
    }
    case kMTime7:
      variable.width = 8;
      variable.decimals = 2;
      break;
    case kMonth3:
      variable.width = 3;
      break;
    case kTime5:
    case kTime8:
      // Neither layout has a fraction.
      variable.width = AsWidth(field.size());
      variable.decimals = 0;
      keepKey = KeepsMinutes(variable);
      break;
    case kTime11:
      variable.width = 11;
      variable.decimals = 2;
      keepKey = KeepsMinutes(variable);
      break;
    case kMonth9:
      // A name such as "may" is short and full at once.
      keepKey = field.size() == kShortMonthName && variable.dateKey == kMonth3;
      break;
    default:
      break;
  }
  if (!keepKey) variable.dateKey = key;
  if (dateRow_ == nullptr || dateRow_->key != variable.dateKey) {
    const auto row = table_.regExMappings().find(variable.dateKey);
    if (row == table_.regExMappings().end()) return;
    dateRow_ = &row->second;
  }
  variable.width = std::max(variable.width, static_cast<std::uint32_t>(dateRow_->width));
  variable.decimals = std::max(variable.decimals, std::int32_t{dateRow_->decimals});
}

// The sampling pass does not give up a minutes-and-seconds layout for hours and minutes.
bool DetectionCounters::KeepsMinutes(const TxtWzVar& variable) const {
  return rules_.pass == DetectionPass::kSampling && variable.dateKey >= kMTime5;
}

CountedAs DetectionCounters::CountNumberForm(std::string_view field, TxtWzVar& variable) {
  struct Form {
    char character;
    NumberForm form;
    CountedAs as;
    std::uint64_t TxtWzVar::*count;
    std::string_view decimalCharacters;
  };
  static constexpr Form kForms[] = {
      {'$', NumberForm::kDollar, CountedAs::kDollar, &TxtWzVar::dollarCount, "."},
      {'%', NumberForm::kPercentage, CountedAs::kPercent, &TxtWzVar::percentCount, ".,"},
      {',', NumberForm::kComma, CountedAs::kComma, &TxtWzVar::commaCount, "."},
      {'.', NumberForm::kDot, CountedAs::kDot, &TxtWzVar::dotCount, ","},
  };
  forms_ = classifier_.FormsOf(field);
  if (forms_.none()) return CountedAs::kString;
  for (const Form& form : kForms) {
    // The patterns alone would take plain digits, too.
    if (!forms_.test(static_cast<std::size_t>(form.form)) || !Has(field, form.character)) continue;
    ++(variable.*form.count);
    UpdateVarSizes(variable, field, form.decimalCharacters, rules_.arrangement);
    return form.as;
  }
  return CountedAs::kString;
}

void DetectionCounters::Merge(const TxtWzVar& from, TxtWzVar& into) {
  into.width = std::max(into.width, from.width);
  into.decimals = std::max(into.decimals, from.decimals);
  into.maxStringLength = std::max(into.maxStringLength, from.maxStringLength);
  into.stringCount += from.stringCount;
  into.numericCount += from.numericCount;
  into.dateCount += from.dateCount;
  into.percentCount += from.percentCount;
  into.dollarCount += from.dollarCount;
  into.commaCount += from.commaCount;
  into.dotCount += from.dotCount;
  if (from.dateKey != 0 && (into.dateKey == 0 || from.dateKey < into.dateKey)) {
    into.dateKey = from.dateKey;
  }
  into.hasExponent = into.hasExponent || from.hasExponent;
  into.missingStored = into.missingStored || from.missingStored;
  into.stringTruncated = into.stringTruncated || from.stringTruncated;
}

}  // namespace textwizard
