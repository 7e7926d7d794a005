// Lines into records: a record goes on where a line ends within a qualified field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "library/sniff/Dialect.h"
#include "library/sniff/QuoteScanner.h"

namespace library {

struct SampleRecord {
  // Without the last line's end; the line breaks within are as they stand.
  std::string_view text;
  // Index of its first line, and how many lines it has.
  std::size_t line = 0;
  std::size_t lines = 1;
};

struct SampleRecords {
  // Empty lines make no record.
  std::vector<SampleRecord> records;
  QuoteScanner::Counts quotes;
  // Qualified fields that no qualifier closes: the record ends with its line.
  std::int64_t unclosed = 0;
  // Line breaks within qualified fields, and the index of the line where the first such field's
  // record begins.
  std::int64_t lineBreaks = 0;
  std::size_t firstLineBreak = 0;

  // A qualified field that has not ended after so many lines is taken as unclosed.
  static constexpr std::size_t kMostLines = 500;
};

// `lines` are views of one text, in its order, as SampleText gives them; the first `count` of them
// are looked at.
SampleRecords JoinRecords(const std::vector<std::string_view>& lines, std::size_t count,
                          const Dialect& dialect);

}  // namespace library
