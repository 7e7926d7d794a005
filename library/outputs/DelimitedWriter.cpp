#include "library/outputs/DelimitedWriter.h"

#include <algorithm>
#include <cstddef>

#include "library/outputs/ValueText.h"

namespace library {

DelimitedWriter::DelimitedWriter(char separator, std::vector<CaseColumn> columns, OutputFile& file)
    : separator_(separator), columns_(std::move(columns)), file_(file) {
  for (const char special : {separator, '"', '\r', '\n'}) {
    quoted_[static_cast<unsigned char>(special)] = true;
  }
}

void DelimitedWriter::WriteHeader() {
  bool first = true;
  for (const CaseColumn& column : columns_) {
    if (!first) file_.Append(separator_);
    first = false;
    WriteField(column.name);
  }
  file_.Append('\n');
}

void DelimitedWriter::WriteCase(const OBS* obs) {
  bool first = true;
  for (const CaseColumn& column : columns_) {
    if (!first) file_.Append(separator_);
    first = false;
    if (column.kind == ValueKind::kString) {
      WriteField(hostText_.ToUtf8(StringAt(obs, column)));
      continue;
    }
    const double value = NumberAt(obs, column);
    if (IsMissing(value)) {
      WriteField({});
    } else {
      file_.Advance(WriteValue(file_.Reserve(kValueTextRoom), value, column.kind));
    }
  }
  file_.Append('\n');
}

void DelimitedWriter::WriteField(std::string_view text) {
  const bool emptyLine = text.empty() && columns_.size() == 1;
  const bool special = std::any_of(text.begin(), text.end(), [this](char character) {
    return quoted_[static_cast<unsigned char>(character)];
  });
  if (emptyLine || special) {
    WriteQuoted(text);
  } else {
    file_.Append(text);
  }
}

void DelimitedWriter::WriteQuoted(std::string_view text) {
  file_.Append('"');
  for (std::size_t quote = text.find('"'); quote != std::string_view::npos;
       quote = text.find('"')) {
    file_.Append(text.substr(0, quote + 1));
    file_.Append('"');
    text.remove_prefix(quote + 1);
  }
  file_.Append(text);
  file_.Append('"');
}

}  // namespace library
