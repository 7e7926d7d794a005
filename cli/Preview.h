// `textwizard preview`: the first records of a file, as the import wizard sees them.
#pragma once

#include <string>

#include <CLI/App.hpp>

#include "cli/run/HostOptions.h"

namespace cli {

struct PreviewOptions {
  std::string dataFile;
  std::string encoding = "UTF-8";
  long long records = 20;
  HostOptions host;
};

// Registers the subcommand with the program. When it was called, *status becomes the exit status.
void AddPreview(CLI::App& program, int* status);

// Shows the records and returns the exit status (ExitStatus.h). Everything comes from the wizard's
// request handler, by its calls.
int Preview(const PreviewOptions& options);

}  // namespace cli
