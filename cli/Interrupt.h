// What the signals of a person at the terminal do to a run.
#pragma once

#include <cstddef>

namespace cli {

// From now on the first Ctrl-C asks the run to stop at its next check (the host's attention) and
// wakes every system call that waits (EINTR), and the second one ends the process at once with
// kExitInterrupted, after removing the unfinished files. A hang-up, a broken pipe and a request to
// terminate remove them too and then end the process as they do by themselves. Once, on the main
// thread.
void HandleInterrupts();

// Names a file that a signal which ends the process removes. `path` stays where it is, unchanged,
// as long as this object lives. More than a few dozen at a time are not kept.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const char* path);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

 private:
  std::size_t slot_;
};

}  // namespace cli
