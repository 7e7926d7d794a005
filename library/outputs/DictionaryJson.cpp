#include "library/outputs/DictionaryJson.h"

#include <nlohmann/json.hpp>

#include "library/outputs/FormatName.h"
#include "library/outputs/JsonText.h"
#include "library/outputs/Utf8Converter.h"

namespace library {

void WriteDictionary(const QANT_DataSource& source, const std::string& dataFile, long long cases,
                     OutputFile& file, const DictionaryReport* report) {
  Utf8Converter utf8;
  file.Append("{\"file\":");
  AppendJsonString(file, utf8.ToUtf8(dataFile));
  file.Append(",\"cases\":" + std::to_string(cases) + ",\"variables\":[");
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
    if (index > 0) file.Append(',');
    std::string text = entry.dump();
    if (const std::string evidence = report == nullptr ? "" : report->evidence(index);
        !evidence.empty()) {
      text.pop_back();
      text += ",\"evidence\":" + evidence + "}";
    }
    file.Append(text);
  }
  file.Append("]");
  if (report != nullptr) file.Append(",\"ledger\":" + report->ledger);
  file.Append("}\n");
}

}  // namespace library
