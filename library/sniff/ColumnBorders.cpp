#include "library/sniff/ColumnBorders.h"

#include <algorithm>
#include <cstdint>

#include "library/sniff/BlankMask.h"
#include "library/sniff/Utf8.h"

namespace library {
namespace {

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

// The texts of a line that two blanks or more separate.
std::vector<CharacterRange> TextsOf(std::string_view line) {
  std::vector<CharacterRange> texts;
  std::int64_t place = 1;
  for (std::size_t at = 0; at < line.size(); at += Utf8Length(line[at]), ++place) {
    if (line[at] == ' ') continue;
    if (texts.empty() || place > texts.back().to + 2) {
      texts.push_back({place, place});
    } else {
      texts.back().to = place;
    }
  }
  return texts;
}

bool Overlap(const CharacterRange& a, const CharacterRange& b) {
  return a.from <= b.to && b.from <= a.to;
}

// The line's words cross the gap before a run: neither two blanks are in it, nor one beside a word
// that begins, or with right-aligned values ends, where the values do.
bool Crosses(std::string_view line, const CharacterRange& gap, bool rightAligned) {
  const std::string_view between = CutCharacters(line, gap);
  const bool whole = static_cast<std::int64_t>(CountUtf8(between)) == gap.to - gap.from + 1;
  return whole && !between.empty() && between.back() != ' ' &&
         (between.front() != ' ' || !rightAligned) && between.find("  ") == std::string_view::npos;
}

// Of lines above the data, those whose texts stand in most of the runs, and cross from none to the
// next: names of the columns.
std::vector<std::string_view> LinesOfNames(const std::vector<std::string_view>& above,
                                           const std::vector<CharacterRange>& runs,
                                           const std::vector<bool>& rightAligned) {
  std::vector<std::string_view> names;
  for (const std::string_view line : above) {
    std::size_t texts = 0;
    bool crosses = false;
    for (std::size_t i = 0; i < runs.size(); ++i) {
      const std::string_view text = CutCharacters(line, runs[i]);
      texts += text.find_first_not_of(' ') != std::string_view::npos ? 1 : 0;
      crosses = crosses ||
                (i > 0 && Crosses(line, {runs[i - 1].to + 1, runs[i].from - 1}, rightAligned[i]));
    }
    if (!crosses && 2 * texts > runs.size()) names.push_back(line);
  }
  return names;
}

// The runs, and among them the names that stand where no line of data has anything.
std::vector<CharacterRange> WithEmptyColumns(const std::vector<std::string_view>& names,
                                             const std::vector<CharacterRange>& runs) {
  std::vector<CharacterRange> all = runs;
  for (const std::string_view line : names) {
    const std::vector<CharacterRange> texts = TextsOf(line);
    const auto named = [&](std::size_t run) {
      return std::any_of(texts.begin(), texts.end(),
                         [&](const CharacterRange& text) { return Overlap(text, runs[run]); });
    };
    for (const CharacterRange& text : texts) {
      const bool stands = std::none_of(
          all.begin(), all.end(), [&](const CharacterRange& run) { return Overlap(run, text); });
      if (!stands) continue;
      // The runs beside it have names of their own.
      std::size_t next = 0;
      while (next < runs.size() && runs[next].from < text.from) ++next;
      if ((next > 0 && !named(next - 1)) || (next < runs.size() && !named(next))) continue;
      all.insert(std::upper_bound(all.begin(), all.end(), text,
                                  [](const CharacterRange& a, const CharacterRange& b) {
                                    return a.from < b.from;
                                  }),
                 text);
    }
  }
  return all;
}

// The places on end within the gap that the fewest lines fill: the longest stretch, and of those
// the last one.
CharacterRange BlankStretch(const BlankMask& mask, const CharacterRange& gap) {
  std::uint64_t fewest = mask.FilledAt(gap.from);
  for (std::int64_t place = gap.from; place <= gap.to; ++place) {
    fewest = std::min(fewest, mask.FilledAt(place));
  }
  CharacterRange best{gap.from, gap.from - 1};
  CharacterRange here = best;
  for (std::int64_t place = gap.from; place <= gap.to; ++place) {
    if (mask.FilledAt(place) != fewest) continue;
    here = here.to + 1 == place ? CharacterRange{here.from, place} : CharacterRange{place, place};
    if (here.to - here.from >= best.to - best.from) best = here;
  }
  return best;
}

}  // namespace

std::vector<CharacterRange> ColumnsOfRuns(const std::vector<std::string_view>& lines,
                                          const std::vector<std::string_view>& above,
                                          const std::vector<CharacterRange>& runs) {
  std::vector<bool> rightAligned;
  rightAligned.reserve(runs.size());
  for (const CharacterRange& run : runs) rightAligned.push_back(IsRightAligned(lines, run));
  const std::vector<std::string_view> names = LinesOfNames(above, runs, rightAligned);
  std::vector<CharacterRange> columns = WithEmptyColumns(names, runs);
  const std::vector<CharacterRange> filled = columns;
  BlankMask mask;
  for (const std::string_view line : lines) mask.Add(line);
  for (const std::string_view line : names) mask.Add(line);
  columns.front().from = 1;
  for (std::size_t i = 1; i < columns.size(); ++i) {
    const CharacterRange gap{filled[i - 1].to + 1, filled[i].from - 1};
    if (gap.from <= gap.to) {
      const CharacterRange blank = BlankStretch(mask, gap);
      columns[i - 1].to = IsRightAligned(lines, filled[i]) ? blank.from - 1 : blank.to;
    }
    columns[i].from = columns[i - 1].to + 1;
  }
  return columns;
}

}  // namespace library
