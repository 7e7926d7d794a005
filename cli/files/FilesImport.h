// Several bare files of one structure: understood together, shown, imported as one data set.
#pragma once

#include <string>
#include <vector>

#include "cli/import/ImportOptions.h"

namespace cli {

// Imports the files `names` (host text) with the options, whose own file plays no part. `dataName`
// is what a person called them. Returns the exit status (ExitStatus.h). Once, on the main thread.
int ImportFiles(const ImportOptions& options, const std::vector<std::string>& names,
                const std::string& dataName);

}  // namespace cli
