#include "library/outputs/JsonLinesWriter.h"

#include <cstdint>

#include "library/outputs/CellText.h"
#include "library/outputs/JsonText.h"
#include "library/outputs/ValueText.h"

namespace library {
namespace {

// Writes host text that begins a string's cells, without the blanks at its end.
inline void WriteCells(std::string_view text, Utf8Converter& hostText, TextBlock& out) {
  // Most texts are ASCII and need no escape: copied while they are looked at.
  char* const place = out.Reserve(1 + CellRoom(text.size()) + 1);
  std::uint64_t unusual = 0;
  const std::size_t size = CopyCells(text.data(), text.size(), place + 1, [&](std::uint64_t word) {
    unusual |= WordScan::HasNoAscii(word) | WordScan::HasControls(word) |
               WordScan::Has(word, WordScan::Repeat('"')) |
               WordScan::Has(word, WordScan::Repeat('\\'));
  });
  if (unusual != 0) {
    AppendJsonString(out, hostText.ToUtf8(text.substr(0, size)));
    return;
  }
  place[0] = place[1 + size] = '"';
  out.Advance(place + size + 2);
}

}  // namespace

JsonLinesWriter::JsonLinesWriter(std::vector<CaseColumn> columns) : columns_(std::move(columns)) {
  for (const CaseColumn& column : columns_) {
    TextBlock key;
    key.Append(keys_.empty() ? '{' : ',');
    AppendJsonString(key, column.name);
    key.Append(':');
    keys_.emplace_back(key.view());
  }
}

void JsonLinesWriter::WriteCase(const OBS* obs, Utf8Converter& hostText, TextBlock& out) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const CaseColumn& column = columns_[i];
    out.Append(keys_[i]);
    if (column.kind == ValueKind::kString) {
      WriteCells(ShortStringAt(obs, column), hostText, out);
      continue;
    }
    const double value = NumberAt(obs, column);
    if (IsMissing(value)) {
      out.Append("null");
      continue;
    }
    const bool isText = column.kind != ValueKind::kNumber;
    if (isText) out.Append('"');
    out.Advance(WriteValue(out.Reserve(kValueTextRoom), value, column.kind));
    if (isText) out.Append('"');
  }
  if (columns_.empty()) out.Append('{');
  out.Append("}\n");
}

}  // namespace library
