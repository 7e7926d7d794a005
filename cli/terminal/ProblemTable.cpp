#include "cli/terminal/ProblemTable.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "cli/terminal/TerminalTable.h"
#include "library/report/ProblemKind.h"

namespace cli {
namespace {

constexpr std::size_t kMostRows = 40;

}  // namespace

std::string ProblemTable(const library::ProblemLog& problems,
                         const library::ReportVariables& variables, std::size_t terminalWidth) {
  std::string text =
      fmt::format("{} problem{}\n", problems.total(), problems.total() == 1 ? "" : "s");
  const std::vector<library::ProblemLog::Entry> entries = problems.Entries();
  if (entries.empty()) return text;

  using Align = TerminalTable::Align;
  TerminalTable table;
  table.AddColumn("Variable", Align::kLeft);
  table.AddColumn("Kind", Align::kLeft);
  table.AddColumn("Count", Align::kRight);
  const bool several = std::any_of(entries.begin(), entries.end(),
                                   [](const auto& entry) { return !entry.firstFile.empty(); });
  if (several) table.AddColumn("First file", Align::kLeft);
  table.AddColumn("First line", Align::kRight);
  table.AddColumn("First text", Align::kLeft);
  const std::size_t shown = std::min(entries.size(), kMostRows);
  for (std::size_t index = 0; index < shown; ++index) {
    const library::ProblemLog::Entry& entry = entries[index];
    const library::ReportVariable* variable = library::VariableAt(variables, entry.variable);
    const std::string count = std::to_string(entry.count);
    const std::string line = std::to_string(entry.firstLine);
    std::vector<std::string_view> row = {
        variable == nullptr ? "(record)" : std::string_view(variable->name),
        library::NameOf(entry.kind), count};
    if (several) row.push_back(entry.firstFile);
    row.insert(row.end(), {line, entry.firstText});
    table.AddRow(row);
  }
  std::size_t columns = 0;
  text += table.Text(terminalWidth, &columns);
  if (entries.size() > shown) {
    text +=
        fmt::format("and {} more rows (--problems writes every problem)\n", entries.size() - shown);
  }
  return text;
}

}  // namespace cli
