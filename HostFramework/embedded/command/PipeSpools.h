// Standard input and pipes, made readable like files.
#pragma once

#include <map>
#include <string>

#include "HostFramework/embedded/command/SpoolFile.h"

namespace embedded {

// Copies pipes into unlinked temporary files, which last as long as this object. One thread.
class PipeSpools {
 public:
  PipeSpools() = default;
  PipeSpools(const PipeSpools&) = delete;
  PipeSpools& operator=(const PipeSpools&) = delete;

  // The path to open instead of `path` (host text). That is `path` itself, unless it is "-"
  // (standard input) or names a pipe: then everything up to its end is copied first, into the
  // folder TMPDIR or else /tmp, and the result is the copy's path; asked again, the same copy. When
  // copying fails or the user asks to interrupt it, the result is a path that does not exist and
  // says why.
  std::string PathOf(const std::string& path);

 private:
  struct Copy {
    SpoolFile file;  // not open when copying failed
    std::string path;
  };
  std::map<std::string, Copy> copies_;  // by the path asked for
};

}  // namespace embedded
