#include "HostFramework/FileStream.h"

#include <atomic>
#include <new>
#include <utility>

#include "HostFramework/Threads.h"
#include "HostFramework/embedded/data/StreamDevice.h"

namespace embedded {
namespace {

constexpr std::size_t kDefaultBlockSize = std::size_t{1} << 20;

std::atomic<std::size_t> blockSize{kDefaultBlockSize};

struct Opener {
  sfMutex mutex;
  StreamDeviceOpener open SF_GUARDED_BY(mutex);  // empty means OpenPosixDevice
};

Opener& TheOpener() {
  static Opener opener;
  return opener;
}

std::unique_ptr<StreamDevice> OpenDevice(const char* path) {
  Opener& opener = TheOpener();
  StreamDeviceOpener open;
  {
    const sfGuard guard(opener.mutex);
    open = opener.open;
  }
  return open ? open(path) : OpenPosixDevice(path);
}

bool IsReadMode(const char* mode) {
  if (!mode || mode[0] != 'r') return false;
  for (const char* flag = mode + 1; *flag; ++flag) {
    if (*flag == '+') return false;
  }
  return true;
}

}  // namespace

StreamDeviceOpener SetStreamDeviceOpener(StreamDeviceOpener opener) {
  Opener& setting = TheOpener();
  const sfGuard guard(setting.mutex);
  return std::exchange(setting.open, std::move(opener));
}

void SetStreamBlockSize(std::size_t bytes) { blockSize = bytes > 0 ? bytes : kDefaultBlockSize; }

}  // namespace embedded

// The block holds the `blockBytes` bytes of the file that end at offset `blockEnd`, which is where
// the stream's end_ points. Without a block, blockEnd is the position.
struct QANT_FileStream::State {
  std::unique_ptr<embedded::StreamDevice> device;
  std::int64_t size = -1;
  std::unique_ptr<char[]> block;
  std::size_t capacity = 0;
  std::size_t blockBytes = 0;
  std::int64_t blockEnd = 0;
  bool failed = false;
};

QANT_FileStream::QANT_FileStream() : state_(std::make_unique<State>()) {}

QANT_FileStream::QANT_FileStream(const QANT_FileStream& other) : state_(std::make_unique<State>()) {
  if (!other.IsOpen()) return;
  state_->device = other.state_->device->Duplicate();
  // A copy without a descriptor is closed; it must not pass for an empty file.
  state_->failed = !state_->device;
  if (state_->failed) return;
  state_->size = state_->device->SizeOfCopy(other.state_->size);
  state_->blockEnd = other.Position();
}

QANT_FileStream::~QANT_FileStream() = default;

bool QANT_FileStream::Open(const char* path, const char* /*type*/, const char* mode) {
  cursor_ = end_ = nullptr;
  *state_ = State();
  if (!path || !embedded::IsReadMode(mode)) return false;
  std::unique_ptr<embedded::StreamDevice> device = embedded::OpenDevice(path);
  const std::int64_t size = device ? device->Size() : -1;
  if (size < 0) return false;
  state_->device = std::move(device);
  state_->size = size;
  return true;
}

bool QANT_FileStream::IsOpen() const { return state_->device != nullptr; }

bool QANT_FileStream::Fill() {
  State& state = *state_;
  if (state.failed) return false;
  state.failed = true;
  if (!state.device) return false;
  if (!state.block) {
    const std::size_t capacity = embedded::blockSize;
    state.block.reset(new (std::nothrow) char[capacity]);
    if (!state.block) return false;
    state.capacity = capacity;
  }
  const std::ptrdiff_t got =
      state.device->ReadAt(state.blockEnd, state.block.get(), state.capacity);
  if (got < 0 || static_cast<std::size_t>(got) > state.capacity) {
    // The block's bytes may be half overwritten.
    state.blockBytes = 0;
    cursor_ = end_ = nullptr;
    return false;
  }
  if (got == 0) {
    // Nothing where the file had bytes when it was opened: it was cut meanwhile.
    state.failed = state.blockEnd < state.size;
    return false;
  }
  state.failed = false;
  state.blockBytes = static_cast<std::size_t>(got);
  state.blockEnd += got;
  cursor_ = state.block.get();
  end_ = cursor_ + got;
  return true;
}

int QANT_FileStream::Seek(std::int64_t offset, SeekOrigin origin) {
  State& state = *state_;
  if (!state.device) return -1;
  const std::int64_t base = origin == kFromStart     ? 0
                            : origin == kFromCurrent ? Position()
                                                     : state.size;
  std::int64_t target = 0;
  if (__builtin_add_overflow(base, offset, &target) || target < 0) return -1;
  const std::int64_t blockStart = state.blockEnd - static_cast<std::int64_t>(state.blockBytes);
  if (target >= blockStart && target <= state.blockEnd) {
    cursor_ = end_ - (state.blockEnd - target);
  } else {
    state.blockBytes = 0;
    state.blockEnd = target;
    cursor_ = end_ = nullptr;
  }
  state.failed = false;
  return 0;
}

std::int64_t QANT_FileStream::Position() const { return state_->blockEnd - (end_ - cursor_); }

std::int64_t QANT_FileStream::Size() const { return state_->size; }

bool QANT_FileStream::ReadFailed() const { return state_->failed; }
