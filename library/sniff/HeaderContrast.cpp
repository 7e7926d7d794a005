#include "library/sniff/HeaderContrast.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "library/sniff/RowFacts.h"

namespace library {
namespace {

constexpr std::size_t kMostRows = 60;
constexpr std::size_t kMostColumns = 200;
constexpr std::size_t kLongestName = 60;
// What a column of values without a name says against a header.
constexpr double kUnnamed = 0.7;

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }
bool IsUpper(char byte) { return byte >= 'A' && byte <= 'Z'; }
bool IsLower(char byte) { return byte >= 'a' && byte <= 'z'; }

bool HasDigit(std::string_view text) { return std::any_of(text.begin(), text.end(), IsDigit); }
bool IsUpperText(std::string_view text) {
  return std::any_of(text.begin(), text.end(), IsUpper) &&
         std::none_of(text.begin(), text.end(), IsLower);
}

// What a text is made of, for comparing texts: bits of digits, upper-case, lower-case, blanks and
// the signs of addresses and codes.
unsigned Makeup(std::string_view text) {
  unsigned bits = 0;
  for (const char byte : text) {
    if (IsDigit(byte)) bits |= 1;
    if (IsUpper(byte)) bits |= 2;
    if (IsLower(byte)) bits |= 4;
    if (byte == ' ') bits |= 8;
    if (byte == '@' || byte == '/' || byte == ':') bits |= 16;
    if (byte == '.') bits |= 32;
    if (static_cast<unsigned char>(byte) >= 0x80) bits |= 64;
  }
  return bits;
}

// Words that name columns, in lower case.
bool IsNameWord(std::string_view word) {
  static constexpr std::array<std::string_view, 60> kWords = {
      "name",   "names",   "id",       "ids",     "code",     "codes",    "date",    "type",
      "title",  "year",    "month",    "day",     "time",     "status",   "state",   "country",
      "city",   "address", "email",    "phone",   "number",   "no",       "nr",      "key",
      "value",  "label",   "category", "class",   "group",    "region",   "url",     "link",
      "count",  "total",   "amount",   "price",   "rate",     "source",   "comment", "comments",
      "notes",  "note",    "remarks",  "unit",    "units",    "age",      "sex",     "gender",
      "size",   "rank",    "text",     "version", "language", "location", "author",  "description",
      "string", "list",    "index",    "field"};
  return std::find(kWords.begin(), kWords.end(), word) != kWords.end();
}

// Whether one of the text's words, cut at blanks, signs and changes of case, names a column.
bool HasNameWord(std::string_view text) {
  std::string word;
  char before = ' ';
  for (std::size_t i = 0; i <= text.size(); ++i) {
    const char byte = i < text.size() ? text[i] : ' ';
    const bool letter = IsUpper(byte) || IsLower(byte);
    if (!letter || (IsUpper(byte) && IsLower(before))) {
      if (IsNameWord(word)) return true;
      word.clear();
    }
    if (letter) word += IsUpper(byte) ? static_cast<char>(byte + 32) : byte;
    before = byte;
  }
  return false;
}

// What one column says.
double ColumnContrast(std::string_view name, const std::vector<std::string_view>& values) {
  double score = 0;
  std::size_t same = 0;
  std::size_t makeup = 0;
  std::size_t digits = 0;
  std::size_t upper = 0;
  double length = 0;
  double squares = 0;
  for (const std::string_view value : values) {
    same += value == name ? 1 : 0;
    makeup += Makeup(value) == Makeup(name) ? 1 : 0;
    digits += HasDigit(value) ? 1 : 0;
    upper += IsUpperText(value) ? 1 : 0;
    const auto size = static_cast<double>(value.size());
    length += size;
    squares += size * size;
  }
  const auto count = static_cast<double>(values.size());
  if (same > 0) return -2.0;
  const double mean = length / count;
  const double deviation = std::sqrt(std::max(0.0, squares / count - mean * mean));
  const double distance = std::abs(static_cast<double>(name.size()) - mean);
  if (distance > 2 * deviation + 1) score += 0.5;
  if (count >= 4 && makeup == 0) score += 0.5;
  if (static_cast<double>(digits) > 0.8 * count && !HasDigit(name)) score += 1.0;
  if (static_cast<double>(upper) > 0.8 * count && !IsUpperText(name)) score += 0.7;
  return score;
}

}  // namespace

bool LooksLikeNames(const SampleTable& table, std::size_t row) {
  const SampleRow& one = table.rows()[row];
  const SampleCell* const cells = table.Cells(one);
  std::vector<std::string_view> names;
  for (std::size_t i = 0; i < one.count; ++i) {
    if (cells[i].empty()) continue;
    if (LooksNumeric(cells[i]) || cells[i].text.size() > kLongestName) return false;
    names.push_back(cells[i].text);
  }
  std::sort(names.begin(), names.end());
  return !names.empty() && std::adjacent_find(names.begin(), names.end()) == names.end();
}

bool HoldsKeysAndValues(const SampleTable& table, std::size_t row) {
  std::vector<std::size_t> used;
  std::size_t texts = 0;
  std::size_t numbers = 0;
  std::vector<std::string_view> keys;
  for (std::size_t i = row; i < std::min(table.rows().size(), row + kMostRows); ++i) {
    const SampleRow& one = table.rows()[i];
    const SampleCell* const cells = table.Cells(one);
    std::vector<std::size_t> filled;
    for (std::size_t j = 0; j < one.count; ++j) {
      if (!cells[j].empty()) filled.push_back(j);
    }
    if (filled.empty()) continue;
    if (used.empty()) used = filled;
    if (used.size() != 2 || filled.back() > used[1] || filled[0] != used[0]) return false;
    if (LooksNumeric(cells[used[0]])) return false;
    keys.push_back(cells[used[0]].text);
    if (filled.size() == 2) ++(LooksNumeric(cells[used[1]]) ? numbers : texts);
  }
  std::sort(keys.begin(), keys.end());
  const bool unique = std::adjacent_find(keys.begin(), keys.end()) == keys.end();
  return unique && keys.size() >= 4 && texts >= 2 && numbers >= 1 && 7 * numbers >= keys.size() &&
         7 * texts >= keys.size();
}

bool NamesContradict(const SampleTable& table, std::size_t row) {
  const SampleRow& one = table.rows()[row];
  bool values = false;
  bool names = false;
  for (std::size_t j = 0; j < std::min(one.count, kMostColumns); ++j) {
    const std::string_view text = table.Cell(one, j).text;
    if (text.empty()) continue;
    std::vector<std::string_view> below;
    const std::size_t end = std::min(table.rows().size(), row + 1 + kMostRows);
    for (std::size_t i = row + 1; i < end; ++i) {
      const SampleCell& cell = table.Cell(table.rows()[i], j);
      if (!cell.empty()) below.push_back(cell.text);
    }
    const bool again = std::find(below.begin(), below.end(), text) != below.end();
    values = values || again;
    const std::size_t count = below.size();
    std::sort(below.begin(), below.end());
    below.erase(std::unique(below.begin(), below.end()), below.end());
    names = names || HasNameWord(text) || (!again && 2 * below.size() < count);
  }
  return values && names;
}

double HeaderContrast(const SampleTable& table, std::size_t row) {
  const SampleRow& one = table.rows()[row];
  const SampleCell* const cells = table.Cells(one);
  double score = 0;
  std::size_t nameWords = 0;
  for (std::size_t j = 0; j < std::min(one.count, kMostColumns); ++j) {
    if (cells[j].empty() && j == 0) continue;
    std::vector<std::string_view> values;
    const std::size_t end = std::min(table.rows().size(), row + 1 + kMostRows);
    for (std::size_t i = row + 1; i < end; ++i) {
      const SampleCell& cell = table.Cell(table.rows()[i], j);
      if (!cell.empty()) values.push_back(cell.text);
    }
    if (cells[j].empty()) {
      // But for the first column, of which the rest says enough, columns have names.
      if (!values.empty()) score -= kUnnamed;
      continue;
    }
    if (LooksNumeric(cells[j])) score -= 1.0;
    if (cells[j].text.size() > kLongestName) score -= 0.3;
    nameWords += HasNameWord(cells[j].text) ? 1 : 0;
    if (!values.empty()) score += ColumnContrast(cells[j].text, values);
  }
  // Most tables name their columns.
  return score + 0.2 + 0.5 * static_cast<double>(nameWords);
}

}  // namespace library
