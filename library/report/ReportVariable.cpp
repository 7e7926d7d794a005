#include "library/report/ReportVariable.h"

#include <limits>

#include "library/report/ReportText.h"
#include "model/FormatTable.h"

namespace library {

ReportVariables ReportVariablesOf(const QANT_DataSource& source) {
  ReportText text;
  ReportVariables variables;
  variables.reserve(source.GetNVariables());
  for (std::size_t index = 0; index < source.GetNVariables(); ++index) {
    const QANT_Variable& variable = *source.GetVariable(index);
    const QANT_Format& format = variable.GetFormat();
    std::string name(textwizard::FormatNameOf(static_cast<std::uint32_t>(format.type)));
    name += std::to_string(format.width);
    if (format.decimals != 0) name += "." + std::to_string(format.decimals);
    variables.push_back(
        {std::string(text.Escaped(variable.GetName(), std::numeric_limits<std::uint16_t>::max())),
         std::move(name), format.type, variable.GetType()});
  }
  return variables;
}

}  // namespace library
