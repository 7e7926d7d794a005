#include "library/parts/StretchDevice.h"

#include <algorithm>
#include <utility>

namespace library {

using embedded::StreamDevice;

StretchDevice::StretchDevice(std::unique_ptr<StreamDevice> file,
                             std::shared_ptr<const StretchView> view)
    : file_(std::move(file)), view_(std::move(view)) {}

std::ptrdiff_t StretchDevice::ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) {
  if (shown_.end < 0) return file_->ReadAt(offset, buffer, bytes);
  if (offset < 0) return -1;
  const std::int64_t headBytes = shown_.headBytes();
  const auto room = static_cast<std::int64_t>(std::min<std::size_t>(bytes, PTRDIFF_MAX));
  if (offset < headBytes) {
    const StretchView::Head& head = shown_.head;
    if (offset < head.markBytes) {
      return file_->ReadAt(offset, buffer,
                           static_cast<std::size_t>(std::min(room, head.markBytes - offset)));
    }
    const std::int64_t count = std::min(room, headBytes - offset);
    for (std::int64_t i = 0; i < count; ++i) {
      const std::int64_t inUnit = (offset + i - head.markBytes) % head.unitBytes;
      buffer[i] = (inUnit == 1) == head.bigEndian || head.unitBytes == 1 ? '\n' : '\0';
    }
    return static_cast<std::ptrdiff_t>(count);
  }
  const std::int64_t place = shown_.begin + offset - headBytes;
  if (place >= shown_.end) return 0;
  return file_->ReadAt(place, buffer, static_cast<std::size_t>(std::min(room, shown_.end - place)));
}

std::unique_ptr<StreamDevice> StretchDevice::Duplicate() const {
  std::unique_ptr<StreamDevice> file = file_->Duplicate();
  if (!file) return nullptr;
  auto copy = std::make_unique<StretchDevice>(std::move(file), view_);
  copy->shown_ = view_->shown();
  return copy;
}

std::int64_t StretchDevice::SizeOfCopy(std::int64_t opened) const {
  return shown_.end < 0 ? opened : shown_.headBytes() + shown_.end - shown_.begin;
}

ScopedStretches::ScopedStretches(const std::shared_ptr<const StretchView>& view) {
  before_ = embedded::SetStreamDeviceOpener({});
  embedded::SetStreamDeviceOpener([open = before_, view](const char* path) {
    std::unique_ptr<StreamDevice> file = open ? open(path) : embedded::OpenPosixDevice(path);
    if (file) file = std::make_unique<StretchDevice>(std::move(file), view);
    return file;
  });
}

ScopedStretches::~ScopedStretches() { embedded::SetStreamDeviceOpener(std::move(before_)); }

}  // namespace library
