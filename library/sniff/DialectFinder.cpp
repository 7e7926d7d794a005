#include "library/sniff/DialectFinder.h"

#include <algorithm>
#include <array>
#include <string>

#include "library/sniff/BlankMask.h"
#include "library/sniff/CommasInNumbers.h"
#include "library/sniff/CommentLines.h"

namespace library {
namespace {

constexpr std::size_t kMostText = 64 << 10;
constexpr std::size_t kMostLines = 1000;
// Of lines that are longer than all this text, so many are looked at, and so much of each.
constexpr std::size_t kFewestLines = 4;
constexpr std::size_t kLongestLine = 512 << 10;

// The delimiters that are always thought of, and others that are where the lines' bytes suggest it.
constexpr std::string_view kUsual = ",;\t|:^~# \x1F";
constexpr std::string_view kUnusual = "!*`\x01\x02\x03\x04\x05\x06\x07\x1C\x1D\x1E";
constexpr std::array<std::string_view, 9> kPairs = {"||", "::", ";;", "~~", "^^",
                                                    "##", "|~", "~|", "^|"};
// An unusual delimiter stands in this share of the lines.
constexpr double kUnusualShare = 0.8;

// A first look at so much text leaves so many delimiters for the second one.
constexpr std::size_t kGlanceText = 6 << 10;
constexpr std::size_t kGlanceDelimiters = 4;
// Apostrophes that are data are at most this share of those that qualify.
constexpr double kMostApostrophes = 0.1;
// Records that are cut alike by chance.
constexpr std::size_t kFewestAlike = 3;
// Titles and names that stand above the data.
constexpr std::size_t kMostAbove = 3;
// No part of a time has more digits, a fraction of a second neither.
constexpr std::size_t kMostDigits = 9;

using Lines = std::vector<std::string_view>;

struct Scored {
  Dialect dialect;
  DialectScore score;
};

bool Fewer(const Scored& a, const Scored& b) { return a.score.bits < b.score.bits; }

class Search {
 public:
  Search(const Lines& lines, const SniffSettings& settings, CellKinds& kinds)
      : lines_(lines), settings_(settings), kinds_(kinds) {
    CountCharacters();
  }

  // All dialects that are worth it, the best first; not empty.
  std::vector<Scored> Run();

 private:
  void CountCharacters();
  bool Occurs(char ch) const { return found_[static_cast<unsigned char>(ch)] != 0; }
  bool InMost(std::size_t lines) const {
    return static_cast<double>(lines) >= kUnusualShare * static_cast<double>(filled_);
  }
  std::vector<Dialect> Delimiters() const;
  std::vector<Dialect> AtAGlance(std::vector<Dialect> delimiters);
  void ScoreQualifiers(const Dialect& delimiter);
  // Every quote that begins a field is closed by one that ends it.
  static bool IsClean(const DialectScore& score) {
    return score.quotes.qualified > 0 && score.quotes.behind == 0 && score.unclosed == 0;
  }

  // Hardly any apostrophe is data.
  static bool MayQualify(const DialectScore& score) {
    const auto qualified = static_cast<double>(score.quotes.qualified);
    return qualified > 0 && static_cast<double>(score.strays) <= kMostApostrophes * qualified;
  }

  const Lines& lines_;
  const SniffSettings& settings_;
  CellKinds& kinds_;
  // Lines that hold each ASCII character, and lines that are not empty.
  std::array<std::size_t, 128> found_{};
  std::size_t filled_ = 0;
  std::vector<Scored> scored_;
};

void Search::CountCharacters() {
  for (const std::string_view line : lines_) {
    if (line.empty()) continue;
    ++filled_;
    std::array<bool, 128> here{};
    for (const char byte : line) {
      const auto value = static_cast<unsigned char>(byte);
      if (value < 128) here[value] = true;
    }
    for (std::size_t ch = 0; ch < 128; ++ch) found_[ch] += here[ch] ? 1 : 0;
  }
}

std::vector<Dialect> Search::Delimiters() const {
  std::vector<Dialect> delimiters;
  const auto add = [&](std::string_view delimiter, bool multiple) {
    Dialect dialect;
    dialect.delimiter = delimiter;
    dialect.multipleBlanks = multiple;
    delimiters.push_back(dialect);
  };
  const auto addBlank = [&] {
    if (!settings_.multipleBlanks.value_or(false)) add(" ", false);
    if (settings_.multipleBlanks.value_or(true)) add(" ", true);
  };
  if (settings_.delimiter) {
    if (*settings_.delimiter == " ") {
      addBlank();
    } else {
      add(*settings_.delimiter, false);
    }
    return delimiters;
  }
  add("", false);
  for (const char ch : kUsual) {
    if (!Occurs(ch)) continue;
    if (ch == ' ') {
      addBlank();
    } else {
      add({&ch, 1}, false);
    }
  }
  for (const char ch : kUnusual) {
    if (Occurs(ch) && InMost(found_[static_cast<unsigned char>(ch)])) add({&ch, 1}, false);
  }
  for (const std::string_view pair : kPairs) {
    const auto has = std::count_if(lines_.begin(), lines_.end(), [&](std::string_view line) {
      return line.find(pair) != std::string_view::npos;
    });
    if (has > 0 && InMost(static_cast<std::size_t>(has))) add(pair, false);
  }
  for (const std::vector<CharacterRange>& columns : FixedColumns(lines_, kinds_)) {
    Dialect fixed;
    fixed.columns = columns;
    delimiters.push_back(fixed);
  }
  return delimiters;
}

// Keeps those that describe a part of the lines best, whatever qualifies there.
std::vector<Dialect> Search::AtAGlance(std::vector<Dialect> delimiters) {
  std::size_t bytes = 0;
  for (const std::string_view line : lines_) bytes += line.size();
  if (delimiters.size() <= kGlanceDelimiters || bytes < 2 * kGlanceText || lines_.size() < 8) {
    return delimiters;
  }
  // What stands above the data tells less than what follows it.
  Lines part(lines_.begin() + static_cast<std::ptrdiff_t>(lines_.size() / 3), lines_.end());
  std::size_t count = 0;
  for (std::size_t text = 0; count < part.size() && text < kGlanceText;)
    text += part[count++].size();
  std::vector<Scored> glances;
  for (const Dialect& delimiter : delimiters) {
    Scored plain{delimiter, ScoreDialect(part, count, delimiter, kinds_)};
    if (Occurs('"') && !delimiter.fixed()) {
      Dialect quoted = delimiter;
      quoted.qualifier = "\"";
      const double bits = ScoreDialect(part, count, quoted, kinds_).bits;
      plain.score.bits = std::min(plain.score.bits, bits);
    }
    glances.push_back(plain);
  }
  std::stable_sort(glances.begin(), glances.end(), Fewer);
  delimiters.clear();
  for (std::size_t i = 0; i < glances.size(); ++i) {
    // The comma and one column are measured in any case: they are what the others are held against.
    const std::string& delimiter = glances[i].dialect.delimiter;
    const bool usual = !glances[i].dialect.fixed() && (delimiter.empty() || delimiter == ",");
    if (i < kGlanceDelimiters || usual) delimiters.push_back(glances[i].dialect);
  }
  return delimiters;
}

void Search::ScoreQualifiers(const Dialect& delimiter) {
  const auto score = [&](const Dialect& dialect) {
    scored_.push_back({dialect, ScoreDialect(lines_, lines_.size(), dialect, kinds_)});
  };
  if (delimiter.fixed()) return score(delimiter);
  // What a qualifier would qualify is known before anything else is measured.
  const auto quotes = [&](const Dialect& dialect) {
    return CountQuotes(lines_, lines_.size(), dialect);
  };
  const std::size_t first = scored_.size();
  Dialect dialect = delimiter;
  if (settings_.qualifier) {
    dialect.qualifier = *settings_.qualifier;
    score(dialect);
  } else {
    bool clean = false;
    if (Occurs('"')) {
      dialect.qualifier = "\"";
      const DialectScore counts = quotes(dialect);
      // Nobody closes by chance every quote that begins a field.
      clean = IsClean(counts);
      if (counts.quotes.qualified > 0) score(dialect);
    }
    if (!clean) score(delimiter);
    if (!clean && Occurs('\'')) {
      dialect.qualifier = "'";
      if (MayQualify(quotes(dialect))) {
        score(dialect);
      } else if (Occurs('\\')) {
        // Escaped ones seem to be data to who does not know that they are escaped.
        dialect.escape = Escape::kBackslash;
        const DialectScore counts = quotes(dialect);
        if (counts.escapes > 0 && MayQualify(counts)) score(dialect);
      }
    }
  }
  if (!Occurs('\\')) return;
  const std::size_t last = scored_.size();
  for (std::size_t i = first; i < last; ++i) {
    dialect = scored_[i].dialect;
    if (dialect.qualifier.empty() || dialect.escape == Escape::kBackslash) continue;
    dialect.escape = Escape::kBackslash;
    if (quotes(dialect).escapes > 0) score(dialect);
  }
}

std::vector<Scored> Search::Run() {
  for (const Dialect& delimiter : AtAGlance(Delimiters())) ScoreQualifiers(delimiter);
  std::stable_sort(scored_.begin(), scored_.end(), Fewer);
  return scored_;
}

// What cuts lines most often, and what a colon is as well: a part of times.
constexpr std::string_view kSeparators = ",;\t|^~:";

bool IsSeparator(const Scored& one) {
  return one.dialect.delimiter.size() == 1 && !one.dialect.fixed() &&
         kSeparators.find(one.dialect.delimiter[0]) != std::string_view::npos;
}

std::size_t LongestDigits(std::string_view text) {
  std::size_t longest = 0;
  std::size_t here = 0;
  for (const char byte : text) {
    here = byte >= '0' && byte <= '9' ? here + 1 : 0;
    longest = std::max(longest, here);
  }
  return longest;
}

bool HasDigit(std::string_view text) { return LongestDigits(text) > 0; }

// Puts another dialect first where lines say more than the price of their values, or tells that
// nothing says which one is meant.
class Rivalry {
 public:
  Rivalry(const Lines& lines, CellKinds& kinds, std::vector<Scored>* scored)
      : lines_(lines), kinds_(kinds), scored_(*scored) {}

  // True where it stays open.
  bool IsOpen() {
    const Dialect& best = scored_.front().dialect;
    if (best.fixed()) return false;
    return best.delimiter == "," ? AgainstCommas() : best.delimiter.empty() && AgainstUncut();
  }

 private:
  template <typename Wanted>
  bool PutFirst(const Wanted& wanted) {
    const auto found = std::find_if(scored_.begin(), scored_.end(), wanted);
    if (found == scored_.end()) return false;
    std::rotate(scored_.begin(), found, found + 1);
    return true;
  }
  bool AgainstCommas();
  bool AgainstUncut();

  const Lines& lines_;
  CellKinds& kinds_;
  std::vector<Scored>& scored_;
};

// Commas that stand in numbers everywhere cut nothing where something else cuts.
bool Rivalry::AgainstCommas() {
  if (scored_.front().score.modalWidth == 2 && AreDecimalCommas(lines_, kinds_)) {
    PutFirst(
        [](const Scored& one) { return one.dialect.delimiter.empty() && !one.dialect.fixed(); });
    return false;
  }
  bool open = false;
  const bool other = PutFirst([&](const Scored& one) {
    const DialectScore& score = one.score;
    if (!IsSeparator(one) || one.dialect.delimiter == "," || score.modalWidth < 2 ||
        2 * score.modalRecords <= score.records ||
        score.records - score.modalRecords > std::max(kMostAbove, score.records / 10)) {
      return false;
    }
    const CommaPlaces commas = FindCommas(lines_, one.dialect, score.modalWidth);
    // Times stand beside numbers as well.
    const bool decides = one.dialect.delimiter != ":" || commas.underNames;
    open = open || (commas.betweenDigits && !decides && score.modalRecords == score.records);
    return commas.betweenDigits && decides;
  });
  return open && !other;
}

// What nothing cuts is cut by a separator that cuts all lines of values alike, and so the names
// above them, which have no digits. It is open where one cuts all lines that are no values as they
// stand, or blanks cut them.
bool Rivalry::AgainstUncut() {
  const std::size_t lines = lines_.size();
  std::size_t above = 0;
  while (above < std::min(lines, kMostAbove) && !HasDigit(lines_[above])) ++above;
  const auto cuts = [&](const Scored& one, std::size_t least) {
    return IsSeparator(one) && one.score.modalWidth > 1 &&
           one.score.modalRecords >= std::max(least, kFewestAlike);
  };
  const bool digitsBelow =
      std::all_of(lines_.begin() + static_cast<std::ptrdiff_t>(above), lines_.end(), HasDigit);
  if (above > 0 && above < lines && digitsBelow &&
      PutFirst([&](const Scored& one) { return cuts(one, lines - above + 1); })) {
    return false;
  }
  const auto texts = std::count_if(lines_.begin(), lines_.end(), [&](std::string_view line) {
    return kinds_.Of(line) == CellKind::kText || LongestDigits(line) > kMostDigits;
  });
  return std::any_of(scored_.begin(), scored_.end(), [&](const Scored& one) {
    return one.dialect.fixed() ||
           (cuts(one, lines - above) && 2 * static_cast<std::size_t>(texts) > lines);
  });
}

bool CutsAlike(const Scored& a, const Scored& b) {
  return a.dialect.delimiter == b.dialect.delimiter && a.dialect.columns == b.dialect.columns &&
         a.score.modalWidth == b.score.modalWidth && a.score.modalRecords == b.score.modalRecords;
}

}  // namespace

std::size_t LinesForDialect(const Lines& lines) {
  std::size_t bytes = 0;
  std::size_t count = 0;
  while (count < lines.size() && count < kMostLines &&
         (bytes < kMostText || count < kFewestLines)) {
    bytes += lines[count++].size() + 1;
  }
  return count;
}

DialectAnswer FindDialect(const Lines& allLines, const SniffSettings& settings, CellKinds& kinds) {
  Lines lines(allLines.begin(),
              allLines.begin() + static_cast<std::ptrdiff_t>(LinesForDialect(allLines)));
  const std::string_view comment = CommentSign(lines, lines.size());
  std::erase_if(lines, [&](std::string_view line) { return IsCommentLine(line, comment); });
  for (std::string_view& line : lines) line = line.substr(0, kLongestLine);
  std::vector<Scored> scored = Search(lines, settings, kinds).Run();
  DialectAnswer answer;
  answer.open = !settings.delimiter && Rivalry(lines, kinds, &scored).IsOpen();
  answer.dialect = scored.front().dialect;
  answer.score = scored.front().score;
  const auto other = std::find_if(scored.begin() + 1, scored.end(), [&](const Scored& next) {
    return !CutsAlike(next, scored.front());
  });
  if (other != scored.end()) {
    answer.runnerUp = other->dialect;
    answer.runnerUpScore = other->score;
  }
  if (answer.score.quotes.doubled > 0 && answer.dialect.escape == Escape::kNone) {
    answer.dialect.escape = Escape::kDouble;
  }
  return answer;
}

}  // namespace library
