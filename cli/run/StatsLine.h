// The figures of a run as --stats prints them.
#pragma once

#include <string>

#include "library/import/ImportStats.h"

namespace cli {

// One line of JSON without a line end; adds the peak memory of the process.
std::string StatsLine(const library::ImportStats& stats);

}  // namespace cli
