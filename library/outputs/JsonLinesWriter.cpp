#include "library/outputs/JsonLinesWriter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "library/columns/CellText.h"
#include "library/outputs/JsonText.h"
#include "library/outputs/ValueText.h"

namespace library {
namespace {

// Quotes around a value.
constexpr std::size_t kAround = 2;

}  // namespace

JsonLinesWriter::JsonLinesWriter(std::vector<CaseColumn> columns)
    : columns_(std::move(columns)), rooms_(RoomOf(columns_, kAround)) {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    TextBlock text;
    text.Append(i == 0 ? '{' : ',');
    AppendJsonString(text, columns_[i].name);
    text.Append(':');
    Key& key = keys_.emplace_back();
    key.text = text.view();
    key.text.copy(key.start.data(), Key::kShort);
    rooms_[i / kColumnsAtOnce] += std::max(key.text.size(), Key::kShort);
  }
}

// Most texts are ASCII and need no escape: they are copied while they are looked at.
void JsonLinesWriter::WriteCase(const OBS* obs, Utf8Converter& hostText, TextBlock& out) const {
  char* place = out.Reserve(1);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (i % kColumnsAtOnce == 0) {
      out.Advance(place);
      place = out.Reserve(rooms_[i / kColumnsAtOnce]);
    }
    const CaseColumn& column = columns_[i];
    const Key& key = keys_[i];
    if (key.text.size() <= Key::kShort) {
      std::memcpy(place, key.start.data(), Key::kShort);
    } else {
      std::memcpy(place, key.text.data(), key.text.size());
    }
    place += key.text.size();
    if (column.kind == ValueKind::kString) {
      const std::string_view text = ShortStringAt(obs, column);
      std::uint64_t unusual = 0;
      const std::size_t size =
          CopyCells(text.data(), text.size(), place + 1, [&](std::uint64_t word) {
            unusual |= WordScan::HasNoAscii(word) | WordScan::HasControls(word) |
                       WordScan::Has(word, WordScan::Repeat('"')) |
                       WordScan::Has(word, WordScan::Repeat('\\'));
          });
      if (unusual != 0) {
        out.Advance(place);
        AppendJsonString(out, hostText.ToUtf8(text.substr(0, size)));
        place = out.Reserve(rooms_[i / kColumnsAtOnce]);
        continue;
      }
      place[0] = place[1 + size] = '"';
      place += size + 2;
      continue;
    }
    const double value = NumberAt(obs, column);
    if (IsMissing(value)) {
      constexpr std::string_view kNull = "null";
      place += kNull.copy(place, kNull.size());
      continue;
    }
    const bool isText = column.kind != ValueKind::kNumber;
    if (isText) *place++ = '"';
    place = WriteValue(place, value, column.kind);
    if (isText) *place++ = '"';
  }
  out.Advance(place);
  if (columns_.empty()) out.Append('{');
  out.Append("}\n");
}

}  // namespace library
