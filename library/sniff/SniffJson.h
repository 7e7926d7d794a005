// A sniff result as JSON.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "library/sniff/SniffResult.h"

namespace library {

// The object that `textwizard sniff --json` prints. `file`: the name as the user gave it (UTF-8).
nlohmann::ordered_json SniffJson(const std::string& file, const SniffResult& result);

// The words of the JSON for a value.
const char* NameOf(Arrangement arrangement);
const char* NameOf(LineEnd lineEnd);
const char* NameOf(Escape escape);
const char* NameOf(Verdict verdict);
const char* NameOf(DecimalCharacter decimal);

}  // namespace library
