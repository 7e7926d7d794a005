// Why the types of a bare file were chosen, for a person.
#pragma once

#include <string>

#include "library/import/BareImport.h"

namespace library {

// Some lines for each column, UTF-8, each with its line end: its format and how many values that
// reads, nulls and empty ones, the longest value; then every other format that reads some value,
// with how many, and the first value that it does not read. The host is set for the import.
std::string ExplanationOf(const BareImport& import);

}  // namespace library
