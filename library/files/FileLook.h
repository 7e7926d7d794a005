// A first look at each of several bare files: how it is built.
#pragma once

#include <string>

#include "library/files/DataSetPlan.h"
#include "library/input/InputFiles.h"

namespace library {

// Looks how the file, whose name is set, is built: its kind, state and sniffed settings; kLeftOut
// with what is wrong where it cannot be read or is no text. False after an interrupt.
bool LookAtFile(InputFiles& files, const SniffSettings& settings, DataSetFile* file);

// Looks again with other settings. False when they do not go with the file, which is then left as
// it was.
bool LookAgain(InputFiles& files, const SniffSettings& settings, DataSetFile* file);

// Whether lines of names stand above the columns.
inline bool HasHeader(const DataSetFile& file) { return file.import.sniff.headerLines.value > 0; }

// What stands above the columns.
std::vector<std::string> LabelsOf(const DataSetFile& file);

// Where many files are compressed, what was decompressed of one is let go once it was read.
void LetGo(InputFiles& files, const std::string& name, std::size_t fileCount);

}  // namespace library
