// One command from its tokens to its cases.
#pragma once

#include <string_view>
#include <vector>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "cli/Console.h"
#include "cli/MessageSink.h"
#include "cli/RunOptions.h"
#include "cli/RunStats.h"

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

// Runs command `number` (from 1): the messages, the dictionary, all cases. Adds its figures to
// *stats. Host's thread.
CommandEnd RunCommand(const RunContext& context, int number,
                      std::vector<embedded::CommandToken> tokens, RunStats* stats);

}  // namespace cli
