// A bare file summed up by several who each read a part of it.
#pragma once

#include <cstdint>
#include <string>

#include "library/import/BareImport.h"
#include "library/input/InputFiles.h"
#include "library/parts/SummaryFile.h"

namespace library {

// Sums up part `number` (from 1) of `count` of the file `name` (host text). Everybody who is given
// the same settings looks at the same bytes to see how the file is cut. As UnderstandFile in all
// else.
bool SummarizeFilePart(const std::string& name, std::int64_t number, std::int64_t count,
                       InputFiles& files, const BareImportSettings& settings,
                       FilePartSummary* summary, std::string* problem);

// The same of the bytes `part` of the file, decompressed; what is behind its end is none of it.
bool SummarizeFilePart(const std::string& name, const PartRange& part, InputFiles& files,
                       const BareImportSettings& settings, FilePartSummary* summary,
                       std::string* problem);

// Understands the file from the merged summaries of all its parts, as if it had read it itself.
// `settings` are those of the summaries. False also when the file has changed since.
bool UnderstandParts(const FilePartSummary& summary, InputFiles& files,
                     const BareImportSettings& settings, BareImport* import, std::string* problem);

// Whether the lines of parts were cut as they are where the file is shown with such rewriting.
// False, with a sentence (UTF-8), where line ends were taken for those of values in vain: then what
// stands before a part cannot be told from the summaries.
bool HoldsFor(const FilePartSummary& summary, const RewritingOptions& rewriting,
              std::string* problem);

// What the summary of all parts of a file says of its data, which is shown with such rewriting.
// False where it was made of the file as somebody else has it cut or shown: then nobody has read
// the data yet.
bool ValuesOfSummary(const FilePartSummary& summary, const FileSummarySettings& data,
                     const RewritingOptions& rewriting, PartSummary* values);

}  // namespace library
