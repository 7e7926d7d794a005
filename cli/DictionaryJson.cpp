#include "cli/DictionaryJson.h"

#include <nlohmann/json.hpp>

#include "cli/FormatName.h"
#include "cli/Utf8Converter.h"

namespace cli {

std::string DictionaryJson(const QANT_DataSource& source, long long cases) {
  using Json = nlohmann::ordered_json;
  Utf8Converter hostText;
  Json variables = Json::array();
  for (std::size_t index = 0; index < source.GetNVariables(); ++index) {
    const QANT_Variable& variable = *source.GetVariable(index);
    const QANT_Format& format = variable.GetFormat();
    variables.push_back(Json{{"name", hostText.ToUtf8(variable.GetName())},
                             {"type", variable.GetType() == 0 ? "numeric" : "string"},
                             {"format", FormatName(format)},
                             {"format_code", format.type},
                             {"width", format.width},
                             {"decimals", format.decimals},
                             {"write_format", FormatName(variable.GetWriteFormat())},
                             {"bytes", variable.GetType()},
                             {"display_width", variable.GetDisplayWidth()}});
  }
  const Json dictionary{{"file", hostText.ToUtf8(source.GetFileSpec())},
                        {"cases", cases},
                        {"variables", std::move(variables)}};
  return dictionary.dump() + "\n";
}

}  // namespace cli
