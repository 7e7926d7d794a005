#include "library/input/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "library/input/FileKind.h"

namespace library {

std::unique_ptr<FileSource> FileSource::Open(const std::string& path, std::string* problem) {
  // Not blocking, so that a pipe without a writer is refused and not waited for.
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) {
    const int error = errno;
    *problem = WhyNotOpened(path);
    if (problem->empty()) *problem = std::strerror(error);
    return nullptr;
  }
  struct stat status {};
  if (fstat(descriptor, &status) != 0) {
    *problem = std::strerror(errno);
  } else if (S_ISDIR(status.st_mode)) {
    *problem = WhyNotOpened(path);
  } else if (!S_ISREG(status.st_mode)) {
    *problem = "it is no regular file";
  } else {
    return std::unique_ptr<FileSource>(
        new FileSource(descriptor, static_cast<std::uint64_t>(status.st_size)));
  }
  close(descriptor);
  return nullptr;
}

FileSource::~FileSource() { close(descriptor_); }

bool FileSource::ReadAt(std::uint64_t offset, char* out, std::size_t count, std::size_t* read,
                        std::string* problem) {
  *read = 0;
  while (*read < count) {
    const ssize_t got =
        pread(descriptor_, out + *read, count - *read, static_cast<off_t>(offset + *read));
    if (got == 0) break;
    if (got < 0) {
      if (errno == EINTR) continue;
      *problem = std::strerror(errno);
      return false;
    }
    *read += static_cast<std::size_t>(got);
  }
  return true;
}

bool MemorySource::ReadAt(std::uint64_t offset, char* out, std::size_t count, std::size_t* read,
                          std::string* /*problem*/) {
  *read = 0;
  if (offset >= bytes_.size()) return true;
  *read = std::min(count, bytes_.size() - static_cast<std::size_t>(offset));
  std::memcpy(out, bytes_.data() + offset, *read);
  return true;
}

}  // namespace library
