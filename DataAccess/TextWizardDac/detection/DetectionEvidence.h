// What detection has seen of a variable's values besides its counters, for a host that watches: the
// first value of each class, the layouts of dates, values that could be read in two ways.
#pragma once

#include <algorithm>
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
    if (field.size() > known_[static_cast<std::size_t>(as)]) return false;
    const char first = field.front();
    // The commonest first; where what was counted is known, nothing is left of the others.
    if (as == CountedAs::kPlainNumber) {
      return first != '0' || field.size() == 1 || !IsDigit(field[1]);
    }
    if (as == CountedAs::kString) {
      // One of digits at both ends may have a day and a month.
      if (first > '9') return true;
      if (IsDigit(first)) return IsDigit(field.back()) && TakesOrder(counters.order());
      return !IsBlankCharacter(first);
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

  static constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
  ImportWitness& OrderOf(DayAndMonth order) { return orders_[static_cast<std::size_t>(order)]; }
  bool TakesOrder(DayAndMonth order) {
    ImportWitness& seen = OrderOf(order);
    if (seen.count == 0) return false;
    ++seen.count;
    return true;
  }
  bool TakesDate(int key, DayAndMonth order) {
    std::int64_t& count = latest_[static_cast<std::size_t>(order)];
    if (key != latestKey_ || count == 0) return false;
    ++count;
    return true;
  }
  // Dates of the latest layout and of that order that are counted there only.
  std::int64_t LatestOf(std::size_t order) const {
    return std::max<std::int64_t>(latest_[order] - 1, 0);
  }
  std::int64_t CountOf(const Layout& layout) const;
  // An order with all that it counts.
  ImportWitness WholeOrder(DayAndMonth order) const;
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
  // The key of the one met last, 0 for none. By DayAndMonth: 0 until such a date of it was added,
  // then 1 and those that were taken since, which are counted nowhere else.
  int latestKey_ = 0;
  std::array<std::int64_t, kDayAndMonthOrders> latest_{};
  // By DayAndMonth. That of none counts from 1, so that there is never a first one.
  std::array<ImportWitness, kDayAndMonthOrders> orders_;
  ImportWitness decimalComma_;
  ImportWitness groupingComma_;
  ImportWitness eitherComma_;
  ImportWitness leadingZeros_;
  ImportWitness longest_;
};

}  // namespace textwizard
