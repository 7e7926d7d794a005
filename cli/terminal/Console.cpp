#include "cli/terminal/Console.h"

#include <cerrno>
#include <cstring>

#include <sys/ioctl.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "library/outputs/WholeWrite.h"

namespace cli {
namespace {

constexpr std::size_t kWidthElsewhere = 100;
constexpr std::size_t kScreenWidth = 80;
// Of standard output that is no terminal, before it is handed on.
constexpr std::size_t kBufferedBytes = std::size_t{64} * 1024;

// Standard error is where failures are told: its own are told nowhere.
void WriteError(std::string_view text) {
  static_cast<void>(library::WriteWhole(STDERR_FILENO, text));
}

std::string Line(std::string_view text) {
  std::string line(text);
  if (line.empty() || line.back() != '\n') line += '\n';
  return line;
}

}  // namespace

namespace {

std::size_t WidthOr(int descriptor, std::size_t elsewhere) {
  struct winsize size {};
  const bool known = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : elsewhere;
}

}  // namespace

std::size_t TerminalWidth(int descriptor) { return WidthOr(descriptor, kWidthElsewhere); }

std::size_t ScreenWidth(int descriptor) { return WidthOr(descriptor, kScreenWidth); }

Console::Console(const Settings& settings)
    : settings_(settings), onTerminal_(isatty(STDOUT_FILENO) != 0) {}

Console::~Console() {
  const sfGuard guard(mutex_);
  EraseProgress();
  WriteBuffer();
}

void Console::Error(std::string_view text) { Report("error: ", text); }

void Console::Warning(std::string_view text) { Report("warning: ", text); }

void Console::Note(std::string_view text) { Report("", text); }

void Console::Report(std::string_view kind, std::string_view text) {
  const sfGuard guard(mutex_);
  EraseProgress();
  // Both may be the same terminal: what was printed first is seen first.
  WriteBuffer();
  WriteError(std::string(kind) + Line(text));
}

void Console::Log(std::string_view text) { Print(text); }

void Console::Print(std::string_view text) {
  const sfGuard guard(mutex_);
  EraseProgress();
  if (settings_.outputIsData) {
    WriteError(Line(text));
  } else {
    WriteOutput(text);
  }
}

void Console::PrintResult(std::string_view line) {
  const sfGuard guard(mutex_);
  EraseProgress();
  WriteOutput(line);
}

void Console::WriteOutput(std::string_view text) {
  buffer_ += Line(text);
  if (onTerminal_ || buffer_.size() >= kBufferedBytes) WriteBuffer();
}

void Console::WriteBuffer() {
  if (outputError_ == 0 && !library::WriteWhole(STDOUT_FILENO, buffer_)) outputError_ = errno;
  buffer_.clear();
}

void Console::ShowProgress(std::string_view text) {
  if (!settings_.progress) return;
  const sfGuard guard(mutex_);
  WriteBuffer();
  EraseProgress();
  // A line that reached the terminal's edge would go on in the next one and could not be erased.
  WriteError(text.substr(0, TerminalWidth(STDERR_FILENO) - 1));
  progressShown_ = true;
}

void Console::ClearProgress() {
  const sfGuard guard(mutex_);
  EraseProgress();
}

void Console::EraseProgress() {
  if (!progressShown_) return;
  // To the start of the line, and erase to its end.
  WriteError("\r\033[K");
  progressShown_ = false;
}

bool Console::Flush() {
  const sfGuard guard(mutex_);
  EraseProgress();
  WriteBuffer();
  if (outputError_ == 0) return true;
  if (outputError_ != EINTR) {
    WriteError(std::string("error: cannot write standard output: ") + std::strerror(outputError_) +
               "\n");
  }
  return false;
}

}  // namespace cli
