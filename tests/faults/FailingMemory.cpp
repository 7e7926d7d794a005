#include "tests/faults/FailingMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <unicode/uclean.h>

namespace whole {
namespace {

// Of the FailingMemory that lives; its number is 0 when there is none.
std::atomic<unsigned> alive{0};
std::atomic<long> left{0};
std::atomic<int> chosen{kAllThreads};
std::atomic<Afterwards> afterwards{Afterwards::kMemoryIsBack};
std::atomic<int> threads{0};

std::atomic<bool> failed{false};
std::atomic<bool> icuCounted{true};

// The number of this thread under a FailingMemory.
constexpr int kMaker = -2;
struct Numbered {
  unsigned under = 0;
  int number = 0;
};
thread_local Numbered numbered;
thread_local int notCounted = 0;

bool IsCounted() {
  const unsigned under = alive;
  if (under == 0 || notCounted > 0) return false;
  if (chosen == kAllThreads) return true;
  if (numbered.under != under) numbered = {under, threads.fetch_add(1)};
  return numbered.number == chosen;
}

bool Fails() {
  if (!IsCounted()) return false;
  const long before = left.fetch_sub(1);
  if (before == 0) failed = true;
  return before == 0 || (before < 0 && afterwards.load() == Afterwards::kAllFail);
}

}  // namespace

FailingMemory::FailingMemory(long failing, int thread, Afterwards after) {
  static unsigned made = 0;
  failed = false;
  threads = 0;
  left = failing;
  chosen = thread;
  afterwards = after;
  numbered = {++made, kMaker};
  if (failing >= 0) alive = made;
}
FailingMemory::~FailingMemory() { alive = 0; }

void CountIcuMemory(bool count) { icuCounted = count; }

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

void* U_CALLCONV IcuAllocate(const void* /*context*/, std::size_t bytes) {
  return icuCounted && Fails() ? nullptr : std::malloc(bytes);
}
void* U_CALLCONV IcuReallocate(const void* /*context*/, void* memory, std::size_t bytes) {
  return icuCounted && Fails() ? nullptr : std::realloc(memory, bytes);
}
void U_CALLCONV IcuFree(const void* /*context*/, void* memory) { std::free(memory); }

// Before any test, and so before ICU has memory of its own.
[[maybe_unused]] const bool icuIsCounted = [] {
  UErrorCode status = U_ZERO_ERROR;
  u_setMemoryFunctions(nullptr, IcuAllocate, IcuReallocate, IcuFree, &status);
  if (U_FAILURE(status)) std::abort();
  return true;
}();

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
