// `textwizard merge`, and the options by which several take part in an import.
#pragma once

#include <memory>

#include <CLI/CLI.hpp>

#include "cli/import/ImportOptions.h"
#include "cli/parts/PartImport.h"
#include "cli/run/RunOptions.h"

namespace cli {

// Adds the options of reading one part alone (--part, --before) to `command`; parsing fills
// `options`.
void AddPartOptions(CLI::App& command, const std::shared_ptr<RunOptions>& options);

// Adds the options of reading part after part and of summing one part up; parsing fills `options`
// and `step`.
void AddSummaryOptions(CLI::App& command, const std::shared_ptr<RunOptions>& options,
                       const std::shared_ptr<PartStep>& step);

// Adds the subcommand; *status becomes the exit status where it runs.
void AddMerge(CLI::App& program, int* status);

}  // namespace cli
