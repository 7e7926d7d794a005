// File and variable names of the host.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

// A file that is closed with its owner.
struct CloseFile {
  void operator()(FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<FILE, CloseFile>;

// A file name in the host's text, opened the way the host opens files.
class ExtNameStr {
 public:
  // Keeps a copy of `name` (host text).
  void SetGeneric(const char* name);
  // Opens the file as the C function does; null when it cannot be opened. The caller closes it.
  // A mode such as "rb,ccs=UTF16LE" opens a wide-character stream (read it with fgetwc).
  FILE* fopen(const char* mode) const;

 private:
  std::string name_;
};

// Checks a variable name: 0 valid; 1 empty; 2 longer than 64 bytes; 3 the first character cannot
// start a name; 4 a later character cannot stand in a name, or the name ends with "."; 5 a reserved
// word. Any thread.
int ValidateQANTName(const char* name);
