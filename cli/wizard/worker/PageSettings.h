// What the page says that the user has given, as the library takes it.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "library/import/BareImport.h"

namespace cli {

// `given` of a request. Throws RequestRefused where a member is not one that can be used.
library::BareImportSettings PageSettings(const nlohmann::json& given);

// "1-8,9-20,21-": the last may go on to the end of the line. Throws RequestRefused.
std::vector<library::CharacterRange> RangesOf(const std::string& text);
std::string TextOf(const std::vector<library::CharacterRange>& ranges);

}  // namespace cli
