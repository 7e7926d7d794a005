#include "library/sniff/HeaderLabels.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "library/sniff/TotalRows.h"

namespace library {
namespace {

// A width that so many of the rows reach is the table's.
constexpr double kReachingShare = 0.01;

std::size_t LastFilled(const SampleTable& table, const SampleRow& row) {
  const SampleCell* const cells = table.Cells(row);
  std::size_t last = row.count;
  while (last > 0 && cells[last - 1].empty()) --last;
  return last;
}

// Line breaks and runs of blanks within a text become one blank.
void AppendText(std::string_view text, std::string* label) {
  for (const char byte : text) {
    const bool space = byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
    if (!space) {
      *label += byte;
    } else if (!label->empty() && label->back() != ' ') {
      *label += ' ';
    }
  }
  while (!label->empty() && label->back() == ' ') label->pop_back();
}

}  // namespace

RowKind KindOfRow(const SampleTable& table, std::size_t row, const TableShape& shape) {
  const SampleRow& one = table.rows()[row];
  const std::size_t filled = LastFilled(table, one);
  if (filled == 0) return RowKind::kBlank;
  if (row >= shape.endData) return IsCalledTotal(table, row) ? RowKind::kTotal : RowKind::kNote;
  const SampleCell* const cells = table.Cells(one);
  const auto count =
      std::count_if(cells, cells + one.count, [](const SampleCell& cell) { return !cell.empty(); });
  if (count == 1 && filled == 1 && one.count > 1 && cells[0].kind == CellKind::kText &&
      shape.titles) {
    return RowKind::kTitle;
  }
  return RowKind::kData;
}

std::size_t WidthOf(const SampleTable& table, const TableShape& shape, const Dialect& dialect,
                    bool whole) {
  if (dialect.fixed()) return dialect.columns.size();
  const auto& rows = table.rows();
  std::map<std::size_t, std::size_t> counts;
  std::size_t total = 0;
  for (std::size_t i = shape.firstData; i < std::min(shape.endData, rows.size()); ++i) {
    ++counts[rows[i].count];
    ++total;
  }
  std::size_t header = 0;
  for (std::size_t i = shape.headerBegin; i < shape.headerEnd; ++i) {
    header = std::max(header, LastFilled(table, rows[i]));
  }
  if (total == 0) {
    for (const SampleRow& row : rows) header = std::max(header, row.count);
    return header;
  }
  std::size_t width = 0;
  std::size_t reaching = 0;
  for (auto it = counts.rbegin(); it != counts.rend(); ++it) {
    reaching += it->second;
    width = it->first;
    if (static_cast<double>(reaching) >= kReachingShare * static_cast<double>(total) &&
        (reaching > 1 || total < 20)) {
      break;
    }
  }
  width = std::max(width, header);
  if (!whole || header == 0) return std::max<std::size_t>(width, 1);
  std::size_t used = header;
  for (std::size_t i = shape.firstData; i < shape.endData; ++i) {
    used = std::max(used, std::min(width, LastFilled(table, rows[i])));
  }
  return std::max<std::size_t>(used, 1);
}

std::vector<std::string> HeaderLabels(const SampleTable& table, const TableShape& shape,
                                      std::size_t width) {
  std::vector<std::string> labels(width);
  const auto& rows = table.rows();
  std::size_t lowest = shape.headerEnd;
  while (lowest > shape.headerBegin && LastFilled(table, rows[lowest - 1]) == 0) --lowest;
  for (std::size_t i = shape.headerBegin; i < lowest; ++i) {
    // A text above several columns stands in the first of them.
    std::string_view spanning;
    for (std::size_t j = 0; j < width; ++j) {
      std::string_view text = table.Cell(rows[i], j).text;
      if (i + 1 < lowest && j > 0) {
        const bool named = !table.Cell(rows[lowest - 1], j).empty();
        if (text.empty() && named) text = spanning;
      }
      if (!table.Cell(rows[i], j).empty()) spanning = table.Cell(rows[i], j).text;
      if (text.empty()) continue;
      if (!labels[j].empty()) labels[j] += ' ';
      AppendText(text, &labels[j]);
    }
  }
  return labels;
}

}  // namespace library
