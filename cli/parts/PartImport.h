// The steps of an import that several take together, each with a part of the file.
#pragma once

#include <string>
#include <vector>

#include "cli/import/ImportOptions.h"
#include "cli/parts/PartTexts.h"

namespace cli {

struct PartStep {
  // Of `import`: sums up this part of the file (count 0: does not), to the file `summary`.
  PartNumber summarized;
  std::string summary;
  // Of `merge`: the summaries, and where the merged one goes; empty: nowhere.
  std::vector<std::string> summaries;
  std::string merged;
};

// Each returns the exit status (ExitStatus.h). Once, on the main thread.
int SummarizePart(const ImportOptions& options, const PartStep& step);
// Runs a command of which one part alone is read.
int RunPart(RunOptions options);
int MergeSummaries(const ImportOptions& options, const PartStep& step);

}  // namespace cli
