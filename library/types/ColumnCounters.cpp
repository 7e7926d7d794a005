#include "library/types/ColumnCounters.h"

#include <algorithm>
#include <utility>

#include "HostFramework/embedded/values/PlainNumber.h"
#include "library/types/NamePrefixes.h"

namespace library {
namespace {

constexpr ReadingSet kOfIntegers(Reading::kPoint, Reading::kComma, Reading::kPointPercent,
                                 Reading::kCommaPercent, Reading::kDollar);
constexpr ReadingSet kOfFractions(Reading::kPoint, Reading::kPointPercent, Reading::kDollar);

// Digits of a group: so many behind a point may have been grouped by it.
constexpr std::size_t kGroupDigits = 3;

bool IsAsciiLetter(char byte) { return (static_cast<unsigned char>(byte) | 0x20U) - 'a' < 26; }

void Raise(std::uint8_t& most, std::size_t value) {
  most = std::max(most, static_cast<std::uint8_t>(value));
}

}  // namespace

// What nearly all fields are: a number of digits and a point, with a sign or without; a word that
// begins no name of a day or month. False for any other text.
inline bool ColumnCounters::CountPlain(std::size_t column, std::string_view text,
                                       std::int64_t line) {
  Hot& hot = hot_[column];
  const char first = text.front();
  if (IsAsciiLetter(first)) {
    if (NamePrefixes::Instance().MayBegin(text)) return false;
    if (hot.texts++ == 0) NoteGroup(column, ReadingSet(), text, line);
    return true;
  }
  const std::size_t sign = (first == '-') | (first == '+');
  const std::string_view digits = text.substr(sign);
  std::size_t fraction;
  if (digits.size() - 1 >= embedded::PlainNumber::kLongest ||
      !embedded::PlainNumber::Look(digits.data(), digits.size(), '.', &fraction)) {
    return false;
  }
  if (fraction == embedded::PlainNumber::kNoDecimal) {
    // What begins with a zero is told one by one.
    if (digits.front() == '0' && digits.size() > 1) return false;
    if (hot.integers++ == 0) NoteGroup(column, kOfIntegers, text, line);
    Raise(hot.whole, text.size());
    Raise(hot.commaWhole, text.size());
  } else {
    if (fraction == 0) return false;
    const std::size_t point = digits.size() - fraction - 1;
    if (fraction == kGroupDigits && point - 1 < kGroupDigits) {
      // As a group, the point is one of the characters in front of a decimal comma.
      if (hot.groups++ == 0) {
        NoteGroup(column, kOfIntegers, text, line);
        Witness& grouped = cold_[column].evidence.comma_.grouped;
        if (grouped.line == 0) grouped.Set(text, line);
      }
      Raise(hot.commaWhole, text.size());
    } else if (hot.fractions++ == 0) {
      NoteGroup(column, kOfFractions, text, line);
    }
    Raise(hot.whole, sign + point);
    Raise(hot.fraction, fraction);
  }
  Raise(hot.longestRead, text.size());
  return true;
}

void ColumnCounters::Count(std::size_t column, std::string_view field, std::int64_t line) {
  Hot& hot = hot_[column];
  if (field.size() > hot.longest) NoteLength(column, field, line);
  const std::string_view text = textwizard::WithoutBlanks(field);
  if (text.empty()) {
    ++hot.empties;
  } else if (nulls_.HoldsBare(text)) {
    CountNull(column, text, line);
  } else if (!CountPlain(column, text, line)) {
    CountOther(column, text, line);
  }
}

void ColumnCounters::CountNull(std::size_t column, std::string_view text, std::int64_t line) {
  cold_[column].evidence.nulls_.Add(text, line);
}

void ColumnCounters::CountOther(std::size_t column, std::string_view text, std::int64_t line) {
  Cold& cold = cold_[column];
  if (text.size() > ValueShape::kLongest) {
    cold.evidence.CountValue(ReadValue(text), text, line);
    return;
  }
  const ValueShape shape = ValueShape::Of(text);
  if (shape != cold.shape) {
    cold.plan = PlanOf(text);
    cold.shape = cold.plan.ofShape ? shape : ValueShape();
  }
  cold.evidence.CountValue(ReadBy(cold.plan, text), text, line);
}

void ColumnCounters::NoteLength(std::size_t column, std::string_view field, std::int64_t line) {
  cold_[column].evidence.CountLength(field, line);
  hot_[column].longest =
      static_cast<std::uint32_t>(std::min<std::size_t>(field.size(), UINT32_MAX));
}

// The first of its kind to be counted here; others may have been counted there.
void ColumnCounters::NoteGroup(std::size_t column, ReadingSet readings, std::string_view text,
                               std::int64_t line) {
  Witness& values = cold_[column].evidence.GroupOf(readings).values;
  if (values.line == 0) values.Set(text, line);
}

ColumnEvidence ColumnCounters::Joined(const Hot& hot, ColumnEvidence evidence) {
  const auto add = [&](ReadingSet readings, std::uint32_t count) {
    if (count > 0) evidence.GroupOf(readings).values.count += count;
    evidence.values_ += count;
  };
  add(kOfIntegers, hot.integers);
  add(kOfIntegers, hot.groups);
  add(kOfFractions, hot.fractions);
  add(ReadingSet(), hot.texts);
  evidence.empties_ += hot.empties;
  evidence.point_.whole = std::max<int>(evidence.point_.whole, hot.whole);
  evidence.point_.fraction = std::max<int>(evidence.point_.fraction, hot.fraction);
  evidence.point_.fractions += std::int64_t{hot.fractions} + hot.groups;
  evidence.comma_.grouped.count += hot.groups;
  evidence.comma_.whole = std::max<int>(evidence.comma_.whole, hot.commaWhole);
  evidence.longestRead_ = std::max<int>(evidence.longestRead_, hot.longestRead);
  return evidence;
}

std::vector<ColumnEvidence> ColumnCounters::Take() {
  std::vector<ColumnEvidence> columns;
  columns.reserve(hot_.size());
  for (std::size_t i = 0; i < hot_.size(); ++i) {
    columns.push_back(
        Joined(std::exchange(hot_[i], Hot()), std::exchange(cold_[i].evidence, ColumnEvidence())));
  }
  return columns;
}

}  // namespace library
