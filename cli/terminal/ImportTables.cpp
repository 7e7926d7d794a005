#include "cli/terminal/ImportTables.h"

#include <algorithm>

#include <fmt/format.h>

#include "library/outputs/ValueText.h"

namespace cli {
namespace {

constexpr std::size_t kMostVariables = 200;
constexpr char kFormatTitle[] = "Format";
constexpr char kWidthTitle[] = "Width";

std::string Count(long long number, std::string_view noun) {
  return fmt::format("{} {}{}", number, noun, number == 1 ? "" : "s");
}

// The text of one value; a view into the case or into `room`.
std::string_view ValueAt(const OBS* obs, const library::CaseColumn& column,
                         library::Utf8Converter& hostText, std::string& room) {
  if (column.kind == library::ValueKind::kString)
    return hostText.ToUtf8(library::StringAt(obs, column));
  const double value = library::NumberAt(obs, column);
  if (library::IsMissing(value)) return ".";
  room.resize(library::kValueTextRoom);
  const char* end = library::WriteValue(room.data(), value, column.kind);
  return {room.data(), static_cast<std::size_t>(end - room.data())};
}

// Says that so many variables are not shown, and which option writes them; empty where all are.
std::string MoreVariables(std::size_t more, const char* option, std::size_t terminalWidth) {
  if (more == 0) return {};
  const std::string text = "and " + Count(static_cast<long long>(more), "more variable");
  const std::string wayOut = fmt::format("({} writes them all)", option);
  const char* between = text.size() + 1 + wayOut.size() <= terminalWidth ? " " : "\n";
  return text + between + wayOut + "\n";
}

}  // namespace

std::string Counts(long long cases, std::size_t variables) {
  return Count(cases, "case") + ", " + Count(static_cast<long long>(variables), "variable");
}

std::string VariableTable(const QANT_DataSource& source, std::size_t terminalWidth) {
  using Align = TerminalTable::Align;
  library::Utf8Converter hostText;
  TerminalTable table;
  const std::size_t shown = std::min(source.GetNVariables(), kMostVariables);
  // Long names are cut before the columns behind them are left out.
  std::size_t formatWidth = std::string_view(kFormatTitle).size();
  for (std::size_t index = 0; index < shown; ++index) {
    const QANT_Format& format = source.GetVariable(index)->GetFormat();
    formatWidth = std::max(formatWidth, library::FormatName(format).size());
  }
  const std::size_t behind =
      formatWidth + std::string_view(kWidthTitle).size() + 2 * TerminalTable::kGap;
  const std::size_t nameWidth =
      std::clamp(terminalWidth > behind ? terminalWidth - behind : 0, TerminalTable::kNarrowestText,
                 TerminalTable::kWidestCell);
  table.AddColumn("Variable", Align::kLeft, nameWidth);
  table.AddColumn(kFormatTitle, Align::kLeft);
  table.AddColumn(kWidthTitle, Align::kRight);
  for (std::size_t index = 0; index < shown; ++index) {
    const QANT_Variable& variable = *source.GetVariable(index);
    const std::string format = library::FormatName(variable.GetFormat());
    const std::string width = std::to_string(variable.GetFormat().width);
    table.AddRow({hostText.ToUtf8(variable.GetName()), format, width});
  }
  std::size_t columns = 0;
  return table.Text(terminalWidth, &columns) +
         MoreVariables(source.GetNVariables() - shown, "--dictionary", terminalWidth);
}

FirstCases::FirstCases(const QANT_DataSource& source, library::ValueStyle style, long long limit,
                       std::size_t terminalWidth, Layout layout)
    : limit_(limit),
      layout_(layout),
      cells_(source.GetObsAreaSize() / sizeof(OBS)),
      terminalWidth_(terminalWidth),
      variables_(source.GetNVariables()),
      columns_(library::ColumnsOf(source, style)) {
  // A column takes one character and its gap at the least.
  const std::size_t most = terminalWidth / (1 + TerminalTable::kGap) + 1;
  std::vector<std::string> formats;
  for (std::size_t index = 0; index < columns_.size(); ++index) {
    const bool seen = index < most || (layout == Layout::kTyped && index + most >= columns_.size());
    if (seen) formats.push_back(library::FormatName(source.GetVariable(index)->GetFormat()));
  }
  if (columns_.size() > formats.size()) {
    unseen_ = columns_.size() - formats.size();
    columns_.erase(columns_.begin() + static_cast<std::ptrdiff_t>(most),
                   columns_.begin() + static_cast<std::ptrdiff_t>(most + unseen_));
  }
  for (const library::CaseColumn& column : columns_) {
    table_.AddColumn(column.name, column.kind == library::ValueKind::kString
                                      ? TerminalTable::Align::kLeft
                                      : TerminalTable::Align::kRight);
  }
  if (layout == Layout::kTyped) table_.AddRow({formats.begin(), formats.end()});
}

// Cases that are to be shown.
struct FirstCases::Part : library::CasePart {
  std::vector<OBS> cells;
  std::size_t count = 0;
};

std::unique_ptr<library::CasePart> FirstCases::Make(const OBS* cases, std::size_t count,
                                                    std::int64_t firstCase) const {
  auto part = std::make_unique<Part>();
  if (firstCase >= limit_) return part;
  const auto left = static_cast<unsigned long long>(limit_ - firstCase);
  part->count = static_cast<std::size_t>(std::min<unsigned long long>(count, left));
  part->cells.assign(cases, cases + part->count * cells_);
  return part;
}

void FirstCases::Take(std::unique_ptr<library::CasePart> part) {
  const Part& made = static_cast<const Part&>(*part);
  for (std::size_t index = 0; index < made.count; ++index) {
    Keep(made.cells.data() + index * cells_);
  }
}

void FirstCases::Keep(const OBS* obs) {
  ++taken_;
  std::vector<std::string> texts;
  texts.reserve(columns_.size());
  std::string room;
  for (const library::CaseColumn& column : columns_) {
    texts.emplace_back(ValueAt(obs, column, hostText_, room));
  }
  table_.AddRow({texts.begin(), texts.end()});
}

std::string FirstCases::Text(const Style& style) const {
  if ((taken_ == 0 && layout_ == Layout::kPlain) || columns_.empty()) return {};
  std::size_t shown = 0;
  if (layout_ == Layout::kTyped) {
    return WithStrongTitles(table_.TextOfEnds(terminalWidth_, unseen_, &shown), style, 1);
  }
  const std::string text = table_.Text(terminalWidth_, &shown);
  return text + MoreVariables(variables_ - shown, "--cases", terminalWidth_);
}

}  // namespace cli
