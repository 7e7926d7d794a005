// What there is to say about the columns of a bare file, in sentences.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "library/import/BareImport.h"

namespace library {

// A sentence (UTF-8, without its full stop) for each thing that a person should know about a
// column, beginning with the column's name: values that its format cannot read, what kept it from
// being a number, whether days or months come first and why. In the order of the columns.
std::vector<std::string> RemarksOf(const BareImport& import);
// The same of columns and what is known of their values; `placeOf` says where a line is: "line 7".
std::vector<std::string> RemarksOf(const std::vector<BareColumn>& columns,
                                   const std::vector<ColumnEvidence>& evidence,
                                   const std::function<std::string(std::int64_t)>& placeOf);

}  // namespace library
