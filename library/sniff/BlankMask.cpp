#include "library/sniff/BlankMask.h"

#include <algorithm>

#include "detection/BlankTrim.h"
#include "library/sniff/ColumnBorders.h"
#include "library/sniff/Utf8.h"
#include "model/FormatCode.h"
#include "reading/FixedFields.h"

namespace library {
namespace {

// Of so many lines one may fill a place between columns.
constexpr std::uint64_t kLinesAFill = 50;
// Lines above the data, which may cross columns: this share of all, and so many at most.
constexpr std::size_t kShareAbove = 4;
constexpr std::size_t kMostAbove = 10;
// More columns, or a longer line without blanks, are no fixed arrangement.
constexpr std::size_t kMostColumns = 300;
constexpr std::int64_t kLongestDense = 500;
// A letter and digits behind it are most often one code.
constexpr std::size_t kFewestPieces = 3;
// Lines without blanks are cut where so many agree.
constexpr std::size_t kFewestDense = 3;
// Columns stand two blanks apart where so many do.
constexpr std::size_t kFewestApart = 2;
// Lines that are looked at for dates that are no more than their parts.
constexpr std::size_t kLinesOfDates = 60;

enum class Edge { kOther, kDigit, kLetter };

Edge EdgeOf(char byte) {
  if (byte >= '0' && byte <= '9') return Edge::kDigit;
  if ((byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z')) return Edge::kLetter;
  return Edge::kOther;
}

// Adds cuts inside runs that no line leaves blank, where every line changes between digits and
// letters; lines with signs between them are cut by those.
void CutDense(const std::vector<std::string_view>& lines, std::vector<CharacterRange>* runs) {
  if (lines.size() < kFewestDense || runs->front().to > kLongestDense) return;
  for (const std::string_view line : lines) {
    const bool signs = std::any_of(line.begin(), line.end(),
                                   [](char byte) { return EdgeOf(byte) == Edge::kOther; });
    if (signs) return;
  }
  std::vector<CharacterRange> cut;
  for (const CharacterRange& run : *runs) {
    CharacterRange rest = run;
    for (std::int64_t place = run.from + 1; place <= run.to; ++place) {
      const auto changes = [&](std::string_view line) {
        const std::string_view pair = CutCharacters(line, {place - 1, place});
        if (pair.size() != 2) return false;
        const Edge left = EdgeOf(pair[0]);
        const Edge right = EdgeOf(pair[1]);
        return left != right;
      };
      if (!std::all_of(lines.begin(), lines.end(), changes)) continue;
      cut.push_back({rest.from, place - 1});
      rest.from = place;
    }
    cut.push_back(rest);
  }
  if (cut.size() >= kFewestPieces) *runs = cut;
}

// Whether the values of runs [first, last], with the blanks between them, are dates, or dates and
// times.
bool HoldOneDate(const std::vector<std::string_view>& lines, const CharacterRange& first,
                 const CharacterRange& last, std::size_t runs, CellKinds& kinds) {
  std::size_t values = 0;
  std::size_t dates = 0;
  for (std::size_t i = 0; i < std::min(lines.size(), kLinesOfDates); ++i) {
    const std::string_view text =
        textwizard::TrimRight(textwizard::TrimLeft(CutCharacters(lines[i], {first.from, last.to})));
    if (text.empty()) continue;
    const std::string_view begin = CutCharacters(lines[i], first);
    // Signs of missing values stand at either end.
    if (begin.find_first_not_of(' ') == std::string_view::npos &&
        kinds.Of(text) == CellKind::kMissing) {
      continue;
    }
    ++values;
    // Three parts are a day, a month in letters and a year; two are a date and a time.
    const bool letters = std::any_of(text.begin(), text.end(),
                                     [](char byte) { return EdgeOf(byte) == Edge::kLetter; });
    const bool parts = runs == 3 ? letters : kinds.Of(begin) == CellKind::kDate;
    dates += parts && kinds.Of(text) == CellKind::kDate ? 1 : 0;
  }
  return values > 0 && 10 * dates >= 9 * values;
}

bool HoldsLetters(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char byte) {
    return EdgeOf(byte) == Edge::kLetter || static_cast<unsigned char>(byte) >= 0x80;
  });
}

// What the lines have in run `left` and, behind one blank, in run `right`.
struct WordPair {
  // `right` is filled in few lines, and never where the text before it has ended: it holds the last
  // words of texts that begin in `left`.
  bool lastWords = false;
  // Every value in either run has letters.
  bool words = false;
};

WordPair PairOf(const std::vector<std::string_view>& lines, const CharacterRange& left,
                const CharacterRange& right) {
  std::size_t texts = 0;
  std::size_t ends = 0;
  bool goesOn = true;
  bool words = true;
  for (const std::string_view line : lines) {
    const std::string_view begin = CutCharacters(line, left);
    const std::string_view end = CutCharacters(line, right);
    const bool begins = begin.find_first_not_of(' ') != std::string_view::npos;
    texts += begins ? 1 : 0;
    words = words && (!begins || HoldsLetters(begin));
    if (end.find_first_not_of(' ') == std::string_view::npos) continue;
    ++ends;
    const bool isWord = HoldsLetters(end);
    words = words && isWord;
    goesOn = goesOn && isWord && !begin.empty() && begin.back() != ' ' && end.front() != ' ';
  }
  return {goesOn && ends > 0 && 2 * ends <= texts, words && ends > 0};
}

// Joins runs with one blank between them that are words of the same texts: the last ones of few of
// them, or words where two blanks stand between the columns everywhere else.
void JoinWords(const std::vector<std::string_view>& lines, std::vector<CharacterRange>* runs) {
  std::size_t twoBlanks = 0;
  std::size_t oneBlank = 0;
  for (std::size_t i = 1; i < runs->size(); ++i) {
    twoBlanks += (*runs)[i].from == (*runs)[i - 1].to + 3 ? 1 : 0;
    oneBlank += (*runs)[i].from == (*runs)[i - 1].to + 2 ? 1 : 0;
  }
  const bool standApart = twoBlanks >= kFewestApart && twoBlanks > oneBlank;
  std::vector<CharacterRange> joined;
  for (const CharacterRange& run : *runs) {
    if (!joined.empty() && run.from == joined.back().to + 2) {
      const WordPair pair = PairOf(lines, joined.back(), run);
      if (pair.lastWords || (standApart && pair.words)) {
        joined.back().to = run.to;
        continue;
      }
    }
    joined.push_back(run);
  }
  *runs = joined;
}

// Joins runs with one blank between them that hold one date.
void JoinDates(const std::vector<std::string_view>& lines, CellKinds& kinds,
               std::vector<CharacterRange>* runs) {
  std::vector<CharacterRange> joined;
  for (std::size_t i = 0; i < runs->size(); ++i) {
    std::size_t last = i;
    for (const std::size_t count : {std::size_t{3}, std::size_t{2}}) {
      if (i + count > runs->size() || last > i) continue;
      bool near = true;
      for (std::size_t j = i + 1; j < i + count; ++j) {
        near = near && (*runs)[j].from == (*runs)[j - 1].to + 2;
      }
      if (near && HoldOneDate(lines, (*runs)[i], (*runs)[i + count - 1], count, kinds)) {
        last = i + count - 1;
      }
    }
    joined.push_back({(*runs)[i].from, (*runs)[last].to});
    i = last;
  }
  *runs = joined;
}

}  // namespace

std::string_view CutCharacters(std::string_view line, const CharacterRange& range) {
  std::size_t begin = 0;
  std::int64_t place = 1;
  for (; place < range.from && begin < line.size(); ++place) begin += Utf8Length(line[begin]);
  std::size_t end = std::min(begin, line.size());
  for (; (range.to == 0 || place <= range.to) && end < line.size(); ++place) {
    end += Utf8Length(line[end]);
  }
  textwizard::TxtWzVar variable;
  variable.formatType = textwizard::kFormatA;
  variable.startColumn = static_cast<std::uint32_t>(begin);
  variable.maxStringLength =
      static_cast<std::uint32_t>(std::min(end, line.size()) - std::min(begin, line.size()));
  std::string_view field;
  textwizard::CutFixedField(line, variable, field);
  return field;
}

void BlankMask::Add(std::string_view line) {
  ++lines_;
  std::size_t place = 0;
  for (std::size_t at = 0; at < line.size() && place < kMostPlaces; at += Utf8Length(line[at])) {
    if (place == filled_.size()) filled_.push_back(0);
    filled_[place] += line[at] == ' ' ? 0 : 1;
    ++place;
  }
}

void BlankMask::Merge(const BlankMask& other) {
  lines_ += other.lines_;
  filled_.resize(std::max(filled_.size(), other.filled_.size()));
  for (std::size_t i = 0; i < other.filled_.size(); ++i) filled_[i] += other.filled_[i];
}

std::vector<CharacterRange> BlankMask::Runs() const {
  std::vector<CharacterRange> runs;
  const std::uint64_t few = lines_ / kLinesAFill;
  for (std::size_t i = 0; i < filled_.size(); ++i) {
    if (filled_[i] <= few) continue;
    const auto place = static_cast<std::int64_t>(i) + 1;
    if (runs.empty() || runs.back().to + 1 < place) {
      runs.push_back({place, place});
    } else {
      runs.back().to = place;
    }
  }
  return runs;
}

std::vector<std::vector<CharacterRange>> FixedColumns(const std::vector<std::string_view>& lines,
                                                      CellKinds& kinds) {
  std::vector<std::vector<CharacterRange>> ways;
  std::vector<std::string_view> body;
  BlankMask rules;
  for (const std::string_view line : lines) {
    if (line.find('\t') != std::string_view::npos) return {};
    if (line.find_first_not_of(" -=_") != std::string_view::npos) {
      body.push_back(line);
    } else if (line.find_first_not_of(' ') != std::string_view::npos) {
      rules.Add(line);
    }
  }
  const std::size_t first = std::min(kMostAbove, body.size() / kShareAbove);
  const std::vector<std::string_view> above(body.begin(),
                                            body.begin() + static_cast<std::ptrdiff_t>(first));
  const std::vector<std::string_view> data(body.begin() + static_cast<std::ptrdiff_t>(first),
                                           body.end());
  const auto add = [&](const std::vector<CharacterRange>& runs) {
    if (runs.size() < 2 || runs.size() > kMostColumns) return;
    const std::vector<CharacterRange> columns = ColumnsOfRuns(data, above, runs);
    if (std::find(ways.begin(), ways.end(), columns) == ways.end()) ways.push_back(columns);
  };
  add(rules.Runs());
  BlankMask all;
  for (const std::string_view line : body) all.Add(line);
  std::vector<CharacterRange> runs = all.Runs();
  JoinDates(data, kinds, &runs);
  JoinWords(data, &runs);
  add(runs);
  BlankMask below;
  for (const std::string_view line : data) below.Add(line);
  runs = below.Runs();
  if (runs.size() == 1) CutDense(data, &runs);
  JoinDates(data, kinds, &runs);
  JoinWords(data, &runs);
  add(runs);
  return ways;
}

}  // namespace library
