// Shows streams a stretch of a file as if it were the whole.
#pragma once

#include <cstdint>
#include <memory>

#include "HostFramework/Threads.h"
#include "HostFramework/embedded/data/StreamDevice.h"
#include "library/parts/Stretch.h"

namespace library {

// What streams are shown of a file: at first all of it. Any thread.
class StretchView {
 public:
  // What is shown in front of a stretch that does not begin with the file: its byte-order mark, and
  // as many empty lines as stand before the data.
  struct Head {
    std::int64_t markBytes = 0;
    std::int64_t lines = 0;
    // Of a line feed: 2 for 16-bit characters.
    std::int64_t unitBytes = 1;
    bool bigEndian = false;

    std::int64_t bytes() const { return markBytes + lines * unitBytes; }
  };
  struct Shown {
    Head head;
    std::int64_t begin = 0;
    // -1: the whole file.
    std::int64_t end = -1;

    // Bytes in front of the stretch's.
    std::int64_t headBytes() const { return begin == 0 ? 0 : head.bytes(); }
  };

  // Copies of streams that are made from now on show this.
  void Show(const Shown& shown) {
    const sfGuard guard(mutex_);
    shown_ = shown;
  }
  Shown shown() const {
    const sfGuard guard(mutex_);
    return shown_;
  }

 private:
  mutable sfMutex mutex_;
  Shown shown_ SF_GUARDED_BY(mutex_);
};

// A stream on it shows all of the file; the copies of that stream show what `view` says when they
// are made.
class StretchDevice : public embedded::StreamDevice {
 public:
  StretchDevice(std::unique_ptr<embedded::StreamDevice> file,
                std::shared_ptr<const StretchView> view);

  std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override;
  std::int64_t Size() const override { return file_->Size(); }
  std::unique_ptr<embedded::StreamDevice> Duplicate() const override;
  std::int64_t SizeOfCopy(std::int64_t opened) const override;

 private:
  const std::unique_ptr<embedded::StreamDevice> file_;
  const std::shared_ptr<const StretchView> view_;
  StretchView::Shown shown_;
};

// While it lives, the files that streams open are shown through a view. One at a time; host's
// thread.
class ScopedStretches {
 public:
  explicit ScopedStretches(const std::shared_ptr<const StretchView>& view);
  ~ScopedStretches();
  ScopedStretches(const ScopedStretches&) = delete;
  ScopedStretches& operator=(const ScopedStretches&) = delete;

 private:
  embedded::StreamDeviceOpener before_;
};

}  // namespace library
