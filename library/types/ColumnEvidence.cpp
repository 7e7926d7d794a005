#include "library/types/ColumnEvidence.h"

#include <utility>

namespace library {
namespace {

// The longest beginning of `text` of whole characters and at most `bytes` bytes.
std::string_view WholeCharacters(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) return text;
  while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) --bytes;
  return text.substr(0, bytes);
}

}  // namespace

void Witness::Set(std::string_view seen, std::int64_t seenLine) {
  line = seenLine;
  text = WholeCharacters(seen, kWitnessBytes);
}

void Witness::Append(const Witness& next, std::int64_t lines) {
  if (next.line != 0 && (line == 0 || next.line + lines < line)) {
    line = next.line + lines;
    text = next.text;
  }
  count += next.count;
}

void NumberEvidence::Add(const NumberShape& shape, std::string_view text, std::int64_t line) {
  whole = std::max(whole, shape.whole);
  fraction = std::max(fraction, shape.fraction);
  fractions += shape.fraction > 0 ? 1 : 0;
  exponents += shape.exponent ? 1 : 0;
  if (shape.grouped) grouped.Add(text, line);
}

void NumberEvidence::Append(const NumberEvidence& next, std::int64_t lines) {
  whole = std::max(whole, next.whole);
  fraction = std::max(fraction, next.fraction);
  grouped.Append(next.grouped, lines);
  exponents += next.exponents;
  fractions += next.fractions;
}

void ColumnEvidence::Count(std::string_view field, std::int64_t line,
                           const textwizard::NullTexts& nulls) {
  CountLength(field, line);
  const std::string_view text = textwizard::WithoutBlanks(field);
  if (text.empty()) {
    ++empties_;
  } else if (nulls.HoldsBare(text)) {
    nulls_.Add(text, line);
  } else {
    CountValue(ReadValue(text), text, line);
  }
}

void ColumnEvidence::CountLength(std::string_view field, std::int64_t line) {
  if (static_cast<std::int64_t>(field.size()) <= longest_.count) return;
  longest_.Set(field, line);
  longest_.count = static_cast<std::int64_t>(field.size());
}

void ColumnEvidence::CountValue(const ValueReadings& found, std::string_view text,
                                std::int64_t line) {
  ++values_;
  GroupOf(found.set).values.Add(text, line);
  if (found.set.empty()) return;
  longestRead_ = std::max(longestRead_, static_cast<int>(text.size()));
  if (found.set.Has(Reading::kPointPercent) || found.set.Has(Reading::kDollar)) {
    point_.Add(found.point, text, line);
  }
  if (found.set.Has(Reading::kCommaPercent)) comma_.Add(found.comma, text, line);
  if (found.leadingZero) leadingZeros_.Add(text, line);
  if (found.losesDigits) lostDigits_.Add(text, line);
  namedMonths_ += found.monthInLetters ? 1 : 0;
  shortYears_ += found.shortYear ? 1 : 0;
  separators_[0] += found.separator == '/' ? 1 : 0;
  separators_[1] += found.separator == '.' ? 1 : 0;
  separators_[2] += found.separator == '-' ? 1 : 0;
  if (found.eitherOrder) eitherOrder_.Add(text, line);
  secondFraction_ = std::max(secondFraction_, found.secondFraction);
  hasSeconds_ = hasSeconds_ || found.hasSeconds;
}

// The groups are in the order of their sets, so that evidence does not depend on how it came
// together.
ColumnEvidence::Group& ColumnEvidence::GroupOf(ReadingSet readings) {
  std::size_t at = 0;
  while (at < groups_.size() && groups_[at].readings.bits() < readings.bits()) ++at;
  if (at == groups_.size() || groups_[at].readings != readings) {
    groups_.insert(groups_.begin() + static_cast<std::ptrdiff_t>(at), Group{readings, {}});
  }
  return groups_[at];
}

void ColumnEvidence::Append(const ColumnEvidence& next, std::int64_t lines) {
  values_ += next.values_;
  empties_ += next.empties_;
  nulls_.Append(next.nulls_, lines);
  for (const Group& group : next.groups_)
    GroupOf(group.readings).values.Append(group.values, lines);
  point_.Append(next.point_, lines);
  comma_.Append(next.comma_, lines);
  leadingZeros_.Append(next.leadingZeros_, lines);
  lostDigits_.Append(next.lostDigits_, lines);
  namedMonths_ += next.namedMonths_;
  shortYears_ += next.shortYears_;
  for (std::size_t i = 0; i < separators_.size(); ++i) separators_[i] += next.separators_[i];
  eitherOrder_.Append(next.eitherOrder_, lines);
  secondFraction_ = std::max(secondFraction_, next.secondFraction_);
  hasSeconds_ = hasSeconds_ || next.hasSeconds_;
  longestRead_ = std::max(longestRead_, next.longestRead_);
  const bool longer = next.longest_.count > longest_.count;
  const bool before = next.longest_.count == longest_.count && next.longest_.line > 0 &&
                      next.longest_.line + lines < longest_.line;
  if (longer || before) {
    longest_ = next.longest_;
    longest_.line += lines;
  }
}

void ColumnEvidence::SwapDecimals() {
  const std::vector<Group> groups = std::move(groups_);
  groups_.clear();
  for (const Group& group : groups) {
    GroupOf(WithSwappedDecimals(group.readings)).values = group.values;
  }
  std::swap(point_, comma_);
}

// All values of the groups that `chosen` takes, the first of them as witness.
template <typename Chosen>
Witness ColumnEvidence::Sum(const Chosen& chosen) const {
  Witness sum;
  for (const Group& group : groups_) {
    if (!chosen(group.readings)) continue;
    const std::int64_t count = sum.count + group.values.count;
    if (sum.line == 0 || group.values.line < sum.line) sum = group.values;
    sum.count = count;
  }
  return sum;
}

std::int64_t ColumnEvidence::Read(Reading reading) const {
  return Sum([reading](ReadingSet set) { return set.Has(reading); }).count;
}

Witness ColumnEvidence::Unread(Reading reading) const {
  return Sum([reading](ReadingSet set) { return !set.Has(reading); });
}

Witness ColumnEvidence::Only(Reading left, Reading right) const {
  return Sum([=](ReadingSet set) { return set.Has(left) && !set.Has(right); });
}

Witness ColumnEvidence::Both(Reading left, Reading right) const {
  return Sum([=](ReadingSet set) { return set.Has(left) && set.Has(right); });
}

}  // namespace library
