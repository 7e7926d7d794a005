// The host's buffered binary file stream and its index of case positions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

// Reads a file through a block buffer. Only a file that can seek opens. A copy has its own position
// and its own file descriptor, and starts where the original stood. One thread at a time; copies
// are independent.
class QANT_FileStream {
 public:
  enum SeekOrigin { kFromStart = 0, kFromCurrent = 1, kFromEnd = 2 };

  QANT_FileStream();
  QANT_FileStream(const QANT_FileStream& other);
  QANT_FileStream& operator=(const QANT_FileStream&) = delete;
  ~QANT_FileStream();

  // Opens `path` (host text) with the C mode `mode`; `type` is the host's and empty here. False
  // when the file cannot be opened, is a directory or cannot seek.
  bool Open(const char* path, const char* type, const char* mode);
  bool IsOpen() const;

  // Reads one byte; false when none is left or the read failed (see ReadFailed).
  bool ReadByte(unsigned char* byte) {
    if (cursor_ == end_ && !Fill()) return false;
    *byte = static_cast<unsigned char>(*cursor_++);
    return true;
  }
  // The bytes read and not yet consumed; reads the next block when there are none. Empty at the end
  // of the file and after a failed read. Valid until the next call that reads, seeks or destroys.
  std::string_view Buffered() {
    if (cursor_ == end_ && !Fill()) return {};
    return {cursor_, static_cast<std::size_t>(end_ - cursor_)};
  }
  // Steps over the first `bytes` bytes of Buffered().
  void Consume(std::size_t bytes) { cursor_ += bytes; }

  // Moves to an offset in bytes; 0 when done, non-zero when the target lies before the start or the
  // stream is not open. Forgets an earlier failure.
  int Seek(std::int64_t offset, SeekOrigin origin);
  // Offset of the next byte.
  std::int64_t Position() const;
  // Size of the file in bytes when it was opened; -1 when not open.
  std::int64_t Size() const;
  // True when the last read that delivered nothing failed, rather than met the end of the file.
  bool ReadFailed() const;

 private:
  struct State;
  bool Fill();

  const char* cursor_ = nullptr;
  const char* end_ = nullptr;
  std::unique_ptr<State> state_;
};

// Keeps the file position of every n-th case, never more than 65,536 of them: when full it drops
// every other entry and doubles its spacing. Any thread.
class QANT_SparseFileIndex {
 public:
  explicit QANT_SparseFileIndex(std::int64_t spacing);
  ~QANT_SparseFileIndex();
  QANT_SparseFileIndex(const QANT_SparseFileIndex&) = delete;
  QANT_SparseFileIndex& operator=(const QANT_SparseFileIndex&) = delete;

  // Notes that case `caseNumber` (from 0) is at `position` (bytes).
  void Add(std::int64_t caseNumber, std::int64_t position);
  // The nearest entry at or before `wanted`; false, with both results left alone, when there is
  // none.
  bool GetPos(std::int64_t wanted, std::int64_t* caseNumber, std::int64_t* position) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};
