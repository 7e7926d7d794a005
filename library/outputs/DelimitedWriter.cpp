#include "library/outputs/DelimitedWriter.h"

#include <algorithm>
#include <cstddef>

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
    : separator_(separator), columns_(std::move(columns)) {
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
      WriteField(hostText.ToUtf8(StringAt(obs, column)), out);
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
