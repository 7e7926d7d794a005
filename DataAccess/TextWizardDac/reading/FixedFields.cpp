#include "reading/FixedFields.h"

#include "model/FormatCode.h"

namespace textwizard {

bool CutFixedField(std::string_view record, const TxtWzVar& variable, std::string_view& field) {
  field = {};
  if (record.size() < variable.startColumn) return false;
  const std::uint32_t width =
      variable.formatType == kFormatA ? variable.maxStringLength : variable.width;
  field = record.substr(variable.startColumn, width);
  return true;
}

}  // namespace textwizard
