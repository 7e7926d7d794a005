// Lines into records: a record goes on where a line ends within a qualified field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "library/rewriting/QuoteRules.h"
#include "library/sniff/Dialect.h"

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
  // Qualified fields that no qualifier closes: the record ends with its line.
  std::int64_t unclosed = 0;
  // Qualifiers that are ordinary characters, or stand in text behind a closing one; characters that
  // a backslash escapes.
  std::int64_t strays = 0;
  std::int64_t escapes = 0;
  // Line breaks within qualified fields, and the index of the line where the first such field's
  // record begins.
  std::int64_t lineBreaks = 0;
  std::size_t firstLineBreak = 0;

  // A qualified field that has not ended after so many lines is taken as unclosed.
  static constexpr std::size_t kMostLines = 500;
};

// `lines` are views of one text (UTF-8), in its order, as SampleText gives them; the first `count`
// of them are looked at.
SampleRecords JoinRecords(const std::vector<std::string_view>& lines, std::size_t count,
                          const Dialect& dialect);

// The rules by which UTF-8 text in the dialect is rewritten when it is imported: line breaks within
// qualified fields join lines, stray qualifiers are data.
QuoteRules QuoteRulesOf(const Dialect& dialect);

}  // namespace library
