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
// A total of fewer than so many rows proves nothing.
constexpr std::size_t kFewestParts = 2;

std::optional<double> NumberOf(const SampleCell& cell) {
  double value = 0;
  if (cell.kind != ValueKind::kNumber && cell.kind != ValueKind::kAmount) return std::nullopt;
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

}  // namespace

bool IsCalledTotal(const SampleTable& table, std::size_t row) {
  const SampleRow& one = table.rows()[row];
  const SampleCell* const cells = table.Cells(one);
  for (std::size_t i = 0; i < std::min<std::size_t>(one.count, 3); ++i) {
    if (cells[i].kind != ValueKind::kText || LooksNumeric(cells[i])) continue;
    const std::string text = Lower(cells[i].text);
    if (text.starts_with("total") || text.starts_with("grand total") || text.ends_with(" total") ||
        text.starts_with("sum of ") || HasWord(text, "totals") || HasWord(text, "subtotal")) {
      return true;
    }
  }
  return false;
}

namespace {

// "All industries": a row that says it is everything, and holds no less than any row below it.
bool IsAllAbove(const SampleTable& table, const TableFacts& facts, std::size_t row) {
  const SampleRow& one = table.rows()[row];
  std::size_t first = 0;
  while (first < one.count && table.Cells(one)[first].empty()) ++first;
  if (first == one.count || !Lower(table.Cells(one)[first].text).starts_with("all ")) return false;
  std::size_t columns = 0;
  std::size_t largest = 0;
  for (std::size_t j = 0; j < facts.columns() && columns < kMostColumns; ++j) {
    const std::optional<double> value = NumberOf(table.Cell(one, j));
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
  if (IsCalledTotal(table, row) || IsAllAbove(table, facts, row)) return true;
  std::vector<std::size_t> columns;
  std::vector<double> totals;
  for (std::size_t j = 0; j < facts.columns() && columns.size() < kMostColumns; ++j) {
    if (!facts.IsNumeric(j)) continue;
    const std::optional<double> value = NumberOf(table.Cell(table.rows()[row], j));
    // Small numbers are sums by chance.
    if (!value || std::abs(*value) < 20) continue;
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
    for (std::size_t k = 0; k < columns.size(); ++k) {
      equal += std::abs(sums[k] - totals[k]) <= kRounding * std::abs(totals[k]) ? 1 : 0;
    }
    if (equal >= 2 ? 4 * equal >= 3 * columns.size()
                   : columns.size() == 1 && equal == 1 && parts > 3) {
      return true;
    }
  }
  return false;
}

}  // namespace library
