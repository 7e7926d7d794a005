#include "library/sniff/RowFacts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <map>
#include <optional>

#include "library/sniff/Utf8.h"

namespace library {
namespace {

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }
bool IsLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

constexpr std::size_t kLongestNumeric = 40;
constexpr std::size_t kLongestPlaceholder = 8;
// Columns that are looked at.
constexpr std::size_t kMostColumns = 2000;
// Share of the numbers among a numeric column's values.
constexpr double kNumericShare = 0.6;
// What a placeholder in a column of numbers says for data; a number says 1.
constexpr double kPlaceholderWeight = 0.5;
// A column holds dates where more than this share of what looks numeric is a date.
constexpr double kFewDates = 0.1;
// Rows that count mean nothing where so many rows do.
constexpr double kMostCounting = 0.3;

constexpr int kFirstYear = 1800;
constexpr int kLastYear = 2100;

// The whole number that a text is, a fraction of zeros aside.
std::optional<int> WholeNumber(std::string_view text) {
  if (text.ends_with(".0")) text.remove_suffix(2);
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// Two whole numbers with a sign between them, such as "25-29" or "2005/06".
bool IsRange(std::string_view text) {
  const std::size_t sign = text.find_first_of("-/");
  if (sign == std::string_view::npos || sign == 0) return false;
  const auto digits = [](std::string_view part) {
    return !part.empty() && part.size() <= 4 && std::all_of(part.begin(), part.end(), IsDigit);
  };
  return digits(text.substr(0, sign)) && digits(text.substr(sign + 1));
}

// Whether a row's numbers are such as name columns: years, ranges, or numbers that rise by one;
// nothing else that looks numeric is among them.
bool NamesColumns(const SampleTable& table, const SampleRow& row) {
  std::size_t years = 0;
  std::size_t ranges = 0;
  std::size_t rising = 0;
  std::size_t texts = 0;
  std::optional<int> last;
  const SampleCell* const cells = table.Cells(row);
  for (std::size_t i = 0; i < row.count; ++i) {
    if (!LooksNumeric(cells[i])) {
      texts += cells[i].empty() ? 0 : 1;
      continue;
    }
    const std::optional<int> value = WholeNumber(cells[i].text);
    if (IsYear(cells[i].text)) {
      ++years;
    } else if (IsRange(cells[i].text)) {
      ++ranges;
    } else if (value && (!last || *value == *last + 1)) {
      ++rising;
      last = value;
    } else {
      return false;
    }
  }
  if (years >= 2) return rising == 0;
  return (rising >= 3 || ranges >= 2) && texts > 0;
}

// A row of signs that draw a line.
bool IsRule(const SampleTable& table, const SampleRow& row) {
  const SampleCell* const cells = table.Cells(row);
  std::size_t signs = 0;
  for (std::size_t i = 0; i < row.count; ++i) {
    // Colons say on which side values stand, plus signs are where lines cross.
    const std::string_view text = cells[i].text;
    if (text.find_first_not_of("-=_*:+") != std::string_view::npos) return false;
    signs += static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return byte != ':' && byte != '+'; }));
  }
  return signs > 2;
}

}  // namespace

bool IsUnit(std::string_view text) {
  return text == "(1,000)" || text == "(1000)" || text == "(1,000,000)" || text == "(%)";
}

bool IsYear(std::string_view text) {
  // A footnote's sign may follow.
  if (text.size() > 4 && text.size() <= 8 && text[4] != '.' && !IsDigit(text[4]) &&
      text[4] != '-' && text[4] != '/') {
    text = text.substr(0, 4);
  }
  const std::optional<int> value = WholeNumber(text);
  return value && *value >= kFirstYear && *value <= kLastYear;
}

// Signs beyond ASCII that stand beside numbers.
bool IsNumberSign(std::string_view character) {
  static constexpr std::array<std::string_view, 9> kSigns = {"£", "€", "¥", "§",     "°",
                                                             "‰", "–", "−", "\u00A0"};
  return std::find(kSigns.begin(), kSigns.end(), character) != kSigns.end();
}

bool LooksNumeric(const SampleCell& cell) {
  if (IsTyped(cell.kind)) return true;
  if (cell.kind != CellKind::kText || cell.text.size() > kLongestNumeric) return false;
  bool digit = false;
  for (std::size_t at = 0; at < cell.text.size(); at += Utf8Length(cell.text[at])) {
    const std::string_view character = cell.text.substr(at, Utf8Length(cell.text[at]));
    if (character.size() > 1 ? !IsNumberSign(character) : IsLetter(character[0])) return false;
    digit |= IsDigit(character[0]);
  }
  return digit && !IsUnit(cell.text);
}

bool IsPlaceholder(const SampleCell& cell) {
  if (cell.kind == CellKind::kMissing) return true;
  if (cell.kind != CellKind::kText || cell.text.size() > kLongestPlaceholder) return false;
  std::string_view text = cell.text;
  const bool bracketed = text.size() > 2 && (text.front() == '(' || text.front() == '[');
  if (bracketed) text = text.substr(1, text.size() - 2);
  const bool word = std::any_of(text.begin(), text.end(), [](char byte) {
    return IsLetter(byte) || IsDigit(byte) || static_cast<unsigned char>(byte) >= 0x80;
  });
  const bool letters =
      std::all_of(text.begin(), text.end(), [](char byte) { return byte >= 'A' && byte <= 'Z'; });
  return !word || (bracketed && letters && text.size() <= 2) || text == "–" || text == "—" ||
         text == "…" || text == "n/a" || text == "N.A." || text == "n.a.";
}

std::size_t TableFacts::numericColumns() const {
  return static_cast<std::size_t>(std::count(numeric_.begin(), numeric_.end(), true));
}

TableFacts::TableFacts(const SampleTable& table) {
  std::size_t columns = 0;
  for (const SampleRow& row : table.rows()) {
    RowFacts facts;
    facts.fields = row.count;
    const SampleCell* const cells = table.Cells(row);
    for (std::size_t i = 0; i < row.count; ++i) {
      if (cells[i].empty()) {
        facts.quotedEmpties += cells[i].qualified ? 1 : 0;
        continue;
      }
      facts.hash = 31 * facts.hash + i + std::hash<std::string_view>()(cells[i].text);
      if (facts.filled++ == 0) facts.firstFilled = i;
      facts.numeric += LooksNumeric(cells[i]) ? 1 : 0;
    }
    // A qualified nothing is a value where it is all there is.
    if (row.count == 1 && cells[0].qualified) facts.filled = 1;
    facts.counts = facts.filled >= 2 && NamesColumns(table, row);
    if (IsRule(table, row)) facts.filled = 0;
    rows_.push_back(facts);
    columns = std::max(columns, row.count);
  }
  numeric_.resize(std::min(columns, kMostColumns));
  dates_.resize(numeric_.size());
  FindTypical();
  FindWidth();
  const auto counting =
      std::count_if(rows_.begin(), rows_.end(), [](const RowFacts& facts) { return facts.counts; });
  const auto filled = std::count_if(rows_.begin(), rows_.end(),
                                    [](const RowFacts& facts) { return facts.filled > 1; });
  if (static_cast<double>(counting) > kMostCounting * static_cast<double>(filled)) {
    for (RowFacts& facts : rows_) facts.counts = false;
  }
  FindNumericColumns(table);
  Compare(table);
}

void TableFacts::FindTypical() {
  std::vector<std::size_t> filled;
  std::size_t lone = 0;
  for (const RowFacts& facts : rows_) {
    if (facts.filled > 1) filled.push_back(facts.filled);
    lone += facts.lone() ? 1 : 0;
  }
  if (filled.empty() || lone > 3 * filled.size()) return;
  const auto middle = filled.begin() + static_cast<std::ptrdiff_t>(filled.size() / 2);
  std::nth_element(filled.begin(), middle, filled.end());
  typical_ = *middle;
}

void TableFacts::FindWidth() {
  std::map<std::size_t, std::size_t> rows;
  for (const RowFacts& facts : rows_) {
    if (!facts.blank()) ++rows[facts.fields];
  }
  std::size_t most = 0;
  for (const auto& [fields, count] : rows) {
    if (count < most) continue;
    most = count;
    width_ = fields;
  }
}

// The rows that say what a column holds: those that are filled, without the first ones, which may
// name the columns.
std::vector<std::size_t> TableFacts::BodyRows() const {
  std::vector<std::size_t> body;
  const std::size_t least = typical_ == 1 ? 1 : std::max<std::size_t>(2, typical_ / 3);
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i].filled >= least) body.push_back(i);
  }
  const std::size_t above = body.size() < 2 ? 0 : std::clamp<std::size_t>(body.size() / 4, 1, 10);
  body.erase(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(above));
  return body;
}

void TableFacts::FindNumericColumns(const SampleTable& table) {
  std::vector<double> numbers(numeric_.size());
  std::vector<double> texts(numeric_.size());
  std::vector<double> dates(numeric_.size());
  for (const std::size_t i : BodyRows()) {
    const SampleRow& row = table.rows()[i];
    const SampleCell* const cells = table.Cells(row);
    for (std::size_t j = 0; j < std::min(row.count, numeric_.size()); ++j) {
      if (cells[j].empty() || IsPlaceholder(cells[j])) continue;
      ++(LooksNumeric(cells[j]) ? numbers : texts)[j];
      const bool date = cells[j].kind == CellKind::kDate || cells[j].kind == CellKind::kTime;
      dates[j] += date ? 1.0 : 0.0;
    }
  }
  for (std::size_t j = 0; j < numeric_.size(); ++j) {
    dates_[j] = dates[j] > kFewDates * numbers[j];
    numeric_[j] = numbers[j] > 0 && numbers[j] >= kNumericShare * (numbers[j] + texts[j]);
  }
}

void TableFacts::Compare(const SampleTable& table) {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const SampleRow& row = table.rows()[i];
    const SampleCell* const cells = table.Cells(row);
    for (std::size_t j = 0; j < std::min(row.count, numeric_.size()); ++j) {
      if (!numeric_[j] || cells[j].empty()) continue;
      const bool date = cells[j].kind == CellKind::kDate || cells[j].kind == CellKind::kTime;
      if (date && !dates_[j]) {
        rows_[i].contradict += 1.0;
      } else if (LooksNumeric(cells[j])) {
        rows_[i].agree += 1.0;
      } else if (IsPlaceholder(cells[j])) {
        rows_[i].agree += kPlaceholderWeight;
      } else {
        rows_[i].contradict += 1.0;
      }
    }
  }
}

}  // namespace library
