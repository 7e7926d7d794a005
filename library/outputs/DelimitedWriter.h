// Cases as separated values, the way RFC 4180 has them, with line feeds as line ends.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "library/outputs/CaseWriter.h"

namespace library {

// A header of names, then a line a case. A field is quoted where it holds the separator, a quote or
// a line end, and where it would be an empty line: many readers skip those, and a case would be
// lost. Blanks are part of a field and need no quotes. A missing number is an empty field.
class DelimitedWriter : public CaseWriter {
 public:
  DelimitedWriter(char separator, std::vector<CaseColumn> columns);
  void WriteHeader(TextBlock& out) const override;
  void WriteCase(const OBS* obs, Utf8Converter& hostText, TextBlock& out) const override;

 private:
  // A text in UTF-8.
  void WriteField(std::string_view text, TextBlock& out) const;
  const char separator_;
  const std::vector<CaseColumn> columns_;
  const std::vector<std::size_t> rooms_;  // of groups of columns
  const std::uint64_t separators_;        // a word of them
  std::array<bool, 256> quoted_{};        // the bytes that need quotes around their field
};

}  // namespace library
