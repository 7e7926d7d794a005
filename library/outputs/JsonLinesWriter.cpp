#include "library/outputs/JsonLinesWriter.h"

#include "library/outputs/JsonText.h"
#include "library/outputs/ValueText.h"

namespace library {

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
      AppendJsonString(out, hostText.ToUtf8(StringAt(obs, column)));
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
