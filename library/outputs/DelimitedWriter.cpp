#include "library/outputs/DelimitedWriter.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "library/outputs/CellText.h"
#include "library/outputs/ValueText.h"

namespace library {

namespace {

void WriteQuoted(std::string_view text, TextBlock& out) {
  out.Append('"');
  for (std::size_t quote = text.find('"'); quote != std::string_view::npos;
       quote = text.find('"')) {
    out.Append(text.substr(0, quote + 1));
    out.Append('"');
    text.remove_prefix(quote + 1);
  }
  out.Append(text);
  out.Append('"');
}

}  // namespace

DelimitedWriter::DelimitedWriter(char separator, std::vector<CaseColumn> columns)
    : separator_(separator),
      columns_(std::move(columns)),
      separators_(WordScan::Repeat(separator)) {
  for (const char special : {separator, '"', '\r', '\n'}) {
    quoted_[static_cast<unsigned char>(special)] = true;
  }
}

void DelimitedWriter::WriteHeader(TextBlock& out) const {
  bool first = true;
  for (const CaseColumn& column : columns_) {
    if (!first) out.Append(separator_);
    first = false;
    WriteField(column.name, out);
  }
  out.Append('\n');
}

void DelimitedWriter::WriteCase(const OBS* obs, Utf8Converter& hostText, TextBlock& out) const {
  bool first = true;
  for (const CaseColumn& column : columns_) {
    if (!first) out.Append(separator_);
    first = false;
    if (column.kind == ValueKind::kString) {
      WriteCells(ShortStringAt(obs, column), hostText, out);
      continue;
    }
    const double value = NumberAt(obs, column);
    if (IsMissing(value)) {
      WriteField({}, out);
    } else {
      out.Advance(WriteValue(out.Reserve(kValueTextRoom), value, column.kind));
    }
  }
  out.Append('\n');
}

inline void DelimitedWriter::WriteCells(std::string_view text, Utf8Converter& hostText,
                                        TextBlock& out) const {
  // Most texts are ASCII and plain, and if not, hold a separator but no quote: copied while they
  // are looked at.
  char* const place = out.Reserve(CellRoom(text.size()) + 2);
  std::uint64_t special = 0;
  std::uint64_t unusual = 0;
  const std::size_t size = CopyCells(text.data(), text.size(), place, [&](std::uint64_t word) {
    special |= WordScan::Has(word, separators_);
    unusual |= WordScan::HasNoAscii(word) | WordScan::HasControls(word) |
               WordScan::Has(word, WordScan::Repeat('"'));
  });
  if (unusual != 0 || columns_.size() == 1) {
    WriteField(hostText.ToUtf8(text.substr(0, size)), out);
  } else if (special != 0) {
    std::memmove(place + 1, place, size);
    place[0] = place[1 + size] = '"';
    out.Advance(place + size + 2);
  } else {
    out.Advance(place + size);
  }
}

void DelimitedWriter::WriteField(std::string_view text, TextBlock& out) const {
  const bool emptyLine = text.empty() && columns_.size() == 1;
  const bool special = std::any_of(text.begin(), text.end(), [this](char character) {
    return quoted_[static_cast<unsigned char>(character)];
  });
  if (emptyLine || special) {
    WriteQuoted(text, out);
  } else {
    out.Append(text);
  }
}

}  // namespace library
