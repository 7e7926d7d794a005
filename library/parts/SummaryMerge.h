// Summaries of parts put together, and what a part takes from those before it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "library/parts/PartOptions.h"
#include "library/parts/SummaryFile.h"
#include "library/rewriting/RewritingOptions.h"

namespace library {

// Merges summaries, at least one, in whatever order they come. False when one does not go with the
// others; *wrong is then its place in `summaries`, and *problem a sentence (UTF-8).
bool MergeSummaries(std::vector<FilePartSummary> summaries, FilePartSummary* merged,
                    std::size_t* wrong, std::string* problem);

// What of a summary a part behind it needs: its lines, without what it says of values.
FilePartSummary LinesAlone(FilePartSummary summary);

// Lets `part` go on behind `before`, the summary of all that stands in front of it, which was
// counted with the rewriting that is added to *rewriting. False when it is of something else, or
// the file has changed; *problem is then a sentence (UTF-8).
bool PutBefore(const FilePartSummary& before, PartOptions::Single* part,
               RewritingOptions* rewriting, std::string* problem);

}  // namespace library
