#include "library/command/CommandWalk.h"

namespace library {

using textwizard::SubcommandResult;

CommandWalk::CommandWalk(const CommandWords& words)
    : words_(words),
      verbBytes_(words.text().find('/')),
      parser_(words.text().c_str() + verbBytes_, nullptr),
      start_(parser_.scanner().cursor()) {
  // TYPE, which the host itself has read and BuildCommandText put in front.
  parser_.ParseSubCommand(subcommand_);
}

std::size_t CommandWalk::Offset() const {
  return verbBytes_ + static_cast<std::size_t>(parser_.scanner().cursor() - start_);
}

SubcommandResult CommandWalk::Next() {
  begin_ = Offset();
  const SubcommandResult result = parser_.ParseSubCommand(subcommand_);
  if (result != textwizard::kSubcommand) return result;
  return parser_.SetSyntaxParam(subcommand_) ? result : textwizard::kSubcommandError;
}

CommandPlace CommandWalk::Place() const { return words_.PlaceOfSubcommand(begin_); }

}  // namespace library
