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
#include "watch/NullTexts.h"

namespace textwizard {

// Of one variable, over a batch or all of them: sums, and minima by the place in the file, so that
// it is the same however the records were spread over batches. One thread at a time; its memory is
// kept when it is cleared.
class DetectionEvidence {
 public:
  DetectionEvidence() { OrderOf(DayAndMonth::kNone).count = 1; }

  void Clear();
  // Takes a field that `counters` has just counted when it is the first of nothing, as nearly all
  // are; else it is to be added. Where the field stands need not be known for that.
  bool Takes(std::string_view field, CountedAs as, const DetectionCounters& counters) {
    const auto known = static_cast<std::size_t>(as);
    if (field.size() > known_[known]) return false;
    const char first = field.front();
    if (as == CountedAs::kPlainNumber) {
      return first != '0' || field.size() == 1 || !IsDigit(field[1]);
    }
    if (as == CountedAs::kString) {
      if (static_cast<unsigned char>(first) > '9') return true;
      return IsDigit(first) ? IsDigit(field.back()) && TakesOrder(counters.order())
                            : !IsBlankCharacter(first);
    }
    if (as == CountedAs::kDate) {
      return !IsBlankCharacter(first) && !IsBlankCharacter(field.back()) &&
             TakesDate(counters.dateKey(), counters.order());
    }
    return as == CountedAs::kPercent;
  }
  // Adds a field that was not taken. `line`: its record's.
  void Add(std::string_view field, CountedAs as, std::int64_t line, DetectionCounters& counters);
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
  ImportWitness& OrderOf(DayAndMonth order) { return orders_[static_cast<std::size_t>(order)]; }
  const ImportWitness& OrderOf(DayAndMonth order) const {
    return orders_[static_cast<std::size_t>(order)];
  }
  bool TakesOrder(DayAndMonth order) {
    ImportWitness& seen = OrderOf(order);
    if (seen.count == 0) return false;
    ++seen.count;
    return true;
  }
  bool TakesDate(int key, DayAndMonth order) {
    if (latestLayout_ >= layouts_.size()) return false;
    Layout& layout = layouts_[latestLayout_];
    if (layout.key != key || layout.seen.count == 0 || !TakesOrder(order)) return false;
    ++layout.seen.count;
    return true;
  }
  void Know(CountedAs as);
  void AddOrder(DayAndMonth order, std::string_view text, std::int64_t line);
  // `amount`: the number in `text`, without what marks its class. `forms`: the amount's.
  void AddComma(std::string_view amount, NumberForms forms, std::string_view text,
                std::int64_t line);
  ImportWitness& LayoutOf(int key);

  // By the class that a field was counted as: one that is not longer tells neither the first of its
  // class nor the longest text.
  std::array<std::size_t, kCountedAs> known_{};
  // Only who was first; their counts are the counters'.
  std::array<ImportWitness, kImportValueClasses> classes_;
  std::int64_t blanks_ = 0;
  std::int64_t empties_ = 0;
  // By rising key.
  std::vector<Layout> layouts_;
  // Place of the one met last; any place.
  std::size_t latestLayout_ = 0;
  // By DayAndMonth. That of none counts from 1, so that there is never a first one.
  std::array<ImportWitness, kDayAndMonthOrders> orders_;
  ImportWitness decimalComma_;
  ImportWitness groupingComma_;
  ImportWitness eitherComma_;
  ImportWitness leadingZeros_;
  ImportWitness longest_;
};

}  // namespace textwizard
