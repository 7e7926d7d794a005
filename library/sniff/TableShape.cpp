#include "library/sniff/TableShape.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include <fmt/format.h>

#include "library/sniff/HeaderContrast.h"
#include "library/sniff/RowFacts.h"
#include "library/sniff/TotalRows.h"

namespace library {
namespace {

// A row of data is followed by others: among so many rows that follow it, at least half are.
constexpr std::size_t kRowsBehind = 4;
// Filled cells of a row of data, as a share of what most rows have.
constexpr double kFilledShare = 0.3;
// Rows that a header may have, blank ones and titles between them included.
constexpr std::size_t kMostHeaderRows = 14;
// Rows that are alike where the answer is certain: so many are looked at, so many there must be.
constexpr std::size_t kUniformRows = 50;
constexpr std::size_t kFewestUniformRows = 3;
// Where a row of texts differs from those below it by so much, it is likely a header.
constexpr double kLikelyContrast = 2.0;
// So much where columns of numbers say nothing about the row.
constexpr double kSomeContrast = 0.5;
// Totals and titles that may stand between header and data.
constexpr std::size_t kMostTotals = 12;

class ShapeFinder {
 public:
  ShapeFinder(const SampleTable& table, bool end, const SniffSettings& settings)
      : table_(table), facts_(table), end_(end), settings_(settings), size_(table.rows().size()) {}

  TableShape Find();

 private:
  const RowFacts& Facts(std::size_t row) const { return facts_.rows()[row]; }
  bool WideEnough(std::size_t row) const;
  bool IsFollowed(std::size_t row) const;
  std::optional<std::size_t> FirstStrongRow() const;
  void FindByNumbers(std::size_t strong);
  void FindByTexts();
  bool IsLoneValue(std::size_t row) const;
  // A title or note that is as wide as the data: as well the one value of a record.
  void Doubt(std::size_t row) {
    doubtful_ = doubtful_ || (Facts(row).lone() && Facts(row).fields >= facts_.width());
  }
  bool IsTitle(std::size_t row, std::size_t header) const;
  void TakeHeaderAbove(std::size_t bottom);
  bool IsUniform(std::size_t row) const;
  void SkipTotals();
  void Obey();
  std::string FirstEvidence() const;
  void FindEnd();
  bool IsNote(std::size_t row) const;

  const SampleTable& table_;
  const TableFacts facts_;
  const bool end_;
  const SniffSettings& settings_;
  const std::size_t size_;
  bool doubtful_ = false;
  TableShape shape_;
};

bool ShapeFinder::WideEnough(std::size_t row) const {
  const auto filled = static_cast<double>(Facts(row).filled);
  return facts_.typical() == 1
             ? filled >= 1
             : filled >= 2 && filled >= kFilledShare * static_cast<double>(facts_.typical());
}

bool ShapeFinder::IsFollowed(std::size_t row) const {
  std::size_t seen = 0;
  std::size_t data = 0;
  for (std::size_t i = row + 1; i < size_ && seen < kRowsBehind; ++i) {
    if (!WideEnough(i)) continue;
    ++seen;
    // Names of columns among the next rows: what stands above them is no data, unless it is the
    // header once more.
    if (seen < kRowsBehind && Facts(i).contradict > 0 && Facts(i).agree == 0) {
      const bool again = std::any_of(
          facts_.rows().begin(), facts_.rows().begin() + static_cast<std::ptrdiff_t>(row),
          [&](const RowFacts& above) { return above.hash == Facts(i).hash && !above.blank(); });
      if (!again) return false;
      --seen;
      continue;
    }
    data += facts_.IsData(i) ? 1 : 0;
  }
  return 2 * data >= seen;
}

std::optional<std::size_t> ShapeFinder::FirstStrongRow() const {
  for (std::size_t i = 0; i < size_; ++i) {
    if (facts_.IsData(i) && WideEnough(i) && IsFollowed(i)) return i;
  }
  return std::nullopt;
}

// A row of data of which one value is all that is not missing: it is as wide as the data, and it
// stands where titles do not, and a column of numbers may hold it; or two columns are all there is.
bool ShapeFinder::IsLoneValue(std::size_t row) const {
  const RowFacts& facts = Facts(row);
  return facts.lone() && facts_.width() > 1 && facts.fields >= facts_.width() &&
         facts.contradict == 0 &&
         ((facts.agree > 0 && facts.firstFilled > 0) || facts_.width() == 2);
}

// A blank row below the header, or one that is no more than a title.
bool ShapeFinder::IsTitle(std::size_t row, std::size_t header) const {
  const RowFacts& facts = Facts(row);
  if (facts.blank()) return true;
  return facts.lone() && facts_.typical() > 1 && (facts_.typical() > 2 || header > 0) &&
         !IsLoneValue(row);
}

// `bottom` is the header's last row: takes in the rows above that belong to it. Titles, which are
// alone in their first column, do not, unless they stand between rows of the header.
void ShapeFinder::TakeHeaderAbove(std::size_t bottom) {
  shape_.headerEnd = bottom + 1;
  shape_.headerBegin = bottom;
  const std::size_t least = bottom >= kMostHeaderRows ? bottom - kMostHeaderRows : 0;
  for (std::size_t i = bottom; i-- > least;) {
    const RowFacts& facts = Facts(i);
    if (facts.blank()) continue;
    if (facts.lone() && facts.firstFilled == 0 && facts_.typical() > 1) {
      // A row label of a header of several rows stands alone only below a row that spans columns.
      if (i == 0 || Facts(i - 1).filled < 2) break;
      continue;
    }
    if (facts_.typical() == 1) break;
    shape_.headerBegin = i;
  }
}

void ShapeFinder::FindByNumbers(std::size_t strong) {
  // The lowest row above that names columns.
  std::optional<std::size_t> bottom;
  for (std::size_t i = strong; i-- > 0;) {
    if (facts_.IsHeader(i) && (Facts(i).filled > 1 || Facts(i).firstFilled > 0 ||
                               (facts_.typical() == 1 && Facts(i).fields >= facts_.width()))) {
      bottom = i;
      break;
    }
  }
  // What a row says that columns of numbers say nothing about.
  double contrast = kLikelyContrast;
  if (!bottom) {
    // Names of columns that hold no numbers.
    for (std::size_t i = strong; i-- > 0;) {
      if (Facts(i).filled < 2 && Facts(i).firstFilled == 0) continue;
      // It may as well be a row of data without numbers.
      contrast = HeaderContrast(table_, i);
      if (contrast > kSomeContrast) bottom = i;
      strong = bottom ? strong : i;
      break;
    }
  }
  // Without a header nothing is above the data but titles: several values, or a lone one of a
  // column of numbers, in a row as wide as the data are none.
  while (!bottom && strong > 0 && (Facts(strong - 1).agree > 0 || Facts(strong - 1).filled > 1) &&
         Facts(strong - 1).contradict == 0 && Facts(strong - 1).fields >= facts_.width()) {
    --strong;
  }
  shape_.firstData = strong;
  if (!bottom) {
    for (std::size_t i = 0; i < strong; ++i) Doubt(i);
    shape_.headerBegin = shape_.headerEnd = strong;
    const bool plain = strong == 0 && facts_.numericColumns() == facts_.columns();
    shape_.headerVerdict = plain && IsUniform(strong) ? Verdict::kCertain : Verdict::kLikely;
    shape_.headerEvidence = "the first row has values like those below it";
    return;
  }
  for (std::size_t i = *bottom + 1; i < strong; ++i) {
    if (!IsTitle(i, *bottom)) {
      shape_.firstData = i;
      break;
    }
    Doubt(i);
  }
  TakeHeaderAbove(*bottom);
  const RowFacts& names = Facts(*bottom);
  const bool plain = *bottom == 0 && shape_.firstData == 1 && names.contradict > 0 &&
                     names.agree == 0 && !names.counts;
  shape_.headerVerdict = plain && IsUniform(1)         ? Verdict::kCertain
                         : contrast >= kLikelyContrast ? Verdict::kLikely
                                                       : Verdict::kGuess;
  shape_.headerEvidence = names.counts
                              ? "years or numbers that count, above columns of other numbers"
                              : fmt::format("texts above {} of numbers",
                                            facts_.numericColumns() == 1 ? "a column" : "columns");
}

// From the row on there are rows of data only.
bool ShapeFinder::IsUniform(std::size_t row) const {
  std::size_t rows = 0;
  for (std::size_t i = row; i < std::min(size_, row + kUniformRows); ++i, ++rows) {
    if (Facts(i).contradict > 0 || !WideEnough(i) || Facts(i).counts) return false;
  }
  return rows >= kFewestUniformRows;
}

void ShapeFinder::FindByTexts() {
  std::size_t row = 0;
  while (row < size_ && !WideEnough(row)) ++row;
  const auto half = static_cast<double>(facts_.typical()) / 2;
  std::size_t wide = row;
  while (wide < size_ && static_cast<double>(Facts(wide).filled) < half) ++wide;
  if (wide < size_) row = wide;
  shape_.firstData = row;
  shape_.headerBegin = shape_.headerEnd = row;
  shape_.headerVerdict = Verdict::kGuess;
  if (row + 1 >= size_) {
    shape_.headerEvidence = "one row only";
    if (row < size_ && LooksLikeNames(table_, row)) {
      shape_.headerEnd = shape_.firstData = row + 1;
      shape_.headerEvidence = "one row only, of names";
    }
    return;
  }
  const double contrast = HeaderContrast(table_, row);
  if (std::abs(contrast) >= kLikelyContrast && row == 0 && !NamesContradict(table_, row)) {
    shape_.headerVerdict = Verdict::kLikely;
  }
  if (contrast > 0) {
    TakeHeaderAbove(row);
    shape_.firstData = row + 1;
    while (shape_.firstData < size_ && IsTitle(shape_.firstData, row)) Doubt(shape_.firstData++);
  }
  shape_.headerEvidence = contrast > 0 ? "the first row differs from those below it"
                                       : "the first row is like those below it";
}

// Totals that stand above what they sum up, and titles of groups.
void ShapeFinder::SkipTotals() {
  if (shape_.headerBegin == shape_.headerEnd) return;
  std::size_t row = shape_.firstData;
  for (std::size_t skipped = 0; skipped < kMostTotals && row < size_; ++skipped) {
    if (!IsTotalAbove(table_, facts_, row)) break;
    std::size_t next = row + 1;
    while (next < size_ && Facts(next).filled < 2) ++next;
    if (next >= size_ || !facts_.IsData(next)) break;
    row = next;
    ++shape_.totals;
  }
  shape_.firstData = row;
}

bool ShapeFinder::IsNote(std::size_t row) const {
  const RowFacts& facts = Facts(row);
  return facts.blank() || (facts_.typical() > 1 && facts.filled == 1 && facts.firstFilled < 2 &&
                           facts.numeric == 0 && facts.quotedEmpties == 0 && !IsLoneValue(row));
}

void ShapeFinder::FindEnd() {
  shape_.endData = size_;
  if (!end_) return;
  std::size_t end = size_;
  while (end > shape_.firstData && IsNote(end - 1)) Doubt(--end);
  // Behind the data stand notes; a total belongs to them.
  while (end > shape_.firstData + 1 && IsCalledTotal(table_, end - 1)) --end;
  while (end > shape_.firstData + 1 && Facts(end - 1).blank()) --end;
  if (end > shape_.firstData) shape_.endData = end;
}

// What the user has said stands.
void ShapeFinder::Obey() {
  if (settings_.firstLine) {
    const auto line = static_cast<std::size_t>(std::max<std::int64_t>(1, *settings_.firstLine)) - 1;
    std::size_t row = 0;
    while (row < size_ && (table_.rows()[row].region == 0 && table_.rows()[row].line < line)) ++row;
    const bool same = row == shape_.firstData;
    shape_.firstData = row;
    if (!same) {
      std::size_t above = row;
      while (above > 0 && Facts(above - 1).blank()) --above;
      shape_.headerBegin = shape_.headerEnd = row;
      const bool names =
          above > 0 && (facts_.IsHeader(above - 1) ||
                        (facts_.numericColumns() == 0 && HeaderContrast(table_, above - 1) > 0));
      if (above > 0 && settings_.header.value_or(names)) TakeHeaderAbove(above - 1);
    }
  }
  if (!settings_.header) return;
  const bool has = shape_.headerEnd > shape_.headerBegin;
  if (*settings_.header && !has && !settings_.firstLine && shape_.firstData < size_) {
    shape_.headerBegin = shape_.firstData;
    shape_.headerEnd = ++shape_.firstData;
  } else if (!*settings_.header && has) {
    if (!settings_.firstLine) shape_.firstData = shape_.headerBegin;
    shape_.headerBegin = shape_.headerEnd = shape_.firstData;
  }
}

std::string ShapeFinder::FirstEvidence() const {
  if (shape_.firstData >= shape_.endData) return "there is no data";
  std::string evidence;
  if (shape_.totals > 0) {
    evidence = fmt::format("behind {} total{}; ", shape_.totals, shape_.totals == 1 ? "" : "s");
  }
  const std::size_t rows = shape_.endData - shape_.firstData;
  return evidence + (rows == 1 ? "one row" : fmt::format("{} rows that look alike", rows));
}

TableShape ShapeFinder::Find() {
  if (size_ == 0) return shape_;
  const std::optional<std::size_t> strong = FirstStrongRow();
  std::size_t wide = 0;
  while (wide < size_ && Facts(wide).filled < 2) ++wide;
  if (wide < size_ && HoldsKeysAndValues(table_, wide)) {
    shape_.headerBegin = shape_.headerEnd = shape_.firstData = wide;
    shape_.headerVerdict = Verdict::kGuess;
    shape_.headerEvidence = "a name and a value on every line";
  } else if (strong && facts_.numericColumns() > 0) {
    FindByNumbers(*strong);
    SkipTotals();
    if (shape_.totals > 0) shape_.headerVerdict = std::min(shape_.headerVerdict, Verdict::kLikely);
  } else {
    FindByTexts();
  }
  Obey();
  FindEnd();
  shape_.titles = facts_.typical() > 2;
  if (shape_.endData < shape_.firstData + kFewestUniformRows) {
    shape_.headerVerdict = std::min(shape_.headerVerdict, Verdict::kGuess);
  }
  shape_.firstVerdict = doubtful_ ? Verdict::kGuess : shape_.headerVerdict;
  shape_.firstEvidence = FirstEvidence();
  return shape_;
}

}  // namespace

TableShape FindShape(const SampleTable& table, bool end, const SniffSettings& settings) {
  return ShapeFinder(table, end, settings).Find();
}

}  // namespace library
