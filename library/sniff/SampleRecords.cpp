#include "library/sniff/SampleRecords.h"

#include <algorithm>

namespace library {
namespace {

std::string_view Span(std::string_view first, std::string_view last) {
  return {first.data(), static_cast<std::size_t>(last.data() + last.size() - first.data())};
}

// Lines that are scanned for closing qualifiers that do not come; then none is expected any more.
constexpr std::size_t kMostInVain = 4 * SampleRecords::kMostLines;

}  // namespace

SampleRecords JoinRecords(const std::vector<std::string_view>& lines, std::size_t count,
                          const Dialect& dialect) {
  SampleRecords joined;
  count = std::min(count, lines.size());
  joined.records.reserve(count);
  QuoteScanner scanner(dialect);
  std::size_t inVain = 0;
  for (std::size_t line = 0; line < count; ++line) {
    if (lines[line].empty()) continue;
    if (dialect.qualifier.empty() ||
        lines[line].find(dialect.qualifier) == std::string_view::npos) {
      joined.records.push_back({lines[line], line, 1});
      continue;
    }
    const QuoteScanner::Counts before = scanner.counts();
    std::size_t last = line;
    if (scanner.Scan(lines[line], nullptr)) {
      const std::size_t limit = std::min(count, line + SampleRecords::kMostLines);
      while (scanner.open() && last + 1 < limit && inVain < kMostInVain) {
        scanner.Scan(lines[++last], nullptr);
      }
      if (scanner.open()) {
        // Nothing closes it: what was scanned behind this line counts as if it had not been.
        ++joined.unclosed;
        inVain += last - line;
        last = line;
        scanner.Reset(before);
        scanner.Scan(lines[line], nullptr);
        scanner.Reset();
      } else {
        if (joined.lineBreaks == 0) joined.firstLineBreak = line;
        joined.lineBreaks += static_cast<std::int64_t>(last - line);
      }
    }
    joined.records.push_back({Span(lines[line], lines[last]), line, last - line + 1});
    line = last;
  }
  joined.quotes = scanner.counts();
  return joined;
}

}  // namespace library
