#include "tests/faults/FailingMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace whole {
namespace {

// Allocations until the one that fails; negative when none is to.
std::atomic<long> left{-1};
std::atomic<bool> failed{false};
thread_local int notCounted = 0;

bool Fails() {
  if (notCounted > 0 || left.load() < 0) return false;
  if (left.fetch_sub(1) != 0) return false;
  failed = true;
  return true;
}

}  // namespace

FailingMemory::FailingMemory(long failing) {
  failed = false;
  left = failing;
}
FailingMemory::~FailingMemory() { left = -1; }

bool MemoryFailed() { return failed; }

MemoryNotCounted::MemoryNotCounted() { ++notCounted; }
MemoryNotCounted::~MemoryNotCounted() { --notCounted; }

namespace {

void* Allocate(std::size_t bytes) { return Fails() ? nullptr : std::malloc(bytes > 0 ? bytes : 1); }

void* AllocateOrThrow(std::size_t bytes) {
  void* const memory = Allocate(bytes);
  if (!memory) throw std::bad_alloc();
  return memory;
}

}  // namespace
}  // namespace whole

// The forms with an alignment stay the library's: both their halves do.
void* operator new(std::size_t bytes) { return whole::AllocateOrThrow(bytes); }
void* operator new[](std::size_t bytes) { return whole::AllocateOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return whole::Allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
  return whole::Allocate(bytes);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
