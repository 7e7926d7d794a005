// `textwizard run`: the GET DATA commands of a file, one after another.
#pragma once

#include <CLI/App.hpp>

namespace cli {

// Registers the subcommand with the program. When it was called, *status becomes the exit status.
void AddRun(CLI::App& program, int* status);

}  // namespace cli
