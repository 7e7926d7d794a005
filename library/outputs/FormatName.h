// The display formats as the program names them, and what it does with the values of each.
#pragma once

#include <string>

#include "HostFramework/DataSource.h"
#include "HostFramework/Formats.h"

namespace library {

using ::ValueKind;

// The format as a command writes it, such as "F8.2", "A20" or "DATE11". A code that has no name is
// named "badFormat".
std::string FormatName(const QANT_Format& format);

// What the values of a variable are.
ValueKind KindOf(const QANT_Variable& variable);

}  // namespace library
