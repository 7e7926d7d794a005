// The command language of the host: a command file cut into commands, and commands into tokens.
//
// White space separates tokens, and so does text between "/*" and "*/". "/", "=", "(" and ")" are
// tokens of one character. A literal runs from an apostrophe or a quotation mark to the next one of
// the same kind; doubled inside, it stands for one. Anything else is a word, up to white space, one
// of the four signs or a quote. A full stop that is the last non-blank character of a line, or of
// the text, ends the command.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DACAdapter.h"

namespace embedded {

enum CommandTokenKind : int {
  kTokenWord = 1,
  kTokenSign = 2,
  kTokenLiteral = kDACTokenLiteral,
};

// Lines and columns count from 1; a column is a character of the host's UTF-8 text, or a byte in
// any other code page.
struct CommandToken {
  int kind = kTokenWord;
  std::string text;  // of a literal: its content
  int line = 0;
  int column = 0;
  // The bytes of the reader's text that it was read from, a literal's quotes included.
  std::size_t begin = 0;
  std::size_t end = 0;
};

struct ParsedCommand {
  bool ok = false;
  // What is wrong, beginning "line L, column C: "; empty when ok.
  std::string error;
  // Where the error is, or where the command begins.
  int line = 0;
  int column = 0;
  // The tokens behind GET DATA /TYPE=TXT /; none when not ok.
  std::vector<CommandToken> tokens;
};

// Reads the commands of a text one by one. Only GET DATA /TYPE=TXT / is a command; anything else,
// and a literal or a comment that is never closed, is an error, behind which reading goes on with
// the next command: the full stop that ends the faulty one is found by the same rules, with the
// quote of a literal that is never closed taken as white space. One thread; takes time and memory
// in proportion to the text.
class CommandReader {
 public:
  // `text` (host text, with or without a UTF-8 byte-order mark) outlives the reader.
  explicit CommandReader(std::string_view text);

  // Reads the next command into `command`, whose memory is reused; false when there is none.
  bool Next(ParsedCommand& command);

 private:
  enum class Item { kToken, kCommandEnd, kTextEnd, kOpenLiteral, kOpenComment };
  struct Place {
    int line;
    int column;
  };

  // Reads one token into token_, or finds what stands there instead. place_ is where that begins.
  Item Read();
  // Skips white space and comments; false at a comment that is never closed.
  bool SkipBlanks();
  bool LineEndsAt(std::size_t position) const;
  void ReadWord();
  bool ReadLiteral();
  void MoveTo(std::size_t position);
  // Notes which bytes of the text token_ was read from; they end at the position.
  void EndToken(std::size_t begin);
  // Reads on to the end of a command that is in error.
  void Recover();
  void Fail(ParsedCommand& command, Place place, const std::string& problem);

  std::string_view text_;  // without the mark
  std::size_t markBytes_;
  bool utf8_;
  std::size_t position_ = 0;
  Place here_{1, 1};  // of position_
  Place place_{1, 1};
  CommandToken token_;
};

}  // namespace embedded
