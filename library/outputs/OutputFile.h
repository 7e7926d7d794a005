// A file that is written whole or not at all.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "library/outputs/ByteSink.h"
#include "library/outputs/UnfinishedFile.h"

namespace library {

// Writes through a buffer of its own to a temporary file beside the target, which takes the
// target's name when it is published, both safely on the disk, and disappears when it is not. "-"
// is standard output, and a target that is there and no regular file (a device, a pipe) is written
// as it stands. A failed write is remembered: later writes do nothing, and Finish tells. One thread
// at a time, but that any may ask whether writing goes well.
class OutputFile final : public ByteSink {
 public:
  // Opens `target`. Null when it cannot be written; then *error says so, naming the target.
  static std::unique_ptr<OutputFile> Open(const std::string& target, std::string* error);
  // Removes what was not published.
  ~OutputFile() override;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Append(std::string_view text) override;
  void AppendPieces(const std::vector<std::string_view>& pieces) override;
  void Append(char character) { *Reserve(1) = character, ++used_; }
  // Room for `bytes` bytes (at most kReservable) at the end of the text; write there and hand the
  // end of what was written to Advance. Valid until the next call.
  char* Reserve(std::size_t bytes) {
    if (buffer_.size() - used_ < bytes) Flush();
    return buffer_.data() + used_;
  }
  void Advance(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.data()); }
  // Hands what is buffered to the system.
  void Flush();

  // False after a write failed. Any thread.
  bool ok() const { return !failed_.load(std::memory_order_acquire); }
  // What failed, naming the target; empty while nothing did. Any thread, once it is not ok.
  const std::string& error() const { return error_; }
  // It failed because the user interrupted a write that waited for a reader.
  bool interrupted() const { return interrupted_; }
  const std::string& target() const { return target_; }
  // The file that is written, for who writes it by its name instead of by Append; empty when the
  // target is written as it stands.
  const std::string& path() const { return temporary_; }

  // Who writes the file by its name could not write on: `why` is what the system said.
  void SetFailed(std::string_view why);

  // Writes the rest, waits until the disk has it and closes; false when anything failed. Nothing is
  // written afterwards.
  bool Finish();
  // Gives a finished file the target's name and waits until the disk has that, too; false when that
  // fails.
  bool Publish();

  static constexpr std::size_t kReservable = 4096;

 private:
  explicit OutputFile(std::string target);
  bool OpenTarget();
  void Fail(int code);

  std::string target_;     // as it was named
  std::string final_;      // behind symbolic links
  std::string temporary_;  // empty when the target is written as it stands, and once published
  std::optional<UnfinishedFile> unfinished_;
  int descriptor_ = -1;
  std::vector<char> buffer_;
  std::size_t used_ = 0;
  // Written before `failed_`, and not again.
  std::string error_;
  bool interrupted_ = false;
  std::atomic<bool> failed_{false};
};

}  // namespace library
