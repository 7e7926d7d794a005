#include "reading/FixedFields.h"

#include "model/FormatCode.h"

namespace textwizard {

bool CutFixedField(std::string_view record, const TxtWzVar& variable, std::string_view& field) {
  return FixedColumn(variable).Cut(record, field);
}

FixedColumn::FixedColumn(const TxtWzVar& variable)
    : start(variable.startColumn),
      length(variable.formatType == kFormatA ? variable.maxStringLength : variable.width) {}

}  // namespace textwizard
