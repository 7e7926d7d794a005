// The first cases of a file as an import reads them.
#pragma once

#include <nlohmann/json.hpp>

namespace cli {

// Answers "head": `cases`, the first `count` of them, each with `line` and `cells` (`text`, the
// field as it was cut; `value`, as outputs have it; `missing`; `from`, `to`: characters of the
// line); `columns` and `command` as far as the first lines tell. Takes the same time for every size
// of the file. Throws RequestRefused. Worker's thread; sets the host for the import.
nlohmann::json HeadCases(const nlohmann::json& body);

}  // namespace cli
