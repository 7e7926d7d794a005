// The commands of a file run as one data set.
#pragma once

#include "cli/run/RunOptions.h"

namespace cli {

// Runs `textwizard run --as-one` and returns the exit status (ExitStatus.h). Once, on the main
// thread.
int RunAsOne(const RunOptions& options);

}  // namespace cli
