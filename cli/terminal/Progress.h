// The line that shows how far a long reading has come.
#pragma once

#include <chrono>
#include <string>
#include <utility>

#include "cli/terminal/Console.h"

namespace cli {

class Progress {
 public:
  // Reading starts now, in a data file of `fileBytes` bytes. Silent where the console shows no
  // progress.
  Progress(Console& console, long long fileBytes);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Shows the state when the last time is long enough ago. Asks the clock: call it every so many
  // cases.
  void Tick(long long cases);

 private:
  Console& console_;
  long long fileBytes_;
  long long readBefore_;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point shown_;
};

// A stage before the cases: "types: 3.4 of 12.0 MB".
class StageProgress {
 public:
  // Silent where the console shows no progress.
  StageProgress(Console& console, std::string stage)
      : console_(console), stage_(std::move(stage)) {}
  ~StageProgress() { console_.ClearProgress(); }
  StageProgress(const StageProgress&) = delete;
  StageProgress& operator=(const StageProgress&) = delete;

  // Shows the state when the last time is long enough ago.
  void Tick(long long bytes, long long fileBytes);

 private:
  Console& console_;
  const std::string stage_;
  std::chrono::steady_clock::time_point shown_ = std::chrono::steady_clock::now();
};

// "1200 cases, 3.4 of 12.0 MB, 85.0 MB/s, 0:12 left". Without `bytesRead` (negative) only the cases
// are told.
std::string ProgressText(long long cases, long long bytesRead, long long fileBytes, double seconds);

}  // namespace cli
