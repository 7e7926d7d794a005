// The component's parser led through a command step by step, so that it can be told where a step
// began.
#pragma once

#include <cstddef>

#include "command/TxtWzParser.h"
#include "library/command/CommandWords.h"

namespace library {

// One walk. The words outlive it.
class CommandWalk {
 public:
  explicit CommandWalk(const CommandWords& words);

  // Takes the next subcommand. What it met: a subcommand that was accepted, one that was refused
  // (an error then stands in parser()), or the end of the subcommands.
  textwizard::SubcommandResult Next();
  // The subcommand that Next met. Its name is that of one before when it was refused unread.
  const textwizard::Subcommand& subcommand() const { return subcommand_; }
  // Offset in the words' text where it begins.
  std::size_t begin() const { return begin_; }
  // Place of the subcommand.
  CommandPlace Place() const;

  // Offset in the words' text that the parser has read to.
  std::size_t Offset() const;
  textwizard::TxtWzParser& parser() { return parser_; }

 private:
  const CommandWords& words_;
  std::size_t verbBytes_;
  textwizard::TxtWzParser parser_;
  const char* start_;
  textwizard::Subcommand subcommand_;
  std::size_t begin_ = 0;
};

}  // namespace library
