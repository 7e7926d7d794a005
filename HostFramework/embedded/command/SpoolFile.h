// A temporary file without a name: it is gone when nothing holds it open, however the process ends.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace embedded {

// Made in the folder TMPDIR or else /tmp. One thread.
class SpoolFile {
 public:
  // None.
  SpoolFile() = default;
  SpoolFile(SpoolFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  SpoolFile& operator=(SpoolFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~SpoolFile();

  // An empty file; not open, with errno set, when it cannot be made.
  static SpoolFile Create();
  // Where they are made.
  static std::string Folder();

  bool IsOpen() const { return descriptor_ >= 0; }
  // Writes behind what was written; false, with errno set, when that failed. A signal does not end
  // it unless the user asked to interrupt.
  bool Append(std::string_view bytes);
  // A path that opens the file as long as this object lives.
  std::string path() const;

 private:
  explicit SpoolFile(int descriptor) : descriptor_(descriptor) {}

  int descriptor_ = -1;
};

}  // namespace embedded
