#include "cli/terminal/SniffScreen.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "cli/terminal/TerminalTable.h"
#include "cli/terminal/VisibleText.h"
#include "library/sniff/SniffEvidence.h"
#include "library/sniff/SniffJson.h"

namespace cli {
namespace {

using library::SniffResult;

// A runner-up that is this far behind is not worth a line.
constexpr double kClose = 0.5;
constexpr std::size_t kNameWidth = 11;
constexpr std::size_t kValueWidth = 18;
constexpr std::size_t kOriginWidth = 7;
// Columns that are shown of many: so many first ones, so many last ones.
constexpr std::size_t kFirstColumns = 12;
constexpr std::size_t kLastColumns = 3;

std::string Bytes(std::uint64_t bytes) {
  if (bytes < 10000) return fmt::format("{} byte{}", bytes, bytes == 1 ? "" : "s");
  if (bytes < 10000000) return fmt::format("{:.1f} kB", static_cast<double>(bytes) / 1e3);
  return fmt::format("{:.1f} MB", static_cast<double>(bytes) / 1e6);
}

class Screen {
 public:
  explicit Screen(std::size_t width) : width_(width) {}

  void Line(const std::string& text) {
    const std::string visible = VisibleText(text, width_);
    // Columns that are empty leave no blanks behind.
    text_.append(visible, 0, visible.find_last_not_of(' ') + 1) += '\n';
  }
  template <typename T>
  void Setting(const char* name, const std::string& value, const library::Setting<T>& setting) {
    Line(fmt::format("  {:<{}} {:<{}} {:<{}}{}", name, kNameWidth, VisibleText(value), kValueWidth,
                     setting.given ? "given" : "found", kOriginWidth,
                     setting.given ? "" : setting.evidence));
    if (!setting.given && !setting.runnerUp.empty() && setting.margin < kClose) {
      Line(fmt::format("  {:<{}} or {}", "", kNameWidth, setting.runnerUp));
    }
  }

  const std::string& text() const { return text_; }

 private:
  const std::size_t width_;
  std::string text_;
};

std::string LineEndName(library::LineEnd lineEnd) {
  switch (lineEnd) {
    case library::LineEnd::kLf:
      return "LF";
    case library::LineEnd::kCrLf:
      return "CR LF";
    case library::LineEnd::kCr:
      return "CR";
    case library::LineEnd::kMixed:
      break;
  }
  return "mixed";
}

std::string HeaderText(const SniffResult& result) {
  const std::int64_t lines = result.headerLines.value;
  if (lines == 0) return "none";
  return lines == 1 ? "1 line" : fmt::format("{} lines", lines);
}

std::string DataText(const SniffResult& result) {
  if (result.lastDataLine) {
    return fmt::format("line {} to {}", result.firstDataLine.value, *result.lastDataLine);
  }
  return fmt::format("from line {}", result.firstDataLine.value);
}

// What stands around the data and is not read.
std::string OthersText(const SniffResult& result) {
  std::vector<std::string> parts;
  const auto add = [&](std::int64_t count, const char* where) {
    if (count > 0)
      parts.push_back(fmt::format("{} line{} {}", count, count == 1 ? "" : "s", where));
  };
  add(result.preambleLines, "above the header or the data");
  add(result.footerLines, "behind the data");
  if (!result.comment.empty())
    parts.push_back(fmt::format("remarks begin with {}", result.comment));
  return fmt::format("{}", fmt::join(parts, ", "));
}

library::Dialect DialectOf(const SniffResult& result) {
  library::Dialect dialect;
  dialect.delimiter = result.delimiter.value;
  dialect.multipleBlanks = result.multipleBlanks;
  if (result.arrangement.value == library::Arrangement::kFixed) {
    for (const library::SniffColumn& column : result.columns)
      dialect.columns.push_back(column.range);
    if (dialect.columns.empty()) dialect.columns.emplace_back();
  }
  return dialect;
}

}  // namespace

std::string SniffSettingsText(const std::string& file, const SniffResult& result,
                              std::size_t width) {
  Screen screen(width);
  screen.Line(fmt::format("{}  {}{}", file, Bytes(result.fileSize),
                          result.readWhole ? "" : ", looked at in parts"));
  screen.Setting("encoding", result.encoding.value + (result.byteOrderMark ? " with mark" : ""),
                 result.encoding);
  screen.Setting("line end", LineEndName(result.lineEnd.value), result.lineEnd);
  const library::Dialect dialect = DialectOf(result);
  screen.Setting("delimiter", library::NameOfDelimiter(dialect), result.delimiter);
  if (!dialect.fixed()) {
    screen.Setting("qualifier", library::NameOfQualifier(result.qualifier.value), result.qualifier);
    if (result.escape.value != library::Escape::kNone) {
      screen.Setting("escape", library::NameOf(result.escape.value), result.escape);
    }
  }
  if (result.lineBreaksInQuotes.count > 0) {
    screen.Line(fmt::format("  {:<{}} {} within qualified fields, first in line {}", "line breaks",
                            kNameWidth, result.lineBreaksInQuotes.count,
                            result.lineBreaksInQuotes.firstLine));
  }
  screen.Setting("header", HeaderText(result), result.headerLines);
  screen.Setting("data", DataText(result), result.firstDataLine);
  if (const std::string others = OthersText(result); !others.empty()) {
    screen.Line(fmt::format("  {:<{}} {}", "not read", kNameWidth, others));
  }
  screen.Setting("decimal", library::NameOf(result.decimal.value), result.decimal);
  screen.Line(fmt::format("  {:<{}} {}", "sure", kNameWidth, library::NameOf(result.verdict)));
  if (!result.advice.empty())
    screen.Line(fmt::format("  {:<{}} {}", "", kNameWidth, result.advice));
  return screen.text();
}

std::string SniffColumnsText(const SniffResult& result, std::size_t width) {
  const std::size_t count = result.columns.size();
  if (count == 0) return "no columns\n";
  const bool fixed = result.arrangement.value == library::Arrangement::kFixed;
  const bool labels = std::any_of(result.columns.begin(), result.columns.end(),
                                  [](const library::SniffColumn& column) {
                                    return !column.label.empty() && column.label != column.name;
                                  });
  TerminalTable table;
  table.AddColumn("", TerminalTable::Align::kRight);
  table.AddColumn("column", TerminalTable::Align::kLeft);
  table.AddColumn("format", TerminalTable::Align::kLeft);
  if (fixed) table.AddColumn("place", TerminalTable::Align::kLeft);
  if (labels) table.AddColumn("header", TerminalTable::Align::kLeft);
  const bool all = count <= kFirstColumns + kLastColumns;
  for (std::size_t i = 0; i < count; ++i) {
    if (!all && i == kFirstColumns) {
      const std::string between = fmt::format("({} more)", count - kFirstColumns - kLastColumns);
      std::vector<std::string_view> cells = {"", between, ""};
      if (fixed) cells.emplace_back();
      if (labels) cells.emplace_back();
      table.AddRow(cells);
      i = count - kLastColumns;
    }
    const library::SniffColumn& column = result.columns[i];
    const std::string number = std::to_string(i + 1);
    const std::string place = column.range.to == 0
                                  ? fmt::format("{}-", column.range.from)
                                  : fmt::format("{}-{}", column.range.from, column.range.to);
    std::vector<std::string_view> cells = {number, column.name, column.format};
    if (fixed) cells.push_back(place);
    if (labels) cells.push_back(column.label == column.name ? "" : std::string_view(column.label));
    table.AddRow(cells);
  }
  std::size_t shown = 0;
  return table.Text(width, &shown);
}

}  // namespace cli
