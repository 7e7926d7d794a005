// A small reader of text files, line by line: the base of every plan, for a host that reads the
// file through the plan. The component reads through the data source.
#pragma once

#include <memory>
#include <string>

#include "HostFramework/Names.h"

namespace textwizard {

class TxtWzFile {
 public:
  TxtWzFile();
  TxtWzFile(const TxtWzFile&) = delete;
  TxtWzFile& operator=(const TxtWzFile&) = delete;
  virtual ~TxtWzFile();

  // Opens `name` for reading; false when a file is open already or it cannot be opened.
  bool OpenFile(const char* name);
  // Points *line at the next line (at most 4,097 bytes with its line end), valid until the next
  // call; false at the end.
  bool GetLine(char** line);
  // Moves to the start; false without a file.
  bool SeekBegin();
  // 1 when a file was open, else 0.
  int CloseFile();

 private:
  static constexpr int kLineBufferSize = 4098;
  std::unique_ptr<char[]> lineBuffer_;
  FileHandle file_;
  std::string fileName_;
};

}  // namespace textwizard
