// The GET DATA command that says an import, as a person writes it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "library/types/TypeChoice.h"
#include "model/ImportSettings.h"

namespace library {

struct CommandVariable {
  // Host text; a name that the host accepts.
  std::string name;
  ChosenFormat format;
  // A field that is passed over, of that name, or of one that nobody has where it is empty.
  bool skipped = false;
  // Fixed columns: bytes of the record, from 0, both ends included.
  std::uint32_t from = 0;
  std::uint32_t to = 0;
};

struct CommandSettings {
  // Host text, as a person names the file.
  std::string file;
  // Of one of the arrangements with a line a case.
  textwizard::ImportSettings import;
  std::vector<CommandVariable> variables;
};

// Whether a command can name the file: quotes of both kinds it cannot.
bool CanNameFile(const std::string& file);

// The command (host text), one variable a line, with its full stop and a line end. Formats have
// their width.
std::string CommandText(const CommandSettings& settings);

// "F8.2", "A20".
std::string FormatText(const ChosenFormat& format);

// Makes names usable in a command that the host accepts anyway: a variable cannot be named like a
// subcommand that takes a quoted value. The names stay different whatever their letter case.
void AvoidKeywords(std::vector<std::string>* names);

}  // namespace library
