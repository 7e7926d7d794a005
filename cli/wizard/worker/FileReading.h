// How a file is built, as the page shows it.
#pragma once

#include <nlohmann/json.hpp>

namespace cli {

// Answers "sniff": `reading`, `settings`, `alternatives`. Throws RequestRefused with what is wrong
// with the file or with a setting. Worker's thread.
nlohmann::json FileReading(const nlohmann::json& body);

}  // namespace cli
