// The command line that repeats an import.
#pragma once

#include <string>
#include <vector>

#include "library/import/BareImport.h"

namespace library {

// The options of `textwizard run` that go with the command of `import`, which was understood with
// the null texts `nulls`: every setting that the command language has no words for. Only what
// differs from the defaults of `run`. UTF-8.
std::vector<std::string> RunOptionsFor(const BareImport& import,
                                       const std::vector<std::string>& nulls);

// "textwizard run" with these options and command file, quoted for a shell where that is needed.
std::string RunLine(const std::vector<std::string>& options, const std::string& commandFile);

}  // namespace library
