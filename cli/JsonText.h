// JSON strings, written without a document in memory.
#pragma once

#include <string_view>

#include "cli/OutputFile.h"

namespace cli {

// Appends `text` (valid UTF-8) as a JSON string, quotes included.
void AppendJsonString(OutputFile& file, std::string_view text);

}  // namespace cli
