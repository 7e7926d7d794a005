// The writer of each format of cases.
#pragma once

#include <memory>
#include <vector>

#include "library/outputs/CaseWriter.h"
#include "library/outputs/OutputFile.h"

namespace library {

enum class CaseFormat { kCsv, kTsv, kJsonLines };

// `file` outlives the writer.
std::unique_ptr<CaseWriter> MakeCaseWriter(CaseFormat format, std::vector<CaseColumn> columns,
                                           OutputFile& file);

}  // namespace library
