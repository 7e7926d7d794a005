// The tests that sort one field text into number, date or time, dollar amount, percentage, and
// comma- or dot-grouped number.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "detection/NumericRule.h"
#include "detection/PatternAutomaton.h"
#include "detection/RegExMappings.h"
#include "detection/UnicodeText.h"
#include "model/ImportSettings.h"

namespace textwizard {

// Every number form has a pattern of its own in the table.
enum class NumberForm { kPercentage, kDollar, kComma, kDot };
inline constexpr std::size_t kNumberForms = 4;
using NumberForms = std::bitset<kNumberForms>;

// In which order a day and a month can stand in a text that is two numbers of one or two digits and
// a year of two or four, each number with one of "/.- " behind it. No day is above 31, no month
// above 12, none is 0.
enum class DayAndMonth : std::uint8_t { kNone, kEitherOrder, kDayFirst, kMonthFirst };
inline constexpr std::size_t kDayAndMonthOrders = 4;

// Tests host texts by one pattern table. Same thread rules as the table, which outlives it. Locale:
// names by the table, decimal character and letter case by the process's locale at construction.
// Allocates nothing per value in the steady state.
class ValueClassifier {
 public:
  ValueClassifier(const RegExMappings& table, Arrangement arrangement);

  // What a value, by its first byte, can be besides a string: any of these bits. Its blanks are
  // not trimmed. Without kPlainNumber, IsPlainNumber is false.
  enum Possible : std::uint8_t { kNumber = 1, kDate = 2, kNumberForm = 4, kPlainNumber = 8 };
  unsigned PossibleClasses(std::string_view value) const {
    if (value.empty()) return kNumber | kDate | kNumberForm | kPlainNumber;
    return possible_[static_cast<unsigned char>(value.front())];
  }

  bool IsNumeric(std::string_view value) { return numeric_.Accepts(value); }
  // See NumericRule: only numbers, but not all of them.
  bool IsPlainNumber(std::string_view value, std::size_t* point) const {
    return numeric_.AcceptsPlain(value, point);
  }
  // The same after every `swapped` of the value has become the other of '.' and ','. Alone, neither
  // is a number, before and after.
  bool IsNumericSwapped(std::string_view value, char swapped);

  // The whole value has the form. Nothing is trimmed.
  bool Is(NumberForm form, std::string_view value) {
    return FormsOf(value).test(static_cast<std::size_t>(form));
  }
  // All forms that the value has.
  NumberForms FormsOf(std::string_view value);

  // Key of the first row that the lower-cased value matches, 0 when none does. Blanks at both ends
  // count only with one case per line.
  int IsDateTime(std::string_view value);
  // Of the value that IsDateTime or MatchesRow was asked for last. Nothing is trimmed but what they
  // trim.
  DayAndMonth order() const { return order_; }
  DayAndMonth OrderOf(std::string_view value) const {
    return OrderOf(rowAutomaton_->Match(value, rowClasses_));
  }
  // The lower-cased value matches the row `key`; false for a key without a row. Nothing is trimmed.
  bool MatchesRow(std::string_view value, int key);

 private:
  // A pattern that the library cannot compile matches nothing. Of those that the automaton has it
  // is known that it can; of others that is found out where one is needed, as it takes long.
  struct UsablePatterns {
    void Know(const PatternAutomaton& automaton) { known = usable = ~automaton.uncompiled(); }
    std::uint64_t known = 0;
    std::uint64_t usable = 0;
    bool Has(std::size_t index, const PatternMatcher& matcher) {
      const std::uint64_t bit = std::uint64_t{1} << index;
      if ((known & bit) == 0) {
        usable |= matcher ? bit : 0;
        known |= bit;
      }
      return (usable & bit) != 0;
    }
  };

  // The patterns of the orders stand behind those of the rows.
  DayAndMonth OrderOf(const PatternAutomaton::Verdict& verdict) const {
    const std::uint64_t matched = verdict.matched >> rows_.size();
    return static_cast<DayAndMonth>(matched - (matched >> 2));
  }
  // Key of the first row that the automaton's verdict of the value leaves, 0 for none.
  [[gnu::noinline]] int FirstRow(std::string_view value, PatternAutomaton::Verdict verdict);
  bool Decide(const PatternMatcher& matcher, const icu::UnicodeString& text) const;
  const icu::UnicodeString& LowerCased(std::string_view value);

  const bool trimDates_;
  NumericRule numeric_;
  // In key order: bit i of a date verdict is row i.
  std::vector<const RegExToFormatMapping*> rows_;
  // By key, from the first row's on: which row has it.
  static constexpr std::uint8_t kNoRow = 0xFF;
  std::int64_t firstKey_ = 0;
  std::vector<std::uint8_t> rowOfKey_;
  std::array<PatternMatcher, kNumberForms> formMatchers_;
  UsablePatterns usableRows_;
  UsablePatterns usableForms_;
  std::shared_ptr<const PatternAutomaton> rowAutomaton_;
  std::shared_ptr<const PatternAutomaton> formAutomaton_;
  std::array<unsigned char, 256> lower_;
  PatternAutomaton::ByteClasses rowClasses_;
  PatternAutomaton::ByteClasses formClasses_;
  std::array<std::uint8_t, 256> possible_;
  DayAndMonth order_ = DayAndMonth::kNone;
  // Buffers of the rarer ways.
  std::string changed_;
  UnicodeText unicode_;
};

}  // namespace textwizard
