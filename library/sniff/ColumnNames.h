// Names of variables from the texts above the columns.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace library {

// Names that the host accepts, all different whatever their letter case, one for each label: the
// label where it is such a name; else with "_" for what no name may hold, with "V" before what no
// name may begin with, cut to what a name may be long, with "_2", "_3" ... where it was there
// before. An empty label becomes "V" and the column's number. Texts are UTF-8, and the host works
// in UTF-8 mode.
std::vector<std::string> NamesOf(const std::vector<std::string>& labels);

}  // namespace library
