// The dictionary of a data source as JSON.
#pragma once

#include <string>

#include "HostFramework/DataSource.h"
#include "library/outputs/OutputFile.h"

namespace library {

// Writes one line with its line end. `dataFile` is the file's name in the command (host text),
// which need not be the path that the source reads: standard input is copied. `cases` is the number
// of cases read. Holds one variable at a time, however many there are.
void WriteDictionary(const QANT_DataSource& source, const std::string& dataFile, long long cases,
                     OutputFile& file);

}  // namespace library
