// Summaries of parts as the program reads and writes them.
#pragma once

#include <string>
#include <vector>

#include "library/parts/SummaryFile.h"

namespace cli {

// Merges the summaries of these files, in any order of theirs. False when one cannot be read, is
// none, or does not go with the others; *error names it.
bool ReadSummaries(const std::vector<std::string>& files, library::FilePartSummary* merged,
                   std::string* error);

// The same of several files: one merged summary each, in the order of the files' names.
bool ReadSummaries(const std::vector<std::string>& files,
                   std::vector<library::FilePartSummary>* merged, std::string* error);

// False when it cannot be written; *error says so.
bool WriteSummary(const library::FilePartSummary& summary, const std::string& file,
                  std::string* error);

}  // namespace cli
