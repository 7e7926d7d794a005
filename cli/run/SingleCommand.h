// One command of a run: its import, its outputs, and what a person is shown of it.
#pragma once

#include <string_view>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "cli/run/MessageSink.h"
#include "cli/run/RunOptions.h"
#include "cli/terminal/Console.h"
#include "library/import/ImportStats.h"

namespace cli {

enum class CommandEnd {
  kDone,
  kFailed,        // an error message tells why; its outputs do not exist
  kOutputFailed,  // a file of the program's own could not be written; said on the console
  kInterrupted,   // by the user; its unfinished outputs do not exist
};

// What the commands of a run share.
struct RunContext {
  const RunOptions& options;
  std::string_view text;  // of the command file
  Console& console;
  MessageSink& messages;
};

// Runs `command`, number `number` (from 1) of its file: the messages, the dictionary, all cases.
// Adds its figures to *stats. Host's thread.
CommandEnd RunSingleCommand(const RunContext& context, int number,
                            const embedded::ParsedCommand& command, library::ImportStats* stats);

}  // namespace cli
