// The commands of a file, one after another.
#pragma once

#include "cli/run/RunOptions.h"

namespace cli {

// Runs the commands and returns the exit status (ExitStatus.h). Once, on the main thread.
int RunCommandFile(const RunOptions& options);

}  // namespace cli
