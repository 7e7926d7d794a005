// Tables drawn at random: what a file is to say, cell by cell, before anybody has written it.
// Shares nothing with what reads it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace roundtrip {

enum class ColumnKind {
  kWhole,
  kDecimal,
  kExponent,
  kGrouped,
  kPercent,
  kDollar,
  kIsoDate,
  kMonthDayYear,
  kDayMonthYear,
  kNamedDate,
  kIsoDateTime,
  kTime,
  kWords,
  kBlankDates,    // 1 Jan 2000, which no format reads
  kCodes,         // letters and digits
  kLeadingZeros,  // digits that a number would lose zeros of
  kLongNumbers,   // more digits than a double keeps
  kEmpty,
};
inline constexpr std::size_t kColumnKinds = 18;

// A number, as which the column's values are kept.
constexpr bool IsNumber(ColumnKind kind) { return kind < ColumnKind::kWords; }

// UTF-8.
struct DrawnCell {
  // As it is written, before any quoting; a missing number's null text.
  std::string text;
  bool missing = false;
  // Of numbers: the value; dates and times in seconds, dates from 14 October 1582 on.
  double number = 0;
};

struct DrawnColumn {
  ColumnKind kind = ColumnKind::kWords;
  std::string header;
  std::vector<DrawnCell> cells;
};

// Letters of the words, which an encoding has to have.
enum class Script {
  kAscii,
  kWestern,
  kCentral,
  kCyrillic,
  kGreek,
  kJapanese,
  kChinese,
  kKorean,
  kMixed
};
inline constexpr std::size_t kScripts = 9;

struct DrawnTable {
  Script script = Script::kAscii;
  bool decimalComma = false;
  std::size_t rows = 0;
  std::vector<DrawnColumn> columns;
};

struct TableWishes {
  Script script = Script::kAscii;
  bool decimalComma = false;
  // Dates with slashes have one order in a table.
  bool dayFirst = false;
  // Texts may hold this; 0: none of the characters that a file may be cut at.
  char delimiter = 0;
  char qualifier = 0;
  bool lineBreaks = false;
};

DrawnTable DrawTable(std::mt19937_64& random, const TableWishes& wishes);

// A number below `bound`, the same with every library.
std::size_t Below(std::mt19937_64& random, std::size_t bound);

}  // namespace roundtrip
