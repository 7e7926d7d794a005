// The option structs of the C interface as the library's own.
#pragma once

#include "library/capi/ImportSession.h"
#include "library/include/textwizard/textwizard.h"
#include "library/sniff/SniffSettings.h"

namespace library {

// Null stands for all defaults. Throw Failure for a value that is none.
SessionOptions SessionOptionsOf(const textwizard_options* options);
SniffSettings SniffSettingsOf(const textwizard_file_options* options);

}  // namespace library
