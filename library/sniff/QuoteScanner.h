// Which parts of a record are qualified: where qualified fields begin and end, which line breaks
// lie within them, which qualifiers are ordinary characters.
//
// A field is qualified when a qualifier is the first of its characters that is no blank. A doubled
// qualifier within it is one character of the text, and with backslash escapes so is any character
// behind a backslash; behind text that follows its closing qualifier, the next one opens again. A
// qualifier that stands elsewhere in an unqualified field is a stray one: data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "library/sniff/Dialect.h"

namespace library {

// A byte of a line that the field splitter would misread.
struct QuoteMark {
  enum class Kind : std::uint8_t {
    kStray,   // a qualifier within an unqualified field
    kEscape,  // a backslash that makes the next character an ordinary one
    kBehind,  // the first byte of text behind a closing qualifier
  };
  std::size_t position;
  Kind kind;
};

// One thread. Lines are UTF-8 without their line ends and are given one after another.
class QuoteScanner {
 public:
  struct Counts {
    std::int64_t qualified = 0;  // fields that begin with a qualifier
    std::int64_t doubled = 0;    // doubled qualifiers within them
    std::int64_t escaped = 0;    // qualifiers behind a backslash within them
    std::int64_t stray = 0;
    std::int64_t behind = 0;  // closing qualifiers with text behind them
    std::int64_t needed = 0;  // qualified fields with a delimiter or a line break within them
  };
  explicit QuoteScanner(const Dialect& dialect);

  // Scans a line: the beginning of a record, or its continuation while open(). Adds what it finds
  // to *marks (may be null), positions in `line`. Returns open().
  bool Scan(std::string_view line, std::vector<QuoteMark>* marks);
  // The line scanned last ended within a qualified field.
  bool open() const { return open_; }
  // Forgets that a field is open; the second form also counts on from `counts`.
  void Reset() { open_ = false; }
  void Reset(const Counts& counts) {
    open_ = false;
    counts_ = counts;
  }

  const Counts& counts() const { return counts_; }

 private:
  // Length of the delimiter character at `at`; 0 when there is none.
  std::size_t DelimiterAt(std::string_view line, std::size_t at) const;
  std::size_t ScanQualified(std::string_view line, std::size_t at, std::vector<QuoteMark>* marks);

  // Every character of it cuts.
  const std::vector<std::string> delimiters_;
  const bool blankDelimits_;
  const std::string qualifier_;
  const bool backslash_;
  bool open_ = false;
  bool neededHere_ = false;
  Counts counts_;
};

}  // namespace library
