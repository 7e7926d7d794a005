// A process of this program that does one thing for the wizard's page. The host's settings belong
// to a process, so each question about a file has one of its own: none waits for another, stopping
// one is an interrupt, and a file that breaks its reading breaks nothing else.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace cli {

// One thread.
class WorkerProcess {
 public:
  struct Settings {
    std::string program;
    std::vector<std::string> arguments;
    std::string input{};  // standard input, whole
  };

  // Starts it. Throws std::runtime_error when it cannot.
  explicit WorkerProcess(const Settings& settings);
  // Ends it at once when it still runs.
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  enum class Told { kLine, kNothing, kEnd };
  // The next line of its standard output, without its end; kNothing when none came in that time,
  // kEnd when it closed its output. What it says on standard error is kept meanwhile.
  Told NextLine(std::chrono::milliseconds wait, std::string* line);
  // As Ctrl-C does.
  void Interrupt() const;
  // Waits for its end, which NextLine has told of. Its exit status, or 128 and the signal's number.
  int Wait();

  // What it said on standard error, its first kilobytes.
  const std::string& errors() const { return errors_; }
  // Bytes that it has read from files so far; -1 where the system does not tell.
  long long bytesRead() const;

 private:
  void TakeErrors();

  pid_t process_ = -1;
  int output_ = -1;
  int error_ = -1;
  std::string pending_;
  std::string errors_;
  int status_ = 0;
};

}  // namespace cli
