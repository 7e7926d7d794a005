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

std::size_t TerminalTable::WidthOf(const Column& column, std::size_t widest) {
  return column.align == Align::kLeft ? std::min(column.width, widest) : column.width;
}

std::string TerminalTable::TextOfEnds(std::size_t width, std::size_t unseen,
                                      std::size_t* shown) const {
  constexpr std::size_t kEndWidest = 20;
  for (const std::size_t widest : {kWidestCell, kEndWidest, kNarrowestText}) {
    std::size_t used = 0;
    for (const Column& column : columns_) used += WidthOf(column, widest) + kGap;
    if (unseen > 0 || used > width + kGap) continue;
    TerminalTable narrowed = *this;
    for (Column& column : narrowed.columns_) column.width = WidthOf(column, widest);
    return narrowed.Text(width, shown);
  }
  const std::string most = std::to_string(columns_.size() + unseen) + " more";
  std::size_t left = width > most.size() ? width - most.size() : 0;
  // Two columns from the front, one from the back, as long as they fit.
  std::size_t front = 0;
  std::size_t back = 0;
  while (front + back < columns_.size()) {
    const bool isLast = (front + back) % 3 == 2;
    const Column& column = isLast ? columns_[columns_.size() - 1 - back] : columns_[front];
    const std::size_t needed = WidthOf(column, kEndWidest) + kGap;
    if (needed > left && front > 0) break;
    left -= std::min(needed, left);
    ++(isLast ? back : front);
  }
  TerminalTable ends;
  const auto add = [&](std::size_t index) {
    ends.columns_.push_back(columns_[index]);
    ends.columns_.back().width = WidthOf(columns_[index], kEndWidest);
  };
  for (std::size_t index = 0; index < front; ++index) add(index);
  if (const std::size_t more = columns_.size() - front - back + unseen; more > 0) {
    ends.AddColumn(std::to_string(more) + " more", Align::kRight);
    if (!columns_.empty()) ends.columns_.back().cells.resize(columns_.front().cells.size());
  }
  for (std::size_t index = columns_.size() - back; index < columns_.size(); ++index) add(index);
  std::size_t all = 0;
  std::string text = ends.Text(width, &all);
  *shown = front + back;
  return text;
}

std::string WithStrongTitles(const std::string& table, const Style& style, std::size_t faint) {
  std::string text;
  std::size_t begin = 0;
  for (std::size_t line = 0; line <= faint && begin < table.size(); ++line) {
    const std::size_t end = std::min(table.find('\n', begin), table.size());
    const std::string_view shown = std::string_view(table).substr(begin, end - begin);
    text += (line == 0 ? style.Strong(shown) : style.Faint(shown)) + "\n";
    begin = std::min(end + 1, table.size());
  }
  return text + table.substr(begin);
}

}  // namespace cli
