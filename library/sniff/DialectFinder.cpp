#include "library/sniff/DialectFinder.h"

#include <algorithm>
#include <array>
#include <string>

#include "library/sniff/BlankMask.h"
#include "library/sniff/CommentLines.h"

namespace library {
namespace {

constexpr std::size_t kMostText = 64 << 10;
constexpr std::size_t kMostLines = 1000;

// The delimiters that are always thought of, and others that are where the lines' bytes suggest it.
constexpr std::string_view kUsual = ",;\t|:^~# \x1F";
constexpr std::string_view kUnusual = "!@$%&*+=?`\x01\x02\x03\x04\x05\x06\x07\x1C\x1D\x1E";

// Lines that hold each ASCII character.
std::array<std::size_t, 128> CountLines(const std::vector<std::string_view>& lines,
                                        std::size_t count, std::size_t* nonEmpty) {
  std::array<std::size_t, 128> found{};
  *nonEmpty = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (lines[i].empty()) continue;
    ++*nonEmpty;
    std::array<bool, 128> here{};
    for (const char byte : lines[i]) {
      const auto value = static_cast<unsigned char>(byte);
      if (value < 128) here[value] = true;
    }
    for (std::size_t ch = 0; ch < 128; ++ch) found[ch] += here[ch] ? 1 : 0;
  }
  return found;
}

bool SamePieces(const DialectScore& a, const DialectScore& b) {
  return a.modalWidth == b.modalWidth && a.modalRecords == b.modalRecords;
}

// The dialects that are worth scoring.
std::vector<Dialect> Hypotheses(const std::vector<std::string_view>& lines, std::size_t count,
                                const SniffSettings& settings) {
  std::size_t nonEmpty = 0;
  const auto found = CountLines(lines, count, &nonEmpty);
  std::vector<Dialect> delimiters;
  if (settings.delimiter) {
    Dialect given;
    given.delimiter = *settings.delimiter;
    delimiters.push_back(given);
    if (given.delimiter == " ") {
      given.multipleBlanks = true;
      delimiters.push_back(given);
    }
  } else {
    delimiters.push_back({});
    for (const char ch : kUsual) {
      if (found[static_cast<unsigned char>(ch)] == 0) continue;
      Dialect one;
      one.delimiter = ch;
      delimiters.push_back(one);
      if (ch == ' ') {
        one.multipleBlanks = true;
        delimiters.push_back(one);
      }
    }
    for (const char ch : kUnusual) {
      if (found[static_cast<unsigned char>(ch)] * 10 < nonEmpty * 8) continue;
      Dialect one;
      one.delimiter = ch;
      delimiters.push_back(one);
    }
    for (const std::string_view pair : {"||", "::", ";;", "~~", "^^", "##", "|~", "~|", "^|"}) {
      const auto has = static_cast<std::size_t>(std::count_if(
          lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(count),
          [&](std::string_view line) { return line.find(pair) != std::string_view::npos; }));
      if (has * 10 < nonEmpty * 8) continue;
      Dialect two;
      two.delimiter = pair;
      delimiters.push_back(two);
    }
  }
  std::vector<std::string> qualifiers;
  if (settings.qualifier) {
    qualifiers.push_back(*settings.qualifier);
  } else {
    qualifiers.emplace_back();
    for (const char ch : {'"', '\''}) {
      if (found[static_cast<unsigned char>(ch)] != 0) qualifiers.emplace_back(1, ch);
    }
  }
  std::vector<Dialect> all;
  for (const Dialect& delimiter : delimiters) {
    for (const std::string& qualifier : qualifiers) {
      Dialect dialect = delimiter;
      dialect.qualifier = qualifier;
      all.push_back(dialect);
      if (qualifier.empty() || found['\\'] == 0) continue;
      dialect.escape = Escape::kBackslash;
      all.push_back(dialect);
    }
  }
  if (settings.delimiter) return all;
  for (const std::vector<CharacterRange>& columns : FixedColumns(lines)) {
    Dialect fixed;
    fixed.columns = columns;
    all.push_back(fixed);
  }
  return all;
}

}  // namespace

std::size_t LinesForDialect(const std::vector<std::string_view>& lines) {
  std::size_t bytes = 0;
  std::size_t count = 0;
  while (count < lines.size() && count < kMostLines && bytes < kMostText) {
    bytes += lines[count++].size() + 1;
  }
  return count;
}

DialectAnswer FindDialect(const std::vector<std::string_view>& allLines,
                          const SniffSettings& settings, ValueKinds& kinds) {
  std::vector<std::string_view> lines(
      allLines.begin(), allLines.begin() + static_cast<std::ptrdiff_t>(LinesForDialect(allLines)));
  const std::string_view comment = CommentSign(lines, lines.size());
  std::erase_if(lines, [&](std::string_view line) { return IsCommentLine(line, comment); });
  const std::size_t count = lines.size();
  struct Scored {
    Dialect dialect;
    DialectScore score;
  };
  std::vector<Scored> scored;
  for (const Dialect& dialect : Hypotheses(lines, count, settings)) {
    DialectScore score = ScoreDialect(lines, count, dialect, kinds);
    // A qualifier or an escape that never is one says nothing.
    if (!settings.qualifier && score.quotes.qualified == 0 &&
        (dialect.qualifier == "'" || (dialect.qualifier == "\"" && score.quotes.stray == 0))) {
      continue;
    }
    if (dialect.escape == Escape::kBackslash && score.quotes.escaped == 0) continue;
    scored.push_back({dialect, score});
  }
  // Apostrophes qualify only where quotes do not and where few of them are data.
  const bool quotesQualify = std::any_of(scored.begin(), scored.end(), [](const Scored& one) {
    return one.dialect.qualifier == "\"" && one.score.quotes.qualified > 0 &&
           one.score.quotes.behind == 0 && one.score.unclosed == 0;
  });
  if (!settings.qualifier) {
    std::erase_if(scored, [&](const Scored& one) {
      return one.dialect.qualifier == "'" &&
             (quotesQualify || 10 * one.score.quotes.stray > one.score.quotes.qualified);
    });
    // Nobody closes by chance every quote that begins a field.
    std::erase_if(scored, [&](const Scored& one) {
      return one.dialect.qualifier.empty() &&
             std::any_of(scored.begin(), scored.end(), [&](const Scored& other) {
               return other.dialect.delimiter == one.dialect.delimiter &&
                      other.dialect.multipleBlanks == one.dialect.multipleBlanks &&
                      other.dialect.qualifier == "\"" && other.score.quotes.qualified > 0 &&
                      other.score.quotes.behind == 0 && other.score.unclosed == 0;
             });
    });
  }
  std::stable_sort(scored.begin(), scored.end(),
                   [](const Scored& a, const Scored& b) { return a.score.bits < b.score.bits; });
  DialectAnswer answer;
  answer.dialect = scored.front().dialect;
  answer.score = scored.front().score;
  const auto other = std::find_if(scored.begin() + 1, scored.end(), [&](const Scored& next) {
    return next.dialect.delimiter != answer.dialect.delimiter ||
           next.dialect.fixed() != answer.dialect.fixed() || !SamePieces(next.score, answer.score);
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
