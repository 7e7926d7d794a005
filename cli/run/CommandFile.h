// The text of a command file.
#pragma once

#include <string>
#include <vector>

namespace cli {

// Reads the whole of `path` ("-": standard input). False when it cannot be read; then *error says
// why, naming the file. A signal that the user sent ends a wait for standard input.
bool ReadCommandFile(const std::string& path, std::string* text, std::string* error);

// The file as messages name it.
std::string CommandFileName(const std::string& path);

// What must be known of a command before any runs.
struct ListedCommand {
  bool canRun;           // it is a GET DATA command
  std::string dataFile;  // as the command names it (host text); empty when it names none
};

// The commands of a text, in their order.
std::vector<ListedCommand> CommandsOf(const std::string& text);

}  // namespace cli
