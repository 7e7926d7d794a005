#include "library/sniff/SampleRecords.h"

#include <algorithm>

#include "library/rewriting/QuoteRewriter.h"
#include "library/sniff/Utf8.h"

namespace library {
namespace {

std::string_view Span(std::string_view first, std::string_view last) {
  return {first.data(), static_cast<std::size_t>(last.data() + last.size() - first.data())};
}

// Lines that are walked for closing qualifiers that do not come; then none is expected any more.
constexpr std::size_t kMostInVain = 4 * SampleRecords::kMostLines;

bool IsOpen(const QuotePosition& position) {
  return position.state == QuotePosition::kQualified || position.state == QuotePosition::kEscape;
}

class Joiner {
 public:
  Joiner(const std::vector<std::string_view>& lines, std::size_t count, const Dialect& dialect)
      : lines_(lines),
        count_(std::min(count, lines.size())),
        rewriter_(QuoteRulesOf(dialect), StandIns()) {}

  // Adds the record that begins with `line`, which holds a qualifier; returns its last line.
  std::size_t Join(std::size_t line, SampleRecords* joined);

 private:
  const std::vector<std::string_view>& lines_;
  const std::size_t count_;
  const QuoteRewriter rewriter_;
  std::size_t inVain_ = 0;
};

std::size_t Joiner::Join(std::size_t line, SampleRecords* joined) {
  QuotePosition position = rewriter_.Begin();
  rewriter_.Advance(lines_[line], position);
  QuotePosition ended = position;
  std::size_t last = line;
  const std::size_t limit = std::min(count_, line + SampleRecords::kMostLines);
  while (IsOpen(position) && last + 1 < limit && inVain_ < kMostInVain) {
    rewriter_.Advance("\n", position);
    rewriter_.Advance(lines_[++last], position);
  }
  if (!IsOpen(position)) {
    if (last > line && joined->lineBreaks == 0) joined->firstLineBreak = line;
    joined->lineBreaks += static_cast<std::int64_t>(last - line);
    ended = position;
  } else {
    // Nothing closes it: it ends with its line.
    ++joined->unclosed;
    inVain_ += last - line;
    last = line;
  }
  joined->strays += ended.strays;
  joined->escapes += ended.escapes;
  joined->records.push_back({Span(lines_[line], lines_[last]), line, last - line + 1});
  return last;
}

}  // namespace

QuoteRules QuoteRulesOf(const Dialect& dialect) {
  QuoteRules rules;
  rules.delimiters = Utf8Characters(dialect.delimiter);
  if (!dialect.qualifier.empty()) rules.qualifier = dialect.qualifier.front();
  rules.options = {true, dialect.escape == Escape::kBackslash, true};
  return rules;
}

SampleRecords JoinRecords(const std::vector<std::string_view>& lines, std::size_t count,
                          const Dialect& dialect) {
  SampleRecords joined;
  count = std::min(count, lines.size());
  joined.records.reserve(count);
  Joiner joiner(lines, count, dialect);
  // A qualifier of several bytes qualifies within its line only.
  const bool joins = dialect.qualifier.size() == 1 && !dialect.fixed();
  for (std::size_t line = 0; line < count; ++line) {
    if (lines[line].empty()) continue;
    if (joins && lines[line].find(dialect.qualifier.front()) != std::string_view::npos) {
      line = joiner.Join(line, &joined);
    } else {
      joined.records.push_back({lines[line], line, 1});
    }
  }
  return joined;
}

}  // namespace library
