// The dictionary of a data source as JSON.
#pragma once

#include <string>

#include "HostFramework/DataSource.h"

namespace cli {

// One line with its line end. `cases` is the number of cases read.
std::string DictionaryJson(const QANT_DataSource& source, long long cases);

}  // namespace cli
