#include "library/outputs/JsonLinesWriter.h"

#include "library/outputs/JsonText.h"
#include "library/outputs/ValueText.h"

namespace library {

JsonLinesWriter::JsonLinesWriter(std::vector<CaseColumn> columns, OutputFile& file)
    : columns_(std::move(columns)), file_(file) {}

void JsonLinesWriter::WriteCase(const OBS* obs) {
  char separator = '{';
  for (const CaseColumn& column : columns_) {
    file_.Append(separator);
    separator = ',';
    AppendJsonString(file_, column.name);
    file_.Append(':');
    if (column.kind == ValueKind::kString) {
      AppendJsonString(file_, hostText_.ToUtf8(StringAt(obs, column)));
      continue;
    }
    const double value = NumberAt(obs, column);
    if (IsMissing(value)) {
      file_.Append("null");
      continue;
    }
    const bool isText = column.kind != ValueKind::kNumber;
    if (isText) file_.Append('"');
    file_.Advance(WriteValue(file_.Reserve(kValueTextRoom), value, column.kind));
    if (isText) file_.Append('"');
  }
  if (columns_.empty()) file_.Append('{');
  file_.Append("}\n");
}

}  // namespace library
