#include "library/sniff/BlankMask.h"

#include <algorithm>

#include "detection/BlankTrim.h"
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
// Lines that are looked at for dates that are no more than their parts.
constexpr std::size_t kLinesOfDates = 60;

enum class Edge { kOther, kDigit, kLetter };

Edge EdgeOf(char byte) {
  if (byte >= '0' && byte <= '9') return Edge::kDigit;
  if ((byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z')) return Edge::kLetter;
  return Edge::kOther;
}

// The values of a run end at its last place, and do not all begin at its first one.
bool IsRightAligned(const std::vector<std::string_view>& lines, const CharacterRange& run) {
  std::size_t ends = 0;
  std::size_t begins = 0;
  std::size_t values = 0;
  for (const std::string_view line : lines) {
    const std::string_view text = CutCharacters(line, run);
    if (text.find_first_not_of(' ') == std::string_view::npos) continue;
    ++values;
    begins += text.front() != ' ' ? 1 : 0;
    ends +=
        text.back() != ' ' && static_cast<std::int64_t>(CountUtf8(text)) == run.to - run.from + 1;
  }
  return 10 * ends >= 9 * values && begins < ends;
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
    ++values;
    // Three parts are a day, a month in letters and a year; two are a date and a time.
    const bool letters = std::any_of(text.begin(), text.end(),
                                     [](char byte) { return EdgeOf(byte) == Edge::kLetter; });
    const bool parts =
        runs == 3 ? letters : kinds.Of(CutCharacters(lines[i], first)) == CellKind::kDate;
    dates += parts && kinds.Of(text) == CellKind::kDate ? 1 : 0;
  }
  return values > 0 && 10 * dates >= 9 * values;
}

// Whether what is in run `right` are the last words of texts that begin in run `left`: it is there
// in few lines, and never where the text before it has ended.
bool AreLastWords(const std::vector<std::string_view>& lines, const CharacterRange& left,
                  const CharacterRange& right) {
  std::size_t texts = 0;
  std::size_t words = 0;
  for (const std::string_view line : lines) {
    const std::string_view begin = CutCharacters(line, left);
    const std::string_view end = CutCharacters(line, right);
    const bool ends = end.find_first_not_of(' ') != std::string_view::npos;
    texts += begin.find_first_not_of(' ') != std::string_view::npos ? 1 : 0;
    if (!ends) continue;
    ++words;
    const bool goesOn = !begin.empty() && begin.back() != ' ' && end.front() != ' ';
    const bool isNumber = std::none_of(end.begin(), end.end(), [](char byte) {
      return EdgeOf(byte) == Edge::kLetter || static_cast<unsigned char>(byte) >= 0x80;
    });
    if (!goesOn || isNumber) return false;
  }
  return words > 0 && 2 * words <= texts;
}

void JoinWords(const std::vector<std::string_view>& lines, std::vector<CharacterRange>* runs) {
  std::vector<CharacterRange> joined;
  for (const CharacterRange& run : *runs) {
    if (!joined.empty() && run.from == joined.back().to + 2 &&
        AreLastWords(lines, joined.back(), run)) {
      joined.back().to = run.to;
    } else {
      joined.push_back(run);
    }
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

// Where the longest text ends that begins in run `left`, of which hardly any line is so long: texts
// that go on to run `right` without a blank before them begin there. The run's end where lines
// cross from one to the other, or differ in where to cut.
std::int64_t EndOfLongest(const std::vector<std::string_view>& lines, const CharacterRange& left,
                          const CharacterRange& right) {
  const CharacterRange gap{left.to + 1, right.from - 1};
  std::int64_t end = left.to;
  std::int64_t begin = right.from;
  for (const std::string_view line : lines) {
    std::string_view between = CutCharacters(line, gap);
    const std::size_t lastBlank = between.find_last_of(' ');
    const auto size = static_cast<std::int64_t>(CountUtf8(between));
    if (size == gap.to - gap.from + 1 && lastBlank != std::string_view::npos) {
      const auto behind = static_cast<std::int64_t>(CountUtf8(between.substr(lastBlank + 1)));
      begin = std::min(begin, right.from - behind);
      between = between.substr(0, lastBlank);
    }
    const std::size_t filled = between.find_last_not_of(' ') + 1;
    end = std::max(end, left.to + static_cast<std::int64_t>(CountUtf8(between.substr(0, filled))));
  }
  return end < std::min(begin, gap.to) ? end : left.to;
}

// Of lines above the data, those whose texts stand in most of the runs, and cross from none to the
// next: names of the columns.
std::vector<std::string_view> LinesOfNames(const std::vector<std::string_view>& lines,
                                           const std::vector<CharacterRange>& runs) {
  std::vector<std::string_view> names;
  for (const std::string_view line : lines) {
    std::size_t texts = 0;
    bool crosses = false;
    for (std::size_t i = 0; i < runs.size(); ++i) {
      const std::string_view text = CutCharacters(line, runs[i]);
      texts += text.find_first_not_of(' ') != std::string_view::npos ? 1 : 0;
      if (i == 0) continue;
      const std::string_view gap = CutCharacters(line, {runs[i - 1].to + 1, runs[i].from - 1});
      crosses = crosses || (!gap.empty() && gap.find(' ') == std::string_view::npos);
    }
    if (!crosses && 2 * texts > runs.size()) names.push_back(line);
  }
  return names;
}

// The runs with the blanks between them; `names`: lines above `lines`, whose texts are not cut
// either.
std::vector<CharacterRange> Widened(const std::vector<std::string_view>& lines,
                                    const std::vector<std::string_view>& names,
                                    const std::vector<CharacterRange>& runs) {
  std::vector<std::string_view> whole = lines;
  whole.insert(whole.end(), names.begin(), names.end());
  std::vector<CharacterRange> columns = runs;
  columns.front().from = 1;
  for (std::size_t i = 1; i < runs.size(); ++i) {
    if (IsRightAligned(lines, runs[i])) {
      columns[i - 1].to = EndOfLongest(whole, runs[i - 1], runs[i]);
      columns[i].from = columns[i - 1].to + 1;
    } else {
      columns[i - 1].to = runs[i].from - 1;
    }
  }
  return columns;
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
  std::vector<std::string_view> titles;
  const auto add = [&](const std::vector<CharacterRange>& runs) {
    if (runs.size() < 2 || runs.size() > kMostColumns) return;
    const std::vector<CharacterRange> columns = Widened(body, LinesOfNames(titles, runs), runs);
    if (std::find(ways.begin(), ways.end(), columns) == ways.end()) ways.push_back(columns);
  };
  add(rules.Runs());
  BlankMask all;
  for (const std::string_view line : body) all.Add(line);
  const std::size_t above = std::min(kMostAbove, body.size() / kShareAbove);
  const std::vector<std::string_view> data(body.begin() + static_cast<std::ptrdiff_t>(above),
                                           body.end());
  std::vector<CharacterRange> runs = all.Runs();
  JoinDates(data, kinds, &runs);
  JoinWords(data, &runs);
  add(runs);
  titles.assign(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(above));
  body.erase(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(above));
  BlankMask below;
  for (const std::string_view line : body) below.Add(line);
  runs = below.Runs();
  if (runs.size() == 1) CutDense(body, &runs);
  JoinDates(body, kinds, &runs);
  JoinWords(body, &runs);
  add(runs);
  return ways;
}

}  // namespace library
