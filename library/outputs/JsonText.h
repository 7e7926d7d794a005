// JSON strings, written without a document in memory.
#pragma once

#include <string_view>

#include "library/outputs/OutputFile.h"

namespace library {

// Appends `text` (valid UTF-8) as a JSON string, quotes included.
void AppendJsonString(OutputFile& file, std::string_view text);

}  // namespace library
