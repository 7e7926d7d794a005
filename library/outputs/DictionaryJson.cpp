#include "library/outputs/DictionaryJson.h"

#include <nlohmann/json.hpp>

#include "library/outputs/FormatName.h"
#include "library/outputs/JsonText.h"
#include "library/outputs/TextBlock.h"
#include "library/outputs/Utf8Converter.h"

namespace library {

void WriteDictionary(const QANT_DataSource& source, const std::string& dataFile, long long cases,
                     ByteSink& sink, const DictionaryReport* report) {
  Utf8Converter utf8;
  TextBlock head;
  head.Append("{\"file\":");
  AppendJsonString(head, utf8.ToUtf8(dataFile));
  sink.Append(head.view());
  sink.Append(",\"cases\":" + std::to_string(cases) + ",\"variables\":[");
  for (std::size_t index = 0; index < source.GetNVariables(); ++index) {
    const QANT_Variable& variable = *source.GetVariable(index);
    const QANT_Format& format = variable.GetFormat();
    const nlohmann::ordered_json entry{
        {"name", utf8.ToUtf8(variable.GetName())},
        {"type", variable.GetType() == 0 ? "numeric" : "string"},
        {"format", library::FormatName(format)},
        {"format_code", format.type},
        {"width", format.width},
        {"decimals", format.decimals},
        {"write_format", library::FormatName(variable.GetWriteFormat())},
        {"bytes", variable.GetType()},
        {"display_width", variable.GetDisplayWidth()}};
    std::string text = (index > 0 ? "," : "") + entry.dump();
    if (const std::string evidence = report == nullptr ? "" : report->evidence(index);
        !evidence.empty()) {
      text.pop_back();
      text += ",\"evidence\":" + evidence + "}";
    }
    sink.Append(text);
  }
  sink.Append("]");
  if (report != nullptr && !report->ledger.empty()) sink.Append(",\"ledger\":" + report->ledger);
  if (report != nullptr && !report->files.empty()) sink.Append(",\"files\":" + report->files);
  if (report != nullptr && !report->drift.empty()) sink.Append(",\"drift\":" + report->drift);
  sink.Append("}\n");
}

}  // namespace library
