// Cases as lines of text, and what their writers share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"
#include "library/columns/PaddedText.h"
#include "library/outputs/FormatName.h"
#include "library/outputs/TextBlock.h"
#include "library/outputs/Utf8Converter.h"
#include "library/outputs/ValueText.h"

namespace library {

enum class ValueStyle {
  kDisplay,  // dates and times as ISO 8601 shows them
  kRaw,      // every number as a number
};

// A variable as a writer sees it.
struct CaseColumn {
  std::string name;   // UTF-8
  std::size_t cell;   // its first cell in a case
  std::size_t bytes;  // of a string; 0 for a number
  ValueKind kind;
};

// The columns of a source, in its order.
std::vector<CaseColumn> ColumnsOf(const QANT_DataSource& source, ValueStyle style);

// The value of a number's column.
inline double NumberAt(const OBS* obs, const CaseColumn& column) {
  double value = 0;
  std::memcpy(&value, obs[column.cell].bytes, sizeof value);
  return value;
}
// The text of a string's column (host text) without the blanks that pad it. A view into the case.
inline std::string_view StringAt(const OBS* obs, const CaseColumn& column) {
  return WithoutPadding(obs + column.cell, column.bytes);
}

// The same of a narrow column with the blanks, which whoever copies it drops.
inline std::string_view ShortStringAt(const OBS* obs, const CaseColumn& column) {
  constexpr std::size_t kNarrow = 64;
  if (column.bytes > kNarrow) return StringAt(obs, column);
  return {reinterpret_cast<const char*>(obs[column.cell].bytes), column.bytes};
}

// Columns are written some at a time into room that is made for all of them, so that nobody looks
// after the text's end for every value.
inline constexpr std::size_t kColumnsAtOnce = 16;

// For each such group of columns, the room that their values need where no text is longer written
// than it is, `more` bytes around each included.
std::vector<std::size_t> RoomOf(const std::vector<CaseColumn>& columns, std::size_t more);

// Writes the cases of one source as text (UTF-8). Allocates nothing per case. Any thread, several
// at the same time, each with a converter of its own.
class CaseWriter {
 public:
  virtual ~CaseWriter() = default;
  // What stands before the cases.
  virtual void WriteHeader(TextBlock& out) const = 0;
  virtual void WriteCase(const OBS* obs, Utf8Converter& hostText, TextBlock& out) const = 0;
};

}  // namespace library
