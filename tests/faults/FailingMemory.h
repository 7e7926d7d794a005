// Memory that runs out on demand: the test program's own operator new, and what ICU allocates with.
#pragma once

#include <cstddef>

namespace whole {

inline constexpr int kAllThreads = -1;

// What happens to the allocations behind the one that fails.
enum class Afterwards { kMemoryIsBack, kAllFail };

// While one lives, allocations are counted, and number `failing`, from 0, fails. One at a time.
class FailingMemory {
 public:
  // `thread`: whose allocations are counted. Threads that the maker of this object starts, or that
  // these start, have numbers from 0 in the order of their first allocations.
  explicit FailingMemory(long failing, int thread = kAllThreads,
                         Afterwards afterwards = Afterwards::kMemoryIsBack);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
};

// Whether what ICU allocates is counted (the default).
void CountIcuMemory(bool count);

// The allocation of the latest FailingMemory that was to fail was reached.
bool MemoryFailed();

// The test's own work on this thread, which is not counted.
class MemoryNotCounted {
 public:
  MemoryNotCounted();
  ~MemoryNotCounted();
  MemoryNotCounted(const MemoryNotCounted&) = delete;
  MemoryNotCounted& operator=(const MemoryNotCounted&) = delete;
};

}  // namespace whole
