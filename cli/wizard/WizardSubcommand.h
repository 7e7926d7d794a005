// `textwizard wizard`: the import wizard as a page on this machine.
#pragma once

#include <CLI/App.hpp>

namespace cli {

// Registers the subcommand with the program. When it was called, *status becomes the exit status.
void AddWizard(CLI::App& program, int* status);

}  // namespace cli
