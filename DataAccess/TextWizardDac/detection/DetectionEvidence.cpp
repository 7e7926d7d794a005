#include "detection/DetectionEvidence.h"

#include <algorithm>

#include "watch/NullTexts.h"
#include "watch/ToldText.h"

namespace textwizard {
namespace {

void Clear(ImportWitness& witness) {
  witness.count = 0;
  witness.line = 0;
  witness.text.clear();
}

void See(ImportWitness& witness, std::string_view text, std::int64_t line) {
  witness.line = line;
  witness.text.assign(ToldText(text));
}

void Count(ImportWitness& witness, std::string_view text, std::int64_t line) {
  if (++witness.count == 1) See(witness, text, line);
}

// Whoever comes first in the file stays; of one line, whoever was there before.
void MergeFirst(const ImportWitness& from, std::int64_t lines, ImportWitness& into) {
  if (from.line == 0 || (into.line != 0 && into.line <= from.line + lines)) return;
  into.line = from.line + lines;
  into.text = from.text;
}

void MergeCounted(const ImportWitness& from, std::int64_t lines, ImportWitness& into) {
  into.count += from.count;
  MergeFirst(from, lines, into);
}

constexpr ImportValueClass ClassOf(CountedAs as) {
  switch (as) {
    case CountedAs::kPlainNumber:
    case CountedAs::kNumber:
      return ImportValueClass::kNumber;
    case CountedAs::kDate:
      return ImportValueClass::kDate;
    case CountedAs::kDollar:
      return ImportValueClass::kDollar;
    case CountedAs::kPercent:
      return ImportValueClass::kPercent;
    case CountedAs::kComma:
      return ImportValueClass::kComma;
    case CountedAs::kDot:
      return ImportValueClass::kDot;
    default:
      return ImportValueClass::kString;
  }
}

// A day and a month in digits, in either order, that a year follows.
struct DayAndMonth {
  int first = 0;
  int second = 0;
};

// Takes a number of `least` to `most` digits off the front; -1 when there is none.
int TakeNumber(std::string_view& text, std::size_t least, std::size_t most) {
  int number = 0;
  std::size_t digits = 0;
  while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
    if (++digits > most) return -1;
    number = number * 10 + (text[digits - 1] - '0');
  }
  if (digits < least) return -1;
  text.remove_prefix(digits);
  return number;
}

bool TakeSeparator(std::string_view& text) {
  constexpr std::string_view kSeparators = "/.- ";
  if (text.empty() || kSeparators.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

// Zeros when the text is nothing like that.
DayAndMonth DayAndMonthOf(std::string_view text) {
  constexpr std::size_t kShortest = 6;
  constexpr std::size_t kLongest = 10;
  if (text.size() < kShortest || text.size() > kLongest) return {};
  const int first = TakeNumber(text, 1, 2);
  if (first < 1 || !TakeSeparator(text)) return {};
  const int second = TakeNumber(text, 1, 2);
  if (second < 1 || !TakeSeparator(text)) return {};
  const bool year = (text.size() == 2 || text.size() == 4) && TakeNumber(text, 2, 4) >= 0;
  return year && text.empty() ? DayAndMonth{first, second} : DayAndMonth{};
}

}  // namespace

void DetectionEvidence::Clear() {
  for (ImportWitness& witness : classes_) textwizard::Clear(witness);
  for (Layout& layout : layouts_) textwizard::Clear(layout.seen);
  for (ImportWitness* const witness : {&dayFirst_, &monthFirst_, &eitherOrder_, &decimalComma_,
                                       &groupingComma_, &eitherComma_, &leadingZeros_, &longest_}) {
    textwizard::Clear(*witness);
  }
  blanks_ = empties_ = 0;
}

void DetectionEvidence::AddNew(std::string_view field, CountedAs as, std::int64_t line,
                               DetectionCounters& counters) {
  const std::string_view text = WithoutBlanks(field);
  if (text.empty()) {
    ++blanks_;
    return;
  }
  ImportWitness& seen = classes_[static_cast<std::size_t>(ClassOf(as))];
  if (seen.line == 0) See(seen, field, line);
  if (static_cast<std::int64_t>(text.size()) > longest_.count) {
    longest_.count = static_cast<std::int64_t>(text.size());
    See(longest_, text, line);
  }
  switch (as) {
    case CountedAs::kPlainNumber:
    case CountedAs::kNumber:
      if (text.front() == '0' && text.size() > 1 && IsDigit(text[1])) {
        Count(leadingZeros_, field, line);
      }
      if (as == CountedAs::kNumber) AddComma(text, text, line, counters);
      break;
    case CountedAs::kDate:
      Count(LayoutOf(counters.dateKey()), field, line);
      AddDayAndMonth(text, line);
      break;
    case CountedAs::kString:
      AddDayAndMonth(text, line);
      break;
    case CountedAs::kDollar:
      AddComma(text.substr(text.find('$') + 1), text, line, counters);
      break;
    case CountedAs::kComma:
    case CountedAs::kDot:
      AddComma(text, text, line, counters);
      break;
    case CountedAs::kPercent:
      // Without commas, or it is no percentage.
      break;
  }
}

void DetectionEvidence::AddDayAndMonth(std::string_view text, std::int64_t line) {
  constexpr int kMonths = 12;
  constexpr int kDays = 31;
  const auto [first, second] = DayAndMonthOf(text);
  if (first == 0 || first > kDays || second > kDays) return;
  if (first <= kMonths && second <= kMonths) {
    Count(eitherOrder_, text, line);
  } else if (second <= kMonths) {
    Count(dayFirst_, text, line);
  } else if (first <= kMonths) {
    Count(monthFirst_, text, line);
  }
}

void DetectionEvidence::AddComma(std::string_view amount, std::string_view text, std::int64_t line,
                                 DetectionCounters& counters) {
  if (amount.find(',') == std::string_view::npos) return;
  if (amount.front() == '+') amount.remove_prefix(1);
  const NumberForms forms = counters.FormsOf(amount);
  const bool decimal = forms.test(static_cast<std::size_t>(NumberForm::kDot));
  // Nobody writes a group of a zero alone before others.
  const std::string_view digits = amount.substr(amount.starts_with('-') ? 1 : 0);
  const bool grouping =
      forms.test(static_cast<std::size_t>(NumberForm::kComma)) && !digits.starts_with("0,");
  if (decimal && grouping) {
    Count(eitherComma_, text, line);
  } else if (decimal) {
    Count(decimalComma_, text, line);
  } else if (grouping) {
    Count(groupingComma_, text, line);
  }
}

ImportWitness& DetectionEvidence::LayoutOf(int key) {
  const auto place = std::lower_bound(layouts_.begin(), layouts_.end(), key,
                                      [](const Layout& layout, int k) { return layout.key < k; });
  if (place != layouts_.end() && place->key == key) return place->seen;
  return layouts_.insert(place, {key, {}})->seen;
}

void DetectionEvidence::Merge(const DetectionEvidence& from, std::int64_t lines) {
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    MergeFirst(from.classes_[i], lines, classes_[i]);
  }
  for (const Layout& layout : from.layouts_) {
    if (layout.seen.count > 0) MergeCounted(layout.seen, lines, LayoutOf(layout.key));
  }
  MergeCounted(from.dayFirst_, lines, dayFirst_);
  MergeCounted(from.monthFirst_, lines, monthFirst_);
  MergeCounted(from.eitherOrder_, lines, eitherOrder_);
  MergeCounted(from.decimalComma_, lines, decimalComma_);
  MergeCounted(from.groupingComma_, lines, groupingComma_);
  MergeCounted(from.eitherComma_, lines, eitherComma_);
  MergeCounted(from.leadingZeros_, lines, leadingZeros_);
  const bool longer = from.longest_.count > longest_.count;
  if (longer) longest_.line = 0;
  if (longer || from.longest_.count == longest_.count) {
    longest_.count = from.longest_.count;
    MergeFirst(from.longest_, lines, longest_);
  }
  blanks_ += from.blanks_;
  empties_ += from.empties_;
}

ImportEvidence DetectionEvidence::Told(const TxtWzVar& counters, const RegExMappings& table) const {
  ImportEvidence told;
  told.classes = classes_;
  const auto set = [&told](ImportValueClass valueClass, std::uint64_t count) {
    told.classes[static_cast<std::size_t>(valueClass)].count = static_cast<std::int64_t>(count);
  };
  set(ImportValueClass::kString, counters.stringCount);
  set(ImportValueClass::kNumber, counters.numericCount);
  set(ImportValueClass::kDate, counters.dateCount);
  set(ImportValueClass::kDollar, counters.dollarCount);
  set(ImportValueClass::kPercent, counters.percentCount);
  set(ImportValueClass::kComma, counters.commaCount);
  set(ImportValueClass::kDot, counters.dotCount);
  told.blanks = blanks_;
  told.empties = empties_;
  for (const Layout& layout : layouts_) {
    if (layout.seen.count == 0) continue;
    const RegExToFormatMapping& row = table.regExMappings().at(layout.key);
    told.layouts.push_back({row.icuPattern, row.formatName, layout.seen});
  }
  told.dayFirst = dayFirst_;
  told.monthFirst = monthFirst_;
  told.eitherOrder = eitherOrder_;
  told.decimalComma = decimalComma_;
  told.groupingComma = groupingComma_;
  told.eitherComma = eitherComma_;
  told.leadingZeros = leadingZeros_;
  told.longest = longest_;
  return told;
}

}  // namespace textwizard
