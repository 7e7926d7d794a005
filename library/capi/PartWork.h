// The steps of an import that several take together, behind the C interface.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "library/capi/ImportSession.h"
#include "library/import/BareImport.h"
#include "library/parts/SummaryFile.h"

namespace library {

// Each throws Failure. The bytes of a summary file of part `number` (from 1) of `count` of a file
// (bytes of the file system); threads, null texts and progress are those of `options`.
std::string SummarizedPart(const std::string& path, std::int64_t number, std::int64_t count,
                           BareImportSettings settings, const SessionOptions& options);

FilePartSummary SummaryFrom(std::string_view bytes);

// Of one summary at least, in any order. `linesOnly`: what a part behind them needs.
std::string MergedSummary(std::vector<FilePartSummary> summaries, bool linesOnly);

// JSON: the file and what of it is summed up.
std::string SummaryText(const FilePartSummary& summary);

}  // namespace library
