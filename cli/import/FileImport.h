// A bare file: understood, shown, imported.
#pragma once

#include "cli/import/ImportOptions.h"

namespace cli {

// Imports the file of the options and returns the exit status (ExitStatus.h). Once, on the main
// thread.
int ImportFile(const ImportOptions& options);

}  // namespace cli
