// What the program itself takes from the tokens of a command.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "HostFramework/embedded/command/CommandLanguage.h"

namespace cli {

// The share of cases (0 to 1) that a command keeps by IMPORTCASE PERCENT; nothing when it has none.
// The tokens are those of a command that the component accepted.
std::optional<double> SampleFraction(const std::vector<embedded::CommandToken>& tokens);

// The data file as the command names it (host text); empty when it names none.
std::string DataFile(const std::vector<embedded::CommandToken>& tokens);

}  // namespace cli
