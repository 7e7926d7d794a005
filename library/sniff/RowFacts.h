// What a row looks like, by itself and against the columns of its table.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "library/sniff/SampleTable.h"

namespace library {

// A value made of digits and signs only: a number, a date, an amount in any currency.
bool LooksNumeric(const SampleCell& cell);
// What stands where a value is missing or withheld: "-", "*", "..", "(NA)", "n/a".
bool IsPlaceholder(const SampleCell& cell);
// A unit of a column of numbers, such as "(1,000)".
bool IsUnit(std::string_view text);
// A year, such as "1998" or "2005.0".
bool IsYear(std::string_view text);

struct RowFacts {
  std::size_t fields = 0;  // cells, empty ones too
  std::size_t filled = 0;  // cells that are not empty
  std::size_t quotedEmpties = 0;
  std::size_t firstFilled = 0;  // the first of them
  std::size_t numeric = 0;      // cells that look numeric
  // The numbers are years, ranges or such as rise by one from cell to cell: names of columns.
  bool counts = false;
  // Of the texts of its cells.
  std::size_t hash = 0;
  // Against the columns of numbers: cells there that look numeric or are placeholders, and cells
  // that are other texts.
  double agree = 0.0;
  double contradict = 0.0;

  bool blank() const { return filled == 0; }
  // A title, or a note.
  bool lone() const { return filled == 1; }
};

// Columns whose values are numbers, and what the rows are against them.
class TableFacts {
 public:
  explicit TableFacts(const SampleTable& table);

  const std::vector<RowFacts>& rows() const { return rows_; }
  // Filled cells of most rows that have more than one; 1 where hardly any row has.
  std::size_t typical() const { return typical_; }
  // Fields of most rows that have any value.
  std::size_t width() const { return width_; }
  std::size_t columns() const { return numeric_.size(); }
  bool IsNumeric(std::size_t column) const { return numeric_[column]; }
  std::size_t numericColumns() const;

  // A row that speaks for itself: more numbers than texts in the columns of numbers.
  bool IsData(std::size_t row) const {
    const RowFacts& facts = rows_[row];
    return facts.agree > facts.contradict && !facts.counts;
  }
  bool IsHeader(std::size_t row) const {
    const RowFacts& facts = rows_[row];
    return facts.filled > 0 && (facts.counts || facts.contradict > facts.agree);
  }

 private:
  void FindTypical();
  void FindWidth();
  std::vector<std::size_t> BodyRows() const;
  void FindNumericColumns(const SampleTable& table);
  void Compare(const SampleTable& table);

  std::vector<RowFacts> rows_;
  std::vector<bool> numeric_;
  // Dates are among the numeric column's values.
  std::vector<bool> dates_;
  std::size_t typical_ = 1;
  std::size_t width_ = 0;
};

}  // namespace library
