// The exported entry through which a host runs GET DATA with TYPE = TXT.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "HostFramework/DACAdapter.h"

// Runs the command whose tokens the adapter's token source holds, from the first one after the TYPE
// subcommand and the slash that follows it. True when the data source was built and added to the
// host's ServerDataManager as the active one; then the warnings have been reported. False after one
// error has been reported; nothing is added then. Nothing is thrown. The adapter outlives the data
// source. Host's thread.
extern "C" __attribute__((visibility("default"))) bool ProcessDACSyntax(DACAdapterBase* adapter);

namespace textwizard {

// The normalised text of a command whose remaining tokens `tokens` gives: what the parser reads.
// *starts, when given, becomes the offset in it where each token begins.
std::string BuildCommandText(DACTokenSource& tokens, std::vector<std::size_t>* starts = nullptr);

}  // namespace textwizard
