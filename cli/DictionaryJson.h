// The dictionary of a data source as JSON.
#pragma once

#include "HostFramework/DataSource.h"
#include "cli/OutputFile.h"

namespace cli {

// Writes one line with its line end. `cases` is the number of cases read. Holds one variable at a
// time, however many there are.
void WriteDictionary(const QANT_DataSource& source, long long cases, OutputFile& file);

}  // namespace cli
