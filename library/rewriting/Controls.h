// Control characters in text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "HostFramework/embedded/data/StreamDevice.h"
#include "library/rewriting/QuoteRules.h"
#include "library/rewriting/StandIns.h"

namespace library {

// Whether there is a control character below 20 besides TAB, LF and CR.
bool HoldsControl(std::string_view text);
// Adds how many there are of each, TAB, LF and CR included or not.
void CountControls(std::string_view text, std::array<std::int64_t, 32>* counts);

// Those of a file of these units. False when it cannot be read.
bool FindControls(embedded::StreamDevice& file, FileUnits units, ControlSet* held);

}  // namespace library
