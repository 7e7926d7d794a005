#include "cli/terminal/ImportTables.h"

#include <algorithm>

#include <fmt/format.h>

#include "library/outputs/ValueText.h"

namespace cli {
namespace {

constexpr std::size_t kMostVariables = 200;

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

}  // namespace

std::string Counts(long long cases, std::size_t variables) {
  return Count(cases, "case") + ", " + Count(static_cast<long long>(variables), "variable");
}

std::string VariableTable(const QANT_DataSource& source) {
  using Align = TerminalTable::Align;
  library::Utf8Converter hostText;
  TerminalTable table;
  table.AddColumn("Variable", Align::kLeft);
  table.AddColumn("Format", Align::kLeft);
  table.AddColumn("Width", Align::kRight);
  const std::size_t shown = std::min(source.GetNVariables(), kMostVariables);
  for (std::size_t index = 0; index < shown; ++index) {
    const QANT_Variable& variable = *source.GetVariable(index);
    const std::string format = library::FormatName(variable.GetFormat());
    const std::string width = std::to_string(variable.GetFormat().width);
    table.AddRow({hostText.ToUtf8(variable.GetName()), format, width});
  }
  std::size_t columns = 0;
  std::string text = table.Text(std::string::npos, &columns);
  if (const std::size_t more = source.GetNVariables() - shown; more > 0) {
    text += fmt::format("and {} (--dictionary writes them all)\n",
                        Count(static_cast<long long>(more), "more variable"));
  }
  return text;
}

FirstCases::FirstCases(const QANT_DataSource& source, library::ValueStyle style, long long limit,
                       std::size_t terminalWidth)
    : limit_(limit),
      terminalWidth_(terminalWidth),
      variables_(source.GetNVariables()),
      columns_(library::ColumnsOf(source, style)) {
  // A column takes one character and its gap at the least.
  columns_.resize(std::min(columns_.size(), terminalWidth / (1 + TerminalTable::kGap) + 1));
  for (const library::CaseColumn& column : columns_) {
    table_.AddColumn(column.name, column.kind == library::ValueKind::kString
                                      ? TerminalTable::Align::kLeft
                                      : TerminalTable::Align::kRight);
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

std::string FirstCases::Text() const {
  if (taken_ == 0 || columns_.empty()) return {};
  std::size_t shown = 0;
  std::string text = table_.Text(terminalWidth_, &shown);
  if (const std::size_t more = variables_ - shown; more > 0) {
    text += fmt::format("and {} (--cases writes them all)\n",
                        Count(static_cast<long long>(more), "more variable"));
  }
  return text;
}

}  // namespace cli
