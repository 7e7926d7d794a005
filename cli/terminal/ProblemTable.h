// The problems of an import as a person at a terminal sees them.
#pragma once

#include <cstddef>
#include <string>

#include "library/report/ProblemLog.h"
#include "library/report/ReportVariable.h"

namespace cli {

// "0 problems", or how many there are and a table of them, no wider than the terminal: variable,
// kind, count, first line, first text. Many rows are cut, and the text says so.
std::string ProblemTable(const library::ProblemLog& problems,
                         const library::ReportVariables& variables, std::size_t terminalWidth);

}  // namespace cli
