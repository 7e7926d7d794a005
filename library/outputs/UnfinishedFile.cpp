#include "library/outputs/UnfinishedFile.h"

#include <array>
#include <atomic>

#include <unistd.h>

namespace library {
namespace {

constexpr std::size_t kSlots = 32;
std::array<std::atomic<const char*>, kSlots> unfinished{};

static_assert(std::atomic<const char*>::is_always_lock_free, "signal handlers read the slots");

}  // namespace

UnfinishedFile::UnfinishedFile(const char* path) : slot_(0) {
  for (; slot_ < kSlots; ++slot_) {
    const char* none = nullptr;
    if (unfinished[slot_].compare_exchange_strong(none, path)) return;
  }
}

UnfinishedFile::~UnfinishedFile() {
  if (slot_ < kSlots) unfinished[slot_] = nullptr;
}

void RemoveUnfinishedFiles() {
  for (const auto& slot : unfinished) {
    if (const char* path = slot.load()) unlink(path);
  }
}

}  // namespace library
