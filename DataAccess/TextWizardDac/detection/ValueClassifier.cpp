#include "detection/ValueClassifier.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <iterator>

#include "HostFramework/Text.h"
#include "detection/BlankTrim.h"

namespace textwizard {

namespace {

std::string PatternText(const std::string& regex) {
  std::string buffer;
  return std::string(ToUtf8(regex, buffer));
}

// A day and a month in digits, by DayAndMonth: both at most 12, the first above it, the second.
constexpr const char* kOrderPatterns[] = {
    R"(^(0?[1-9]|1[0-2])(/|\.|\-| )(0?[1-9]|1[0-2])(/|\.|\-| )[0-9]{2}([0-9]{2})?$)",
    R"(^(1[3-9]|2[0-9]|3[01])(/|\.|\-| )(0?[1-9]|1[0-2])(/|\.|\-| )[0-9]{2}([0-9]{2})?$)",
    R"(^(0?[1-9]|1[0-2])(/|\.|\-| )(1[3-9]|2[0-9]|3[01])(/|\.|\-| )[0-9]{2}([0-9]{2})?$)",
};
static_assert(kMostDateRows + std::size(kOrderPatterns) <= PatternAutomaton::kMaxPatterns);
static_assert(std::size(kOrderPatterns) + 1 == kDayAndMonthOrders);

}  // namespace

ValueClassifier::ValueClassifier(const RegExMappings& table, Arrangement arrangement)
    : trimDates_(arrangement != kDelimitedLines),
      formMatchers_{table.percentMatcher, table.dollarMatcher, table.commaMatcher,
                    table.dotMatcher} {
  std::vector<std::string> patterns;
  for (const auto& [key, row] : table.regExMappings()) {
    rows_.push_back(&row);
    patterns.push_back(PatternText(row.regex));
  }
  if (!rows_.empty()) {
    firstKey_ = rows_.front()->key;
    rowOfKey_.assign(static_cast<std::size_t>(rows_.back()->key - firstKey_ + 1), kNoRow);
  }
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    rowOfKey_[static_cast<std::size_t>(rows_[i]->key - firstKey_)] = static_cast<std::uint8_t>(i);
  }
  // One walk over a value finds its row and the order of its day and month.
  patterns.insert(patterns.end(), std::begin(kOrderPatterns), std::end(kOrderPatterns));
  rowAutomaton_ = PatternAutomaton::Shared(patterns);
  formAutomaton_ =
      PatternAutomaton::Shared({PatternText(table.percentRegex), PatternText(table.dollarRegex),
                                PatternText(table.commaRegex), PatternText(table.dotRegex)});
  usableRows_.Know(*rowAutomaton_);
  usableForms_.Know(*formAutomaton_);

  std::array<unsigned char, 256> same{};
  for (std::size_t byte = 0; byte < same.size(); ++byte) {
    same[byte] = static_cast<unsigned char>(byte);
    lower_[byte] = static_cast<unsigned char>(std::tolower(static_cast<int>(byte)));
  }
  // Where letter case changes bytes beyond ASCII, a text need not be UTF-8 any more.
  const bool utf8 = qUTF8mode();
  const bool keepsWide =
      std::equal(lower_.begin() + kAsciiCount, lower_.end(), same.begin() + kAsciiCount);
  rowClasses_ = rowAutomaton_->Classes(lower_, utf8 && keepsWide);
  formClasses_ = formAutomaton_->Classes(same, utf8);
  for (std::size_t byte = 0; byte < possible_.size(); ++byte) {
    const bool number = numeric_.MayBegin(static_cast<char>(byte));
    // A date is looked for behind blanks.
    const bool date = byte == ' ' || rowAutomaton_->MayBegin(rowClasses_[byte]);
    const bool form = formAutomaton_->MayBegin(formClasses_[byte]);
    const bool plain = (byte >= '0' && byte <= '9') || byte == '+' || byte == '-';
    possible_[byte] =
        static_cast<std::uint8_t>((number ? kNumber : 0) | (date ? kDate : 0) |
                                  (form ? kNumberForm : 0) | (plain ? kPlainNumber : 0));
  }
}

bool ValueClassifier::IsNumericSwapped(std::string_view value, char swapped) {
  if (value.find(swapped) == std::string_view::npos) return numeric_.Accepts(value);
  changed_.assign(value);
  std::replace(changed_.begin(), changed_.end(), swapped, swapped == '.' ? ',' : '.');
  return numeric_.Accepts(changed_);
}

NumberForms ValueClassifier::FormsOf(std::string_view value) {
  const PatternAutomaton::Verdict verdict = formAutomaton_->Match(value, formClasses_);
  NumberForms forms;
  std::uint64_t candidates = verdict.matched | verdict.undecided;
  const icu::UnicodeString* text = nullptr;
  for (; candidates; candidates &= candidates - 1) {
    const auto index = static_cast<std::size_t>(std::countr_zero(candidates));
    if (!usableForms_.Has(index, formMatchers_[index])) continue;
    const bool matched = (verdict.matched >> index & 1) != 0;
    if (!matched && !text) text = &unicode_.Assign(value);
    forms.set(index, matched || Decide(formMatchers_[index], *text));
  }
  return forms;
}

int ValueClassifier::IsDateTime(std::string_view value) {
  if (trimDates_) value = TrimLeft(TrimRight(value));
  const PatternAutomaton::Verdict verdict = rowAutomaton_->Match(value, rowClasses_);
  order_ = OrderOf(verdict);
  // Most strings.
  if ((verdict.matched | verdict.undecided) == 0) return 0;
  return FirstRow(value, verdict);
}

int ValueClassifier::FirstRow(std::string_view value, PatternAutomaton::Verdict verdict) {
  const std::uint64_t rows = (std::uint64_t{1} << rows_.size()) - 1;
  std::uint64_t candidates = (verdict.matched | verdict.undecided) & rows;
  const icu::UnicodeString* text = nullptr;
  for (; candidates; candidates &= candidates - 1) {
    const auto index = static_cast<std::size_t>(std::countr_zero(candidates));
    if (!usableRows_.Has(index, rows_[index]->matcher)) continue;
    if (verdict.matched >> index & 1) return rows_[index]->key;
    if (!text) text = &LowerCased(value);
    if (Decide(rows_[index]->matcher, *text)) return rows_[index]->key;
  }
  return 0;
}

bool ValueClassifier::MatchesRow(std::string_view value, int key) {
  const auto place = static_cast<std::size_t>(static_cast<std::int64_t>(key) - firstKey_);
  if (place >= rowOfKey_.size() || rowOfKey_[place] == kNoRow) return false;
  const std::size_t index = rowOfKey_[place];
  const std::uint64_t bit = std::uint64_t{1} << index;
  const PatternAutomaton::Verdict verdict = rowAutomaton_->Match(value, rowClasses_);
  order_ = OrderOf(verdict);
  if (((verdict.matched | verdict.undecided) & bit) == 0) return false;
  const PatternMatcher& matcher = rows_[index]->matcher;
  if (!usableRows_.Has(index, matcher)) return false;
  return (verdict.matched & bit) != 0 || Decide(matcher, LowerCased(value));
}

bool ValueClassifier::Decide(const PatternMatcher& matcher, const icu::UnicodeString& text) const {
  if (!matcher) return false;
  matcher->reset(text);
  UErrorCode status = U_ZERO_ERROR;
  const bool matches = matcher->matches(status);
  CheckMemory(status);
  return matches && U_SUCCESS(status);
}

const icu::UnicodeString& ValueClassifier::LowerCased(std::string_view value) {
  changed_.assign(value);
  for (char& c : changed_) c = static_cast<char>(lower_[static_cast<unsigned char>(c)]);
  return unicode_.Assign(changed_);
}

}  // namespace textwizard
