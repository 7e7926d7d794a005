// The counting rules of type detection: one field's class, width and decimals into a variable's
// counters, and one set of counters into another.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "detection/RegExMappings.h"
#include "detection/ValueClassifier.h"
#include "detection/VariableWidening.h"
#include "model/FormatCode.h"
#include "model/ImportSettings.h"
#include "model/TxtWzVar.h"

namespace textwizard {

// Where the two detection passes differ.
enum class DetectionPass {
  // One thread over the records, straight into the plan's variables.
  kSampling,
  // A worker over one batch, into records of its own that are merged afterwards.
  kWorker,
};

struct DetectionRules {
  DetectionRules() = default;
  DetectionRules(const ImportSettings& settings, DetectionPass where)
      : pass(where),
        arrangement(settings.arrangement),
        leadingSpaces(settings.leadingSpaces),
        multipleSpaces(settings.multipleSpaces) {}

  DetectionPass pass = DetectionPass::kSampling;
  Arrangement arrangement = kDelimitedLines;
  bool leadingSpaces = false;
  bool multipleSpaces = false;
  // Worker only: replace every `decimalCharacter` by the other of '.' and ',' before a number is
  // parsed, so that strtod sees the decimal separator of the process's numeric locale.
  bool swapDecimal = false;
  char decimalCharacter = '.';
};

// What a field was counted as. A plain number is one of digits and a point, perhaps with a sign.
enum class CountedAs : std::uint8_t {
  kPlainNumber,
  kNumber,
  kDate,
  kDollar,
  kPercent,
  kComma,
  kDot,
  kString,
};
inline constexpr std::size_t kCountedAs = 8;

// Classifies fields by one pattern table. Same thread rules as the table, which outlives it.
// Allocates nothing per field in the steady state.
class DetectionCounters {
 public:
  DetectionCounters(const RegExMappings& table, const DetectionRules& rules);

  // Counts one non-empty field text (host text) into `variable`.
  CountedAs Count(std::string_view field, TxtWzVar& variable) {
    // Most strings show by their first byte that they are nothing else.
    const unsigned possible = classifier_.PossibleClasses(field);
    if (possible == 0 && !rules_.multipleSpaces) {
      order_ = DayAndMonth::kNone;
      CountString(field, variable);
      return CountedAs::kString;
    }
    // Digits and a point are a number in every respect that matters here.
    std::size_t point = 0;
    if ((possible & ValueClassifier::kPlainNumber) == 0 || rules_.swapDecimal ||
        !classifier_.IsPlainNumber(field, &point)) {
      return CountUnplain(field, possible, variable);
    }
    ++variable.numericCount;
    // Most are as wide as others before them.
    const std::size_t decimals = static_cast<std::size_t>(std::max(variable.decimals, 0));
    if (rules_.arrangement == kFixedColumns || field.size() > variable.width ||
        (point != std::string_view::npos && field.size() - point > decimals + 1)) {
      UpdateVarSizes(variable, field.size(), point, rules_.arrangement);
    }
    return CountedAs::kPlainNumber;
  }
  // Of the date counted last: the key of the row that it was counted by.
  int dateKey() const { return dateKey_; }
  // Of the date or string counted last, unless blanks were at its ends.
  DayAndMonth order() const { return order_; }
  DayAndMonth OrderOf(std::string_view text) const { return classifier_.OrderOf(text); }
  // Of the amount counted last with a sign of its class in it (kDollar to kDot): its forms.
  NumberForms forms() const { return forms_; }
  // All forms that the text has, without regard to its class.
  NumberForms FormsOf(std::string_view field) { return classifier_.FormsOf(field); }
  // Adds the counters of one batch to `into`: sums of the counts, maxima of the sizes, the smaller
  // non-zero pattern key, either's flags.
  static void Merge(const TxtWzVar& from, TxtWzVar& into);

 private:
  // Any field but a plain number. `possible`: its classes by its first byte.
  CountedAs CountUnplain(std::string_view field, unsigned possible, TxtWzVar& variable);
  bool IsNumeric(std::string_view field);
  // Each counts the field when it is of its class; else leaves the variable alone.
  bool CountNumber(std::string_view field, TxtWzVar& variable);
  // A number that is plain between blanks.
  bool CountPadded(std::string_view field, TxtWzVar& variable);
  bool CountDate(std::string_view field, TxtWzVar& variable);
  // kString: it is of none.
  CountedAs CountNumberForm(std::string_view field, TxtWzVar& variable);
  void CountString(std::string_view field, TxtWzVar& variable) const;
  void AdoptDateKey(int key, std::string_view field, TxtWzVar& variable);
  bool KeepsMinutes(const TxtWzVar& variable) const;

  const DetectionRules rules_;
  const RegExMappings& table_;
  ValueClassifier classifier_;
  int dateKey_ = 0;
  // The row that was adopted last.
  const RegExToFormatMapping* dateRow_ = nullptr;
  DayAndMonth order_ = DayAndMonth::kNone;
  NumberForms forms_;
};

inline void DetectionCounters::CountString(std::string_view field, TxtWzVar& variable) const {
  // Never a blank text: that is a number.
  ++variable.stringCount;
  const std::uint32_t length =
      static_cast<std::uint32_t>(std::min<std::size_t>(field.size(), kMaxStringWidth + 1));
  if (rules_.pass == DetectionPass::kSampling) {
    // Measured against the width, so the latest such length stays and not the longest.
    if (length > kMaxStringWidth) {
      variable.maxStringLength = kMaxStringWidth;
    } else if (variable.width < length) {
      variable.maxStringLength = length;
    }
    return;
  }
  if (length > kMaxStringWidth) {
    variable.maxStringLength = kMaxStringWidth;
  } else if (length > variable.maxStringLength) {
    // On a worker the flag says that lengths vary.
    if (variable.maxStringLength != 0) variable.stringTruncated = true;
    variable.maxStringLength = length;
  }
}

}  // namespace textwizard
