#include "cli/run/CommandFile.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "library/command/CommandOutline.h"

namespace cli {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;

bool ReadAll(int descriptor, std::string* text) {
  std::array<char, kBlock> block;
  for (;;) {
    const ssize_t length = read(descriptor, block.data(), block.size());
    if (length < 0) return false;
    if (length == 0) return true;
    text->append(block.data(), static_cast<std::size_t>(length));
  }
}

}  // namespace

bool ReadCommandFile(const std::string& path, std::string* text, std::string* error) {
  const bool isInput = path == "-";
  const int descriptor = isInput ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const bool read = descriptor >= 0 && ReadAll(descriptor, text);
  const int code = errno;
  if (!isInput && descriptor >= 0) close(descriptor);
  if (!read) {
    *error = "cannot read " + CommandFileName(path) + ": " + std::strerror(code);
    return false;
  }
  return true;
}

std::string CommandFileName(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

std::vector<ListedCommand> CommandsOf(const std::string& text) {
  std::vector<ListedCommand> commands;
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  while (reader.Next(command)) {
    commands.push_back({command.ok, library::OutlineOf(command.tokens, text).DataFile()});
  };
  return commands;
}

}  // namespace cli
