// One command of a run: its import, its outputs, and what a person is shown of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "cli/run/MessageSink.h"
#include "cli/run/RunOptions.h"
#include "cli/terminal/Console.h"
#include "library/import/ImportStats.h"
#include "library/input/InputFiles.h"
#include "library/rewriting/StandIns.h"

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
  // Of an import that found its command itself; null for a command that a person gave.
  struct Found {
    library::InputFiles& files;
    std::optional<library::StandIns> standIns;
    // What there is to say about its columns, a line each.
    std::vector<std::string> remarks;
    // Why its types were chosen (lines, UTF-8); empty where nobody asked.
    std::string explanation;
  };
  const Found* found = nullptr;
};

// Runs `command`, number `number` (from 1) of its file: the messages, the dictionary, all cases.
// Adds its figures to *stats. Host's thread.
CommandEnd RunSingleCommand(const RunContext& context, int number,
                            const embedded::ParsedCommand& command, library::ImportStats* stats);

}  // namespace cli
