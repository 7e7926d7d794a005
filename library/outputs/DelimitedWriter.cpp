#include "library/outputs/DelimitedWriter.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "library/columns/CellText.h"
#include "library/outputs/ValueText.h"

namespace library {

namespace {

// A separator before a value, quotes around it, a line end behind it.
constexpr std::size_t kAround = 4;

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
      rooms_(RoomOf(columns_, kAround)),
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

// Most texts are ASCII and plain, and if not, hold a separator but no quote: they are copied while
// they are looked at.
void DelimitedWriter::WriteCase(const OBS* obs, Utf8Converter& hostText, TextBlock& out) const {
  char* place = out.Reserve(1);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (i % kColumnsAtOnce == 0) {
      out.Advance(place);
      place = out.Reserve(rooms_[i / kColumnsAtOnce]);
    }
    if (i != 0) *place++ = separator_;
    const CaseColumn& column = columns_[i];
    if (column.kind != ValueKind::kString) {
      const double value = NumberAt(obs, column);
      if (!IsMissing(value)) {
        place = WriteValue(place, value, column.kind);
        continue;
      }
      if (columns_.size() > 1) continue;
    }
    std::string_view text;
    std::uint64_t special = 0;
    std::uint64_t unusual = columns_.size() == 1 ? 1 : 0;
    if (column.kind == ValueKind::kString) {
      text = ShortStringAt(obs, column);
      const std::size_t size = CopyCells(text.data(), text.size(), place, [&](std::uint64_t word) {
        special |= WordScan::Has(word, separators_);
        unusual |= WordScan::HasNoAscii(word) | WordScan::HasControls(word) |
                   WordScan::Has(word, WordScan::Repeat('"'));
      });
      text = text.substr(0, size);
    }
    if (unusual != 0) {
      out.Advance(place);
      WriteField(hostText.ToUtf8(text), out);
      place = out.Reserve(rooms_[i / kColumnsAtOnce]);
      continue;
    }
    if (special != 0) {
      std::memmove(place + 1, place, text.size());
      place[0] = place[1 + text.size()] = '"';
      place += 2;
    }
    place += text.size();
  }
  out.Advance(place);
  out.Append('\n');
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
