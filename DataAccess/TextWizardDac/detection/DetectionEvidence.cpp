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

bool Has(std::string_view text, char c) { return text.find(c) != std::string_view::npos; }

std::string_view WithoutPlus(std::string_view amount) {
  return amount.substr(amount.starts_with('+') ? 1 : 0);
}

}  // namespace

void DetectionEvidence::Clear() {
  known_.fill(0);
  for (ImportWitness& witness : classes_) textwizard::Clear(witness);
  for (Layout& layout : layouts_) textwizard::Clear(layout.seen);
  for (ImportWitness& witness : orders_) textwizard::Clear(witness);
  OrderOf(DayAndMonth::kNone).count = 1;
  for (ImportWitness* const witness :
       {&decimalComma_, &groupingComma_, &eitherComma_, &leadingZeros_, &longest_}) {
    textwizard::Clear(*witness);
  }
  blanks_ = empties_ = 0;
  latestKey_ = 0;
  latest_.fill(0);
}

std::int64_t DetectionEvidence::CountOf(const Layout& layout) const {
  std::int64_t count = layout.seen.count;
  if (layout.key != latestKey_) return count;
  for (std::size_t order = 0; order < latest_.size(); ++order) count += LatestOf(order);
  return count;
}

ImportWitness DetectionEvidence::WholeOrder(DayAndMonth order) const {
  ImportWitness whole = orders_[static_cast<std::size_t>(order)];
  whole.count += LatestOf(static_cast<std::size_t>(order));
  return whole;
}

// The class has a first one, so that shorter values of it tell nothing of that.
void DetectionEvidence::Know(CountedAs as) {
  std::size_t& known = known_[static_cast<std::size_t>(as)];
  if (known == 0) known = static_cast<std::size_t>(longest_.count);
}

void DetectionEvidence::Add(std::string_view field, CountedAs as, std::int64_t line,
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
    for (std::size_t& known : known_) {
      if (known != 0) known = text.size();
    }
  }
  Know(as);
  switch (as) {
    case CountedAs::kPlainNumber:
    case CountedAs::kNumber:
      if (text.front() == '0' && text.size() > 1 && IsDigit(text[1])) {
        Count(leadingZeros_, field, line);
      }
      if (as == CountedAs::kNumber && Has(text, ',')) {
        AddComma(text, counters.FormsOf(WithoutPlus(text)), text, line);
      }
      break;
    case CountedAs::kDate: {
      const DayAndMonth order = counters.OrderOf(text);
      Count(LayoutOf(counters.dateKey()), field, line);
      AddOrder(order, text, line);
      // The next one like it is taken.
      std::int64_t& latest = latest_[static_cast<std::size_t>(order)];
      latest = std::max<std::int64_t>(latest, 1);
      break;
    }
    case CountedAs::kString:
      AddOrder(counters.OrderOf(text), text, line);
      break;
    case CountedAs::kDollar:
      if (Has(text, ',')) {
        const std::string_view amount = text.substr(text.find('$') + 1);
        AddComma(amount, counters.FormsOf(WithoutPlus(amount)), text, line);
      }
      break;
    case CountedAs::kComma:
    case CountedAs::kDot:
      if (Has(text, ',')) {
        // Its forms are known, unless they were asked of something else.
        const bool bare = text.size() == field.size() && text.front() != '+';
        AddComma(text, bare ? counters.forms() : counters.FormsOf(WithoutPlus(text)), text, line);
      }
      break;
    case CountedAs::kPercent:
      // Without commas, or it is no percentage.
      break;
  }
}

void DetectionEvidence::AddOrder(DayAndMonth order, std::string_view text, std::int64_t line) {
  if (order != DayAndMonth::kNone) Count(OrderOf(order), text, line);
}

void DetectionEvidence::AddComma(std::string_view amount, NumberForms forms, std::string_view text,
                                 std::int64_t line) {
  amount = WithoutPlus(amount);
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
  auto place = std::lower_bound(layouts_.begin(), layouts_.end(), key,
                                [](const Layout& layout, int k) { return layout.key < k; });
  if (place == layouts_.end() || place->key != key) place = layouts_.insert(place, {key, {}});
  if (key == latestKey_) return place->seen;
  // What was taken of the layout before is counted with all of it.
  for (Layout& layout : layouts_) layout.seen.count = CountOf(layout);
  for (std::size_t order = 0; order < latest_.size(); ++order) {
    orders_[order].count += LatestOf(order);
  }
  latest_.fill(0);
  latestKey_ = key;
  return place->seen;
}

void DetectionEvidence::Merge(const DetectionEvidence& from, std::int64_t lines) {
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    MergeFirst(from.classes_[i], lines, classes_[i]);
  }
  for (const Layout& layout : from.layouts_) {
    if (layout.seen.count == 0) continue;
    ImportWitness& seen = LayoutOf(layout.key);
    MergeFirst(layout.seen, lines, seen);
    seen.count += from.CountOf(layout);
  }
  for (std::size_t i = 1; i < orders_.size(); ++i) {
    MergeFirst(from.orders_[i], lines, orders_[i]);
    orders_[i].count += from.orders_[i].count + from.LatestOf(i);
  }
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
    told.layouts.back().seen.count = CountOf(layout);
  }
  told.dayFirst = WholeOrder(DayAndMonth::kDayFirst);
  told.monthFirst = WholeOrder(DayAndMonth::kMonthFirst);
  told.eitherOrder = WholeOrder(DayAndMonth::kEitherOrder);
  told.decimalComma = decimalComma_;
  told.groupingComma = groupingComma_;
  told.eitherComma = eitherComma_;
  told.leadingZeros = leadingZeros_;
  told.longest = longest_;
  return told;
}

}  // namespace textwizard
