// The files that an import writes beside its cases: its messages, its command.
#pragma once

#include <memory>
#include <string>

#include "cli/terminal/Console.h"
#include "library/outputs/OutputFile.h"

namespace cli {

// Opens the file of a name that may have "%d" in it; an empty name opens none. What fails is said
// on the console. Returns the status to end with, kExitSuccess to go on.
int OpenSideOutput(const std::string& name, Console& console,
                   std::unique_ptr<library::OutputFile>* file);

// Gives the whole file its name. What fails is said on the console. Returns as above.
int PublishSideOutput(library::OutputFile& file, Console& console);

}  // namespace cli
