// Rows of short texts in aligned columns.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/terminal/Style.h"

namespace cli {

class TerminalTable {
 public:
  enum class Align { kLeft, kRight };

  // Texts of cells and titles are UTF-8 of any kind; the table makes them visible and cuts those
  // wider than `widest` columns.
  void AddColumn(std::string_view title, Align align, std::size_t widest = kWidestCell);
  // As many cells as there are columns.
  void AddRow(const std::vector<std::string_view>& cells);

  // The table, a line a row, none wider than `width`: as many columns as fit, but at least one; a
  // column of texts that is too wide for what is left is narrowed to that, and so is the first
  // column. *shown becomes the number of columns that are there.
  std::string Text(std::size_t width, std::size_t* shown) const;

  // The same with the first and the last columns where not all fit, texts narrowed first, and a
  // column between them that says how many are not shown besides `unseen` others. *shown as above.
  std::string TextOfEnds(std::size_t width, std::size_t unseen, std::size_t* shown) const;

  static constexpr std::size_t kWidestCell = 40;
  // A column of texts is not narrowed below this.
  static constexpr std::size_t kNarrowestText = 12;
  // Blanks between two columns.
  static constexpr std::size_t kGap = 2;

 private:
  struct Column {
    Align align;
    std::size_t widest;
    std::size_t width;
    std::vector<std::string> cells;  // the title, then a cell a row
  };
  static void AddCell(Column& column, std::string_view text);
  // The width of a column whose text is narrowed to `widest`.
  static std::size_t WidthOf(const Column& column, std::size_t widest);

  std::vector<Column> columns_;
};

// A table's text with its first line, the titles, made strong, and `faint` lines behind it faint.
std::string WithStrongTitles(const std::string& table, const Style& style, std::size_t faint = 0);

}  // namespace cli
