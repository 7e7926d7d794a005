// Where a file stream's bytes come from: the seam behind which tests put memory and faults.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace embedded {

// Random access to the bytes of one open file. Used by one thread at a time; closed by its
// destructor.
class StreamDevice {
 public:
  virtual ~StreamDevice() = default;
  // Reads up to `bytes` bytes at `offset`. Returns how many were read, which may be fewer than
  // asked for with more to follow; 0 at the end of the file; negative when the read failed.
  virtual std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) = 0;
  // Size of the file in bytes now, or -1 when it cannot be told.
  virtual std::int64_t Size() const = 0;
  // The same open file under a file descriptor of its own; null when there is none to be had.
  virtual std::unique_ptr<StreamDevice> Duplicate() const = 0;
  // Bytes that a copy of a stream has on this device, a duplicate; `opened`: those of the stream it
  // is copied from. A file has the size that it had when it was opened.
  virtual std::int64_t SizeOfCopy(std::int64_t opened) const { return opened; }
};

// Opens the file of a path (host text) for reading; null when it cannot.
using StreamDeviceOpener = std::function<std::unique_ptr<StreamDevice>(const char* path)>;

// What QANT_FileStream::Open calls from now on; null restores OpenPosixDevice. Any thread; the
// opener must bear being called on any thread. Returns what it called before.
StreamDeviceOpener SetStreamDeviceOpener(StreamDeviceOpener opener);

// Opens a regular file or a block device of the system; null for anything that cannot seek.
std::unique_ptr<StreamDevice> OpenPosixDevice(const char* path);

// Bytes that a stream asks for at once; 0 restores the default of 1 MiB. A stream takes the size in
// force when it reads for the first time. Any thread.
void SetStreamBlockSize(std::size_t bytes);

}  // namespace embedded
