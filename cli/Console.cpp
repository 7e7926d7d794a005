#include "cli/Console.h"

#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace cli {
namespace {

constexpr std::size_t kWidthElsewhere = 100;

void Write(FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

void WriteLine(FILE* stream, std::string_view text) {
  Write(stream, text);
  if (text.empty() || text.back() != '\n') std::fputc('\n', stream);
}

}  // namespace

std::size_t TerminalWidth(int descriptor) {
  struct winsize size {};
  const bool known = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : kWidthElsewhere;
}

Console::Console(const Settings& settings) : settings_(settings) {}

Console::~Console() {
  const std::lock_guard guard(mutex_);
  EraseProgress();
}

void Console::Error(std::string_view text) { WriteError("error: ", text); }

void Console::Warning(std::string_view text) { WriteError("warning: ", text); }

void Console::Note(std::string_view text) { WriteError("", text); }

void Console::WriteError(std::string_view kind, std::string_view text) {
  const std::lock_guard guard(mutex_);
  EraseProgress();
  // Both may be the same terminal: what was printed first is seen first.
  std::fflush(stdout);
  Write(stderr, kind);
  WriteLine(stderr, text);
}

void Console::Log(std::string_view text) { WriteOutput(text); }

void Console::Print(std::string_view text) { WriteOutput(text); }

void Console::WriteOutput(std::string_view text) {
  const std::lock_guard guard(mutex_);
  EraseProgress();
  WriteLine(settings_.outputIsData ? stderr : stdout, text);
}

void Console::PrintResult(std::string_view line) {
  const std::lock_guard guard(mutex_);
  EraseProgress();
  WriteLine(stdout, line);
}

void Console::ShowProgress(std::string_view text) {
  if (!settings_.progress) return;
  const std::lock_guard guard(mutex_);
  std::fflush(stdout);
  EraseProgress();
  // A line that reached the terminal's edge would go on in the next one and could not be erased.
  Write(stderr, text.substr(0, TerminalWidth(STDERR_FILENO) - 1));
  std::fflush(stderr);
  progressShown_ = true;
}

void Console::ClearProgress() {
  const std::lock_guard guard(mutex_);
  EraseProgress();
}

void Console::EraseProgress() {
  if (!progressShown_) return;
  // To the start of the line, and erase to its end.
  Write(stderr, "\r\033[K");
  std::fflush(stderr);
  progressShown_ = false;
}

bool Console::Flush() {
  const std::lock_guard guard(mutex_);
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

}  // namespace cli
