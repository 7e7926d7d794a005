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
  Screen(std::size_t width, const Style& style) : width_(width), style_(style) {}

  void Line(const std::string& text) {
    const std::string visible = VisibleText(text, width_);
    // Columns that are empty leave no blanks behind.
    text_.append(visible, 0, visible.find_last_not_of(' ') + 1) += '\n';
  }
  void Title(const std::string& file, const std::string& about) {
    const std::string name = VisibleText(file, width_);
    const std::string rest = VisibleText(about, width_ - std::min(width_, DisplayWidth(name) + 2));
    text_ += style_.Strong(name) + (rest.empty() ? "" : "  " + rest) + "\n";
  }
  template <typename T>
  void Setting(const char* name, const std::string& value, const library::Setting<T>& setting) {
    const std::string visible = VisibleText(value, width_ - std::min(width_, kValuePlace));
    const std::string origin = setting.given ? "given" : "found";
    const std::size_t used = std::max(DisplayWidth(visible), kValueWidth);
    text_ += Named(name) + visible + std::string(used - DisplayWidth(visible) + 1, ' ') + origin;
    std::vector<std::string> lines;
    if (!setting.given) lines = Evidence(setting.evidence);
    const bool beside = used == kValueWidth && EvidencePlace() == kEvidencePlace;
    for (std::size_t i = 0; i < lines.size() && !lines[i].empty(); ++i) {
      const bool first = i == 0 && beside;
      text_ += first ? std::string(kOriginWidth - origin.size(), ' ')
                     : "\n" + std::string(EvidencePlace(), ' ');
      text_ += style_.Faint(lines[i]);
    }
    text_ += '\n';
    if (setting.given || setting.runnerUp.empty() || setting.margin >= kClose) return;
    Text("", "or " + setting.runnerUp, &Style::Doubtful);
  }
  // A text that begins where the values of settings do, in as many lines as it takes.
  void Text(const char* name, const std::string& text,
            std::string (Style::*paint)(std::string_view) const = nullptr) {
    const std::size_t width = width_ > 2 * kValuePlace ? width_ - kValuePlace : kValuePlace;
    bool first = true;
    for (const std::string& line : WrappedLines(VisibleText(text), width)) {
      text_ += first ? Named(name) : std::string(kValuePlace, ' ');
      text_ += (paint == nullptr ? line : (style_.*paint)(line)) + "\n";
      first = false;
    }
  }

  const std::string& text() const { return text_; }

 private:
  static constexpr std::size_t kValuePlace = 2 + kNameWidth + 1;
  static constexpr std::size_t kEvidencePlace = kValuePlace + kValueWidth + 1 + kOriginWidth;

  static std::string Named(const char* name) { return fmt::format("  {:<{}} ", name, kNameWidth); }
  // Beside the value, or on a narrow screen below it.
  std::size_t EvidencePlace() const {
    return width_ >= kEvidencePlace + kEvidencePlace / 2 ? kEvidencePlace : kValuePlace;
  }
  std::vector<std::string> Evidence(const std::string& text) const {
    const std::size_t place = EvidencePlace();
    return WrappedLines(VisibleText(text), width_ > place + 2 ? width_ - place : 2);
  }

  const std::size_t width_;
  const Style& style_;
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

std::string SniffSettingsText(const std::string& file, const SniffResult& result, std::size_t width,
                              const Style& style) {
  Screen screen(width, style);
  screen.Title(file, Bytes(result.fileSize) + (result.readWhole ? "" : ", looked at in parts"));
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
    screen.Text("line breaks",
                fmt::format("{} within qualified fields, first in line {}",
                            result.lineBreaksInQuotes.count, result.lineBreaksInQuotes.firstLine));
  }
  screen.Setting("header", HeaderText(result), result.headerLines);
  screen.Setting("data", DataText(result), result.firstDataLine);
  if (const std::string others = OthersText(result); !others.empty()) {
    screen.Text("not read", others, &Style::Doubtful);
  }
  screen.Setting("decimal", library::NameOf(result.decimal.value), result.decimal);
  screen.Text("sure", library::NameOf(result.verdict),
              result.verdict == library::Verdict::kGuess ? &Style::Doubtful : &Style::Good);
  if (!result.advice.empty()) screen.Text("", result.advice, &Style::Doubtful);
  return screen.text();
}

std::string SniffColumnsText(const SniffResult& result, std::size_t width, const Style& style) {
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
  return WithStrongTitles(table.Text(width, &shown), style);
}

}  // namespace cli
