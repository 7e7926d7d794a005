// What the program sets of the host.
#pragma once

#include <string>

#include "library/import/HostSettings.h"

namespace cli {

using HostOptions = library::HostSettings;

// Puts the host into the state that the options ask for, before anything else of it is used. False
// when one names nothing; then *error says which.
bool SetHost(const HostOptions& options, std::string* error);

}  // namespace cli
