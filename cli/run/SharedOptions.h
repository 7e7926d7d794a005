// The options that `run` and `import` share.
#pragma once

#include <memory>

#include <CLI/CLI.hpp>

#include "cli/run/RunOptions.h"

namespace cli {

// Add options to `command`; parsing fills `options`.
// The files that are written.
void AddOutputOptions(CLI::App& command, const std::shared_ptr<RunOptions>& options);
// How many threads, what is shown, and what is told of the data.
void AddDisplayOptions(CLI::App& command, const std::shared_ptr<RunOptions>& options);

}  // namespace cli
