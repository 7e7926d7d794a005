#include "library/sniff/TotalRows.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "HostFramework/ValueInput.h"
#include "model/FormatCode.h"

namespace library {
namespace {

// Columns of numbers that are summed, and rows that are looked at for a sum.
constexpr std::size_t kMostColumns = 12;
constexpr std::size_t kMostRows = 300;
// A total of rounded values differs by so much of itself.
constexpr double kRounding = 0.005;
constexpr double kOneRounding = 1e-7;
// Small numbers are sums by chance, and those of one column alone up to larger ones.
constexpr double kSmall = 20;
constexpr double kSmallAlone = 10000;
// A total of fewer than so many rows proves nothing.
constexpr std::size_t kFewestParts = 2;

std::optional<double> NumberOf(const SampleCell& cell) {
  double value = 0;
  if (cell.kind != CellKind::kNumber && cell.kind != CellKind::kAmount) return std::nullopt;
  if (IocvConvertInput(cell.text.data(), cell.text.size(), textwizard::kFormatComma, 0, &value)) {
    return std::nullopt;
  }
  return value;
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + 32) : byte;
  });
  return lower;
}

// The longest text that names a total.
constexpr std::size_t kLongestName = 60;

bool IsLetter(char byte) { return byte >= 'a' && byte <= 'z'; }

// `word` stands in `text` (lower case) and is not a part of another word.
bool HasWord(std::string_view text, std::string_view word) {
  for (std::size_t at = text.find(word); at != std::string_view::npos;
       at = text.find(word, at + 1)) {
    const bool begins = at == 0 || !IsLetter(text[at - 1]);
    const bool ends = at + word.size() == text.size() || !IsLetter(text[at + word.size()]);
    if (begins && ends) return true;
  }
  return false;
}

// The row's first text, in lower case; empty where its first value is none.
std::string FirstText(const SampleTable& table, const SampleRow& row) {
  const SampleCell* const cells = table.Cells(row);
  std::size_t first = 0;
  while (first < row.count && cells[first].empty()) ++first;
  if (first == row.count || cells[first].kind != CellKind::kText) return {};
  return Lower(cells[first].text);
}

}  // namespace

bool IsCalledTotal(const SampleTable& table, std::size_t row) {
  const std::string text = FirstText(table, table.rows()[row]);
  if (text.size() > kLongestName) return false;
  return text.starts_with("total") || text.starts_with("grand total") || text.ends_with(" total") ||
         text.ends_with(" totals") || HasWord(text, "subtotal") || HasWord(text, "totals");
}

namespace {

// The row holds no less than any row below it, in at least half of its columns of numbers.
bool IsLargest(const SampleTable& table, const TableFacts& facts, std::size_t row) {
  std::size_t columns = 0;
  std::size_t largest = 0;
  for (std::size_t j = 0; j < facts.columns() && columns < kMostColumns; ++j) {
    const std::optional<double> value = NumberOf(table.Cell(table.rows()[row], j));
    if (!facts.IsNumeric(j) || !value) continue;
    ++columns;
    bool most = true;
    const std::size_t end = std::min(table.rows().size(), row + 1 + kMostRows);
    for (std::size_t i = row + 1; i < end; ++i) {
      most = most && NumberOf(table.Cell(table.rows()[i], j)).value_or(*value) <= *value;
    }
    largest += most ? 1 : 0;
  }
  return columns > 0 && 2 * largest >= columns;
}

}  // namespace

bool IsTotalAbove(const SampleTable& table, const TableFacts& facts, std::size_t row) {
  const bool called =
      IsCalledTotal(table, row) || FirstText(table, table.rows()[row]).starts_with("all ");
  if (called && IsLargest(table, facts, row)) return true;
  std::vector<std::size_t> columns;
  std::vector<double> totals;
  for (std::size_t j = 0; j < facts.columns() && columns.size() < kMostColumns; ++j) {
    if (!facts.IsNumeric(j)) continue;
    const std::optional<double> value = NumberOf(table.Cell(table.rows()[row], j));
    if (!value || std::abs(*value) < kSmall) continue;
    columns.push_back(j);
    totals.push_back(*value);
  }
  if (columns.empty()) return false;
  std::vector<double> sums(columns.size());
  std::size_t parts = 0;
  const std::size_t end = std::min(table.rows().size(), row + 1 + kMostRows);
  for (std::size_t i = row + 1; i < end; ++i) {
    if (!facts.IsData(i)) continue;
    ++parts;
    for (std::size_t k = 0; k < columns.size(); ++k) {
      sums[k] += NumberOf(table.Cell(table.rows()[i], columns[k])).value_or(0.0);
    }
    if (parts < kFewestParts) continue;
    std::size_t equal = 0;
    // One column alone comes near to any number by chance.
    const double rounding = columns.size() > 1 ? kRounding : kOneRounding;
    for (std::size_t k = 0; k < columns.size(); ++k) {
      equal += std::abs(sums[k] - totals[k]) <= rounding * std::abs(totals[k]) ? 1 : 0;
    }
    if (equal >= 2 ? 4 * equal >= 3 * columns.size()
                   : columns.size() == 1 && equal == 1 && parts > 3 &&
                         std::abs(totals[0]) >= kSmallAlone) {
      return true;
    }
  }
  return false;
}

}  // namespace library
