// Why a command failed: where in its text, which variable, and what would help.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "library/command/CommandWords.h"

namespace library {

// What the component's error message leaves open. Texts are host text.
struct CommandFault {
  // The number of the message (MessageId).
  std::uint32_t message = 0;
  // What stands wrong, or where what is missing belongs.
  CommandPlace place;
  // The name of the variable that it is about; empty when it is about none.
  std::string variable;
  // Completes the message where its text ends with nothing behind it; else empty.
  std::string completion;
  // A sentence without a full stop; empty where the message says it all.
  std::string wayOut;
};

// What is wrong with a command that the component refused. `tokens` are those behind GET DATA
// /TYPE=TXT /, read from `source`; `command` is where the command begins. A command without a fault
// of its own has failed for its data file: the message is 2269 then, and `fileWayOut` the way out.
// Takes the time of some parsings, and no file in hand. Host's thread.
CommandFault FindFault(const std::vector<embedded::CommandToken>& tokens, std::string_view source,
                       const CommandPlace& command, const std::string& fileWayOut);

}  // namespace library
