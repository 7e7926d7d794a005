// Files that a process which is ended by a signal must not leave behind.
#pragma once

#include <cstddef>

namespace library {

// Names a file that RemoveUnfinishedFiles removes. `path` stays where it is, unchanged, as long as
// this object lives. More than a few dozen at a time are not kept. Any thread.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const char* path);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

 private:
  std::size_t slot_;
};

// Removes all unfinished files. For handlers of signals: it calls only what is allowed there.
void RemoveUnfinishedFiles();

}  // namespace library
