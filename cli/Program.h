// The program `textwizard`: its subcommands and its exit status.
#pragma once

namespace cli {

// Parses the arguments, runs the subcommand they name and returns the exit status.
int RunProgram(int argc, char** argv);

}  // namespace cli
