// `textwizard import`: a bare file, without a command.
#pragma once

#include <memory>

#include <CLI/CLI.hpp>

#include "cli/import/ImportOptions.h"

namespace cli {

// Adds the subcommand; *status becomes the exit status where it runs.
void AddImport(CLI::App& program, int* status);

// Adds the options that say how a bare file is built and what its columns are; parsing fills
// `options`.
void AddBareFileOptions(CLI::App& command, const std::shared_ptr<ImportOptions>& options);

// Adds the options of several files that are one data set; parsing fills `options`.
void AddFilesOptions(CLI::App& command, const std::shared_ptr<ImportOptions>& options);

}  // namespace cli
