// The side of the wizard that looks at files: a process that answers one request and ends.
#pragma once

#include <CLI/App.hpp>

namespace cli {

// The subcommand that the wizard's server starts its processes with; not for people. It reads a
// JSON object from standard input, `request` and `body`, and writes events to standard output, a
// JSON object a line with `name` ("progress", "done", "failed", "cancelled") and `data`. `path` in
// a body is the path of a file; all other members are as the page sends them.
inline constexpr char kWorkerSubcommand[] = "wizard-worker";

// Registers it with the program. When it was called, *status becomes the exit status.
void AddWizardWorker(CLI::App& program, int* status);

}  // namespace cli
