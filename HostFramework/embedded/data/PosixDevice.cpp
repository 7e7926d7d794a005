#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostFramework/embedded/data/StreamDevice.h"

namespace embedded {
namespace {

class PosixDevice : public StreamDevice {
 public:
  explicit PosixDevice(int descriptor) : descriptor_(descriptor) {}
  ~PosixDevice() override { close(descriptor_); }
  PosixDevice(const PosixDevice&) = delete;
  PosixDevice& operator=(const PosixDevice&) = delete;

  std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override {
    ssize_t got;
    do {
      got = pread(descriptor_, buffer, bytes, offset);
    } while (got < 0 && errno == EINTR);
    return got;
  }

  std::int64_t Size() const override {
    struct stat status;
    if (fstat(descriptor_, &status) != 0) return -1;
    if (S_ISREG(status.st_mode)) return status.st_size;
    return lseek(descriptor_, 0, SEEK_END);
  }

  // pread leaves the shared offset of the open file alone, so a duplicate is independent.
  std::unique_ptr<StreamDevice> Duplicate() const override {
    const int copy = fcntl(descriptor_, F_DUPFD_CLOEXEC, 0);
    if (copy < 0) return nullptr;
    return std::make_unique<PosixDevice>(copy);
  }

 private:
  int descriptor_;
};

// Character devices may claim to seek and never end, so being able to seek is not enough.
bool IsSeekableFile(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISBLK(status.st_mode));
}

}  // namespace

std::unique_ptr<StreamDevice> OpenPosixDevice(const char* path) {
  // Opening a pipe without O_NONBLOCK would wait for its writer; regular files ignore it.
  const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (descriptor < 0) return nullptr;
  if (!IsSeekableFile(descriptor)) {
    close(descriptor);
    return nullptr;
  }
  posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
  return std::make_unique<PosixDevice>(descriptor);
}

}  // namespace embedded
