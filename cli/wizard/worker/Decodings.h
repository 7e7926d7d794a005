// The same lines of a file in several encodings.
#pragma once

#include <nlohmann/json.hpp>

namespace cli {

// Answers "encodings": for each of `encodings` the first lines of `path` that some of them decode
// otherwise than the first of them; the first lines where none does. Throws RequestRefused.
nlohmann::json Decodings(const nlohmann::json& body);

}  // namespace cli
