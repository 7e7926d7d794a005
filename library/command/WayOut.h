// What would help where the component refuses a command: by the number of its message.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace library {

// For a message about a subcommand, of that name and value (as they were written; the value may be
// empty). Empty where the message says it all. Host text.
std::string SubcommandWayOut(std::uint32_t message, const std::string& name,
                             const std::string& value);

// For a message about a variable that is defined by `words` (separated by white space): its name
// and format, in fixed columns with record mark and column range.
std::string VariableWayOut(std::uint32_t message, std::string_view words, bool fixedColumns);

// The variable's name in such words; empty where there is none.
std::string VariableName(std::string_view words, bool fixedColumns);

}  // namespace library
