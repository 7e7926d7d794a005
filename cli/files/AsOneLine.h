// The commands of a data set, and the line that runs them as one.
#pragma once

#include <string>
#include <vector>

#include "library/files/DataSetPlan.h"

namespace cli {

// The commands of the files that are read, one behind the other.
std::string CommandsText(const library::DataSetPlan& plan);

// "textwizard run COMMAND-FILE --as-one ...", with what the host and the files need; `sourceColumn`
// is empty for none, `nulls` are the texts that mean a missing value.
std::string AsOneLine(const library::DataSetPlan& plan, const std::string& sourceColumn,
                      const std::vector<std::string>& nulls, const std::string& commandFile);

}  // namespace cli
