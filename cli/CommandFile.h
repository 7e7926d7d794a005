// The text of a command file.
#pragma once

#include <string>

namespace cli {

// Reads the whole of `path` ("-": standard input). False when it
// cannot be read; then *error says why, naming the file. A signal that the user sent ends a wait
// for standard input.
bool ReadCommandFile(const std::string& path, std::string* text, std::string* error);

// The file as messages name it.
std::string CommandFileName(const std::string& path);

// True when the text holds more than one command that can be run.
bool HoldsSeveralCommands(const std::string& text);

}  // namespace cli
