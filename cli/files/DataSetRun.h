// The reading of several files as one data set: their cases, the outputs, and what a person is
// shown of it.
#pragma once

#include <string>
#include <vector>

#include "cli/run/CommandReport.h"
#include "cli/run/SingleCommand.h"
#include "library/files/DataSetImport.h"
#include "library/import/ImportStats.h"

namespace cli {

struct DataSetRun {
  // `asOne` is set; outputs, display and problems.
  const RunOptions& options;
  Console& console;
  MessageSink& messages;
  library::InputFiles& files;
  std::vector<library::DataSetCommand> commands;
  // As the dictionary names the data.
  std::string dataName;
  std::vector<LeftOutFile> leftOut = {};
  // What there is to say about the columns and about how the files differ, a line each; JSON of the
  // latter for the dictionary. The table is laid out as an import's where it is `typed`.
  std::vector<std::string> remarks = {};
  std::string drift = {};
  bool typed = false;
};

// Reads all of it once. Adds its figures to *stats. Host's thread.
CommandEnd RunDataSet(DataSetRun run, library::ImportStats* stats);

}  // namespace cli
