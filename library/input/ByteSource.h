// Where the bytes of a bare file come from while it is being understood.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace library {

// Bytes at any offset, in any order. One thread. Whoever reads a stream that cannot seek (a pipe, a
// compressed file) gives its first bytes (MemorySource) and says that more follow.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  // Bytes that ReadAt can reach.
  virtual std::uint64_t Size() const = 0;
  // False when the data goes on behind Size(): then nothing is known of its end.
  virtual bool IsWhole() const = 0;
  // Reads `count` bytes from `offset` into `out`. *read: how many there were, fewer than asked for
  // only at the end. False when the device failed; *problem is then a sentence (UTF-8) that says
  // how.
  virtual bool ReadAt(std::uint64_t offset, char* out, std::size_t count, std::size_t* read,
                      std::string* problem) = 0;
};

// A file on disk.
class FileSource final : public ByteSource {
 public:
  // Null when `path` (UTF-8) cannot be opened, is a directory, or is no file that can seek;
  // *problem is then a sentence (UTF-8) without the file's name, such as "it is a folder".
  static std::unique_ptr<FileSource> Open(const std::string& path, std::string* problem);
  ~FileSource() override;
  FileSource(const FileSource&) = delete;
  FileSource& operator=(const FileSource&) = delete;

  std::uint64_t Size() const override { return size_; }
  bool IsWhole() const override { return true; }
  bool ReadAt(std::uint64_t offset, char* out, std::size_t count, std::size_t* read,
              std::string* problem) override;

 private:
  FileSource(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}

  const int descriptor_;
  const std::uint64_t size_;
};

// Bytes in memory, which outlive it: a whole text, or the first bytes of a longer one.
class MemorySource final : public ByteSource {
 public:
  MemorySource(std::string_view bytes, bool whole) : bytes_(bytes), whole_(whole) {}

  std::uint64_t Size() const override { return bytes_.size(); }
  bool IsWhole() const override { return whole_; }
  bool ReadAt(std::uint64_t offset, char* out, std::size_t count, std::size_t* read,
              std::string* problem) override;

 private:
  const std::string_view bytes_;
  const bool whole_;
};

}  // namespace library
