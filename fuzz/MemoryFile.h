// A file in memory that is opened by a path, for targets whose subject opens files itself.
#pragma once

#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/FuzzTarget.h"

namespace fuzz {

class MemoryFile {
 public:
  explicit MemoryFile(const std::string& bytes) : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
    Require(descriptor_ >= 0 && write(descriptor_, bytes.data(), bytes.size()) ==
                                    static_cast<ssize_t>(bytes.size()),
            "no file in memory");
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  const int descriptor_;
};

}  // namespace fuzz
