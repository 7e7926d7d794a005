// What detection has seen of a variable's values besides its counters, for a host that watches: the
// first value of each class, the layouts of dates, values that could be read in two ways.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "detection/DetectionCounters.h"
#include "detection/RegExMappings.h"
#include "model/TxtWzVar.h"

namespace textwizard {

// Of one variable, over a batch or all of them: sums, and minima by the place in the file, so that
// it is the same however the records were spread over batches. One thread at a time; its memory is
// kept when it is cleared.
class DetectionEvidence {
 public:
  void Clear();
  // A field that `counters` has just counted. `line`: its record's.
  void Add(std::string_view field, CountedAs as, std::int64_t line, DetectionCounters& counters) {
    // Most values tell nothing new.
    if (static_cast<std::int64_t>(field.size()) <= longest_.count) {
      const char first = field.front();
      if (as == CountedAs::kPlainNumber && first != '0' &&
          Of(ImportValueClass::kNumber).line != 0) {
        return;
      }
      if (as == CountedAs::kString && !IsDigit(first) && Of(ImportValueClass::kString).line != 0) {
        return;
      }
    }
    AddNew(field, as, line, counters);
  }
  // An empty field, which is not counted.
  void AddEmpty() { ++empties_; }
  // Adds that of a batch, `lines` lines behind the start of the file.
  void Merge(const DetectionEvidence& from, std::int64_t lines);
  // With the counters of the same values.
  ImportEvidence Told(const TxtWzVar& counters, const RegExMappings& table) const;

 private:
  struct Layout {
    int key;
    ImportWitness seen;
  };

  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }
  const ImportWitness& Of(ImportValueClass valueClass) const {
    return classes_[static_cast<std::size_t>(valueClass)];
  }
  void AddNew(std::string_view field, CountedAs as, std::int64_t line, DetectionCounters& counters);
  void AddNumber(std::string_view field, std::int64_t line);
  void AddDayAndMonth(std::string_view field, std::int64_t line);
  // `amount`: the number in `text`, without what marks its class.
  void AddComma(std::string_view amount, std::string_view text, std::int64_t line,
                DetectionCounters& counters);
  ImportWitness& LayoutOf(int key);

  // Only who was first; their counts are the counters'.
  std::array<ImportWitness, kImportValueClasses> classes_;
  std::int64_t blanks_ = 0;
  std::int64_t empties_ = 0;
  // By rising key.
  std::vector<Layout> layouts_;
  ImportWitness dayFirst_;
  ImportWitness monthFirst_;
  ImportWitness eitherOrder_;
  ImportWitness decimalComma_;
  ImportWitness groupingComma_;
  ImportWitness eitherComma_;
  ImportWitness leadingZeros_;
  ImportWitness longest_;
};

}  // namespace textwizard
