// The line that runs the commands of a data set as one.
#pragma once

#include <string>
#include <vector>

#include "library/files/DataSetPlan.h"

namespace cli {

// "textwizard run COMMAND-FILE --as-one ...", with what the host and the files need; `sourceColumn`
// is empty for none, `nulls` are the texts that mean a missing value.
std::string AsOneLine(const library::DataSetPlan& plan, const std::string& sourceColumn,
                      const std::vector<std::string>& nulls, const std::string& commandFile);

}  // namespace cli
