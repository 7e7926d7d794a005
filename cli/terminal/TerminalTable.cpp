#include "cli/terminal/TerminalTable.h"

#include <algorithm>

#include "cli/terminal/VisibleText.h"

namespace cli {

void TerminalTable::AddColumn(std::string_view title, Align align, std::size_t widest) {
  columns_.push_back({align, widest, 0, {}});
  AddCell(columns_.back(), title);
}

void TerminalTable::AddRow(const std::vector<std::string_view>& cells) {
  for (std::size_t index = 0; index < columns_.size(); ++index) {
    AddCell(columns_[index], cells[index]);
  }
}

void TerminalTable::AddCell(Column& column, std::string_view text) {
  std::string visible = VisibleText(text, column.widest);
  column.width = std::max(column.width, DisplayWidth(visible));
  column.cells.push_back(std::move(visible));
}

std::string TerminalTable::Text(std::size_t width, std::size_t* shown) const {
  std::vector<std::size_t> widths;
  std::size_t used = 0;
  for (const Column& column : columns_) {
    const std::size_t gap = widths.empty() ? 0 : kGap;
    const std::size_t left = width > used + gap ? width - used - gap : 0;
    const bool narrowed = column.align == Align::kLeft && left >= kNarrowestText;
    if (column.width > left && !widths.empty() && !narrowed) break;
    widths.push_back(std::min(column.width, left));
    used += gap + widths.back();
  }
  *shown = widths.size();
  std::string text;
  const std::size_t rows = columns_.empty() ? 0 : columns_.front().cells.size();
  for (std::size_t row = 0; row < rows; ++row) {
    std::string line;
    for (std::size_t index = 0; index < widths.size(); ++index) {
      const std::string cell = VisibleText(columns_[index].cells[row], widths[index]);
      const std::string padding(widths[index] - DisplayWidth(cell), ' ');
      if (index > 0) line.append(kGap, ' ');
      line += columns_[index].align == Align::kRight ? padding + cell : cell + padding;
    }
    line.resize(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace cli
