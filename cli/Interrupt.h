// What the signals of a person at the terminal do to a run.
#pragma once

#include <cstddef>

namespace cli {

// From now on the first Ctrl-C asks the run to stop at its next check (the host's attention), and
// the second one, like a hang-up, a broken pipe or a request to terminate, ends the process at
// once, after removing the unfinished files. Once, on the main thread.
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
