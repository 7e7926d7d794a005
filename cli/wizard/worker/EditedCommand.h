// What an edited command says, as settings of the page.
#pragma once

#include <nlohmann/json.hpp>

namespace cli {

// Answers "command": `path` as the command names its file, `given`, `command`. Throws
// RequestRefused with the component's message, its number and its place in the text where the
// command is wrong, and for what the page has no setting for. Worker's thread.
nlohmann::json EditedCommand(const nlohmann::json& body);

}  // namespace cli
