// Standard output and standard error as one place: messages, what a person is shown, and the
// progress line that stands below them and goes away.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "HostFramework/Threads.h"

namespace cli {

// Columns of the terminal that is open as `descriptor`; a fixed number where none is.
std::size_t TerminalWidth(int descriptor);
// The same for what has to fit everywhere: 80 where there is none.
std::size_t ScreenWidth(int descriptor);

// Texts are UTF-8. Any thread. Once the user has asked to interrupt, what nobody takes at once is
// dropped.
class Console {
 public:
  struct Settings {
    // Standard output carries a file ("-" was given): what else would go there goes to standard
    // error, so that the file stays whole.
    bool outputIsData = false;
    // Show progress; the caller asks only where standard error is a terminal.
    bool progress = false;
  };
  explicit Console(const Settings& settings);
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  // "error: TEXT" and "warning: TEXT" on standard error.
  void Error(std::string_view text);
  void Warning(std::string_view text);
  // A line of the log, as it stands.
  void Log(std::string_view text);
  // What a person is shown, as it stands.
  void Print(std::string_view text);
  // A line for programs, always on standard output.
  void PrintResult(std::string_view line);
  // A remark on the run, on standard error.
  void Note(std::string_view text);

  bool showsProgress() const { return settings_.progress; }
  // `text` is ASCII; what does not fit the terminal's line is cut.
  void ShowProgress(std::string_view text);
  void ClearProgress();

  // Writes what is buffered; false when standard output could not take everything. That is said on
  // standard error, unless the user interrupted the writing.
  bool Flush();

 private:
  void Report(std::string_view kind, std::string_view text) SF_EXCLUDES(mutex_);
  void WriteOutput(std::string_view text) SF_REQUIRES(mutex_);
  void WriteBuffer() SF_REQUIRES(mutex_);
  void EraseProgress() SF_REQUIRES(mutex_);

  const Settings settings_;
  const bool onTerminal_;
  // Held while either stream is written, too.
  sfMutex mutex_;
  std::string buffer_ SF_GUARDED_BY(mutex_);
  // Of the first write to standard output that failed.
  int outputError_ SF_GUARDED_BY(mutex_) = 0;
  bool progressShown_ SF_GUARDED_BY(mutex_) = false;
};

}  // namespace cli
