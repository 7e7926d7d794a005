// `textwizard import`: a bare file, without a command.
#pragma once

#include <CLI/CLI.hpp>

namespace cli {

// Adds the subcommand; *status becomes the exit status where it runs.
void AddImport(CLI::App& program, int* status);

}  // namespace cli
