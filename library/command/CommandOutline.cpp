#include "library/command/CommandOutline.h"

#include <algorithm>

#include "HostFramework/Text.h"
#include "library/command/CommandWalk.h"

namespace library {

using textwizard::SubcommandResult;

const OutlinedSubcommand* CommandOutline::Find(std::string_view name) const {
  const std::string wanted(name);
  const auto found = std::find_if(
      subcommands.begin(), subcommands.end(), [&wanted](const OutlinedSubcommand& subcommand) {
        return QANTMBstricmp_A(subcommand.name.c_str(), wanted.c_str()) == 0;
      });
  return found == subcommands.end() ? nullptr : &*found;
}

std::string CommandOutline::DataFile() const {
  const OutlinedSubcommand* file = Find("FILE");
  return file != nullptr && file->accepted ? file->value : std::string();
}

CommandOutline OutlineOf(const std::vector<embedded::CommandToken>& tokens,
                         std::string_view source) {
  const CommandWords words(tokens, source);
  CommandWalk walk(words);
  CommandOutline outline;
  SubcommandResult result = textwizard::kSubcommand;
  while (result == textwizard::kSubcommand) {
    result = walk.Next();
    if (result == textwizard::kSubcommandsEnd) break;
    outline.subcommands.push_back({walk.subcommand().name, walk.subcommand().value,
                                   result == textwizard::kSubcommand, walk.Place()});
  }
  return outline;
}

}  // namespace library
