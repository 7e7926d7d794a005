// The sample as a table: rows of fields with what each value is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "library/sniff/CellKinds.h"
#include "library/sniff/Dialect.h"
#include "library/sniff/RecordCutter.h"
#include "library/sniff/SampleRecords.h"

namespace library {

struct SampleCell {
  std::string_view text;  // blanks around it are not part of it
  CellKind kind = CellKind::kEmpty;
  bool qualified = false;

  bool empty() const { return kind == CellKind::kEmpty; }
};

struct SampleRow {
  // The region of the sample that it is in, the index of its first line there, and how many lines
  // it has.
  std::size_t region = 0;
  std::size_t line = 0;
  std::size_t lines = 1;
  // Its cells among the table's.
  std::size_t first = 0;
  std::size_t count = 0;
};

// Cuts lines into records, those into cells. Texts live in the lines or in the table.
class SampleTable {
 public:
  SampleTable(const Dialect& dialect, CellKinds& kinds) : cutter_(dialect), kinds_(kinds) {}

  // Adds a record of a region of the sample. Returns its number of cells.
  std::size_t Add(const SampleRecord& record, std::size_t region);
  // Adds a record that is one text, whatever the dialect cuts.
  void AddUncut(const SampleRecord& record, std::size_t region);

  const std::vector<SampleRow>& rows() const { return rows_; }
  std::size_t cells() const { return cells_.size(); }
  const SampleCell* Cells(const SampleRow& row) const { return cells_.data() + row.first; }
  // The cell of a column; an empty one where the row is shorter.
  const SampleCell& Cell(const SampleRow& row, std::size_t column) const {
    return column < row.count ? cells_[row.first + column] : none_;
  }

 private:
  RecordCutter cutter_;
  CellKinds& kinds_;
  std::vector<RecordCutter::Field> fields_;
  std::vector<SampleRow> rows_;
  std::vector<SampleCell> cells_;
  // Texts that are no views of the lines.
  std::vector<std::unique_ptr<std::string>> texts_;
  SampleCell none_;
};

}  // namespace library
