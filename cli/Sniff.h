// `textwizard sniff`: how a bare file is built.
#pragma once

#include <CLI/App.hpp>

namespace cli {

// Registers the subcommand with the program. When it was called, *status becomes the exit status.
void AddSniff(CLI::App& program, int* status);

}  // namespace cli
