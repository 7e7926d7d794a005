// Counts fields without delivering them: for whoever deals records out by the values in them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reading/ByteScan.h"
#include "reading/FieldRules.h"
#include "reading/FieldSplitter.h"

namespace textwizard {

// Counts as many fields as FieldSplitter::Next finds in the same records. One thread; the rules
// outlive it.
class FieldCounter {
 public:
  explicit FieldCounter(const FieldRules& rules);

  // Fields of all records in `lines`: host text without a NUL, in which line ends (LF and CR, in
  // any number) stand between and behind records.
  std::size_t CountLines(std::string_view lines);

  // Counts the fields of `record` from byte `*offset` on, until there are `most`. The offset
  // becomes that behind the last field counted, or the record's size when no further field follows
  // it.
  std::size_t CountRecord(std::string_view record, std::size_t most, std::size_t* offset);

 private:
  static constexpr std::size_t kMarkWords = 64;

  // Lines that are counted by marks, and what is known of them so far.
  struct MarkedLines;

  std::size_t CountMarks(std::string_view lines);
  std::uint64_t InsideQualifiers(MarkedLines& lines, std::size_t word);
  bool KeepsQualifier(const MarkedLines& lines, const char* qualifier) const;
  std::size_t CountLine(std::string_view record);

  FieldSplitter splitter_;
  // In text that can be cut by bytes each of these ends a field, unless it stands between
  // qualifiers.
  ByteSet delimiters_;
  ByteSet qualifier_;
  bool delimitersEndFields_ = false;
  bool keepsStrayQualifiers_ = false;
  std::array<std::string_view, 64> fields_;
  std::array<std::uint64_t, kMarkWords> ends_;
  std::array<std::uint64_t, kMarkWords> qualifiers_{};
  std::array<std::uint64_t, kMarkWords> lineEnds_;
};

}  // namespace textwizard
