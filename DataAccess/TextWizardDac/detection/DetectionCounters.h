// The counting rules of type detection: one field's class, width and decimals into a variable's
// counters, and one set of counters into another.
#pragma once

#include <cstdint>
#include <string_view>

#include "detection/RegExMappings.h"
#include "detection/ValueClassifier.h"
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

// Classifies fields by one pattern table. Same thread rules as the table, which outlives it.
// Allocates nothing per field in the steady state.
class DetectionCounters {
 public:
  DetectionCounters(const RegExMappings& table, const DetectionRules& rules);

  // Counts one non-empty field text (host text) into `variable`.
  CountedAs Count(std::string_view field, TxtWzVar& variable);
  // Of the date counted last: the key of the row that it was counted by.
  int dateKey() const { return dateKey_; }
  // All forms that the text has, without regard to its class.
  NumberForms FormsOf(std::string_view field) { return classifier_.FormsOf(field); }
  // Adds the counters of one batch to `into`: sums of the counts, maxima of the sizes, the smaller
  // non-zero pattern key, either's flags.
  static void Merge(const TxtWzVar& from, TxtWzVar& into);

 private:
  bool IsNumeric(std::string_view field);
  // Each counts the field when it is of its class; else leaves the variable alone.
  bool CountNumber(std::string_view field, TxtWzVar& variable);
  bool CountDate(std::string_view field, TxtWzVar& variable);
  bool CountNumberForm(std::string_view field, TxtWzVar& variable, CountedAs* as);
  void CountString(std::string_view field, TxtWzVar& variable) const;
  void AdoptDateKey(int key, std::string_view field, TxtWzVar& variable) const;
  bool KeepsMinutes(const TxtWzVar& variable) const;

  const DetectionRules rules_;
  const RegExMappings& table_;
  ValueClassifier classifier_;
  int dateKey_ = 0;
};

}  // namespace textwizard
