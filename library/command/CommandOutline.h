// The subcommands of a command, as the component's own parser cuts and takes them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "library/command/CommandWords.h"

namespace library {

// Texts are host text.
struct OutlinedSubcommand {
  std::string name;   // as it was written
  std::string value;  // without its quotes
  bool accepted;      // by the parser
  CommandPlace place;
};

struct CommandOutline {
  // Up to VARIABLES, which is not among them, or to the first that the parser refuses, which is.
  std::vector<OutlinedSubcommand> subcommands;

  // The first subcommand of that name, in any letter case; null when there is none.
  const OutlinedSubcommand* Find(std::string_view name) const;
  // The data file as the command names it; empty when it names none that the parser accepts.
  std::string DataFile() const;
};

// `tokens` are those behind GET DATA /TYPE=TXT /, read from `source`. Takes no file in hand.
CommandOutline OutlineOf(const std::vector<embedded::CommandToken>& tokens,
                         std::string_view source);

}  // namespace library
