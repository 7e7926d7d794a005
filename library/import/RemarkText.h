// What there is to say about the columns of a bare file, in sentences.
#pragma once

#include <string>
#include <vector>

#include "library/import/BareImport.h"

namespace library {

// A sentence (UTF-8, without its full stop) for each thing that a person should know about a
// column, beginning with the column's name: values that its format cannot read, what kept it from
// being a number, whether days or months come first and why. In the order of the columns.
std::vector<std::string> RemarksOf(const BareImport& import);

}  // namespace library
