#include "library/sniff/QuoteScanner.h"

#include "library/sniff/Utf8.h"

namespace library {

QuoteScanner::QuoteScanner(const Dialect& dialect)
    : delimiters_(Utf8Characters(dialect.delimiter)),
      blankDelimits_(dialect.delimiter.find(' ') != std::string::npos),
      qualifier_(dialect.qualifier),
      backslash_(dialect.escape == Escape::kBackslash) {}

std::size_t QuoteScanner::DelimiterAt(std::string_view line, std::size_t at) const {
  for (const std::string& delimiter : delimiters_) {
    if (line[at] == delimiter[0] && line.substr(at, delimiter.size()) == delimiter) {
      return delimiter.size();
    }
  }
  return 0;
}

// Scans a qualified field's text from `at`; returns the position behind its closing qualifier, or
// npos when the line ends within it.
std::size_t QuoteScanner::ScanQualified(std::string_view line, std::size_t at,
                                        std::vector<QuoteMark>* marks) {
  const std::size_t length = qualifier_.size();
  while (at < line.size()) {
    const char byte = line[at];
    if (byte == '\\' && backslash_) {
      if (line.substr(at + 1, length) == qualifier_) ++counts_.escaped;
      if (marks) marks->push_back({at, QuoteMark::Kind::kEscape});
      at += 2;
    } else if (line.substr(at, length) == qualifier_) {
      at += length;
      if (line.substr(at, length) != qualifier_) {
        counts_.needed += neededHere_ ? 1 : 0;
        return at;
      }
      ++counts_.doubled;
      at += length;
    } else {
      if (DelimiterAt(line, at) != 0) neededHere_ = true;
      ++at;
    }
  }
  return std::string_view::npos;
}

bool QuoteScanner::Scan(std::string_view line, std::vector<QuoteMark>* marks) {
  if (qualifier_.empty()) return false;
  std::size_t at = 0;
  bool qualified = open_;
  if (open_) neededHere_ = true;
  open_ = false;
  for (;;) {
    if (!qualified) {
      // The start of a field.
      while (!blankDelimits_ && at < line.size() && line[at] == ' ') ++at;
      if (line.substr(at, qualifier_.size()) == qualifier_) {
        ++counts_.qualified;
        at += qualifier_.size();
        qualified = true;
        neededHere_ = false;
      }
    }
    const bool begunQualified = qualified;
    if (qualified) {
      at = ScanQualified(line, at, marks);
      if (at == std::string_view::npos) return open_ = true;
      qualified = false;
      while (!blankDelimits_ && at < line.size() && line[at] == ' ') ++at;
      if (at < line.size() && DelimiterAt(line, at) == 0) {
        ++counts_.behind;
        if (marks) marks->push_back({at, QuoteMark::Kind::kBehind});
      }
    }
    std::size_t delimiter = 0;
    while (at < line.size() && (delimiter = DelimiterAt(line, at)) == 0) {
      if (line.substr(at, qualifier_.size()) != qualifier_) {
        ++at;
      } else if (begunQualified) {
        // Behind text that follows a closing qualifier, the next one opens again.
        ++counts_.stray;
        at = ScanQualified(line, at + qualifier_.size(), marks);
        if (at == std::string_view::npos) return open_ = true;
      } else {
        ++counts_.stray;
        if (marks) marks->push_back({at, QuoteMark::Kind::kStray});
        at += qualifier_.size();
      }
    }
    if (at >= line.size()) return false;
    at += delimiter;
  }
}

}  // namespace library
