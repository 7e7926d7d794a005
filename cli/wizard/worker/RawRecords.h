// The lines of a file as the component's wizard handler gives them.
#pragma once

#include <nlohmann/json.hpp>

namespace cli {

// Answers "raw": `records` of `path` in `encoding` from line `first` on, `count` of them, by the
// calls of the component's own request handler. Throws RequestRefused. Worker's thread; changes the
// host's code page.
nlohmann::json RawRecords(const nlohmann::json& body);

}  // namespace cli
