// The variable map: the report of the variables of a finished pass, for the host's log.
#pragma once

#include <cstdint>
#include <string_view>

#include "HostFramework/Messages.h"

namespace textwizard {

class ImportSource;

// Writes the report of `source` line by line to `monitor`; nothing when that is null. Host's
// thread.
void EmitMapOutput(ErrorMonitor* monitor, const ImportSource& source);

// Name of a packed format (width in bits 0-15, type code in bits 16-23, decimals in bits 24-31);
// "badFormat" for a code without one.
std::string_view FormatName(std::uint32_t packedFormat);

}  // namespace textwizard
