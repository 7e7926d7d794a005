// Where the words of a command stand in the text that it came from.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/embedded/command/CommandLanguage.h"

namespace library {

// A part of a command, as a person finds it again.
struct CommandPlace {
  // From 1, as CommandToken counts; 0 when the part is not in the text.
  int line = 0;
  int column = 0;
  // The part as it was written (host text), line ends included.
  std::string words;
};

// The text that the component's parser reads of a command, and the way back from it to the source.
// The tokens and the source outlive it. One thread.
class CommandWords {
 public:
  // `tokens` are those behind GET DATA /TYPE=TXT /, read from `source`.
  CommandWords(const std::vector<embedded::CommandToken>& tokens, std::string_view source);

  // What the parser reads.
  const std::string& text() const { return text_; }
  // Offset in text() behind the last word: the end of the command follows.
  std::size_t end() const { return text_.rfind('\n'); }
  // The place of what begins in text() at `begin` or behind it and before `end`. Nothing there is
  // the place of the last word before.
  CommandPlace PlaceOf(std::size_t begin, std::size_t end) const;
  // The place of the subcommand that begins in text() at `begin`, from its name to the slash of the
  // next one.
  CommandPlace PlaceOfSubcommand(std::size_t begin) const;

 private:
  // Index of the first token that begins in text() at `offset` or behind it.
  std::size_t FirstFrom(std::size_t offset) const;
  bool IsSlash(std::size_t token) const;
  // Of the tokens [first, last); of the one before when there are none.
  CommandPlace PlaceOfTokens(std::size_t first, std::size_t last) const;

  const std::vector<embedded::CommandToken>& tokens_;
  std::string_view source_;
  std::string text_;
  std::vector<std::size_t> starts_;  // of each token in text_
};

}  // namespace library
