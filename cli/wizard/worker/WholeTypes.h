// The columns of a file from all of its values.
#pragma once

#include <functional>

#include <nlohmann/json.hpp>

namespace cli {

// Answers "types": `bytes`, `all_bytes`, `cases`, `columns`, `command`, `options` (of `textwizard
// run`, that go with the command). `progress` gets the same now and then, without a command, of
// what was read so far. Throws RequestRefused, also after an interrupt. Worker's thread; sets the
// host for the import.
nlohmann::json WholeTypes(const nlohmann::json& body,
                          const std::function<void(const nlohmann::json&)>& progress);

}  // namespace cli
