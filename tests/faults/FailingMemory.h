// Memory that runs out on demand: the test program's own operator new.
#pragma once

#include <cstddef>

namespace whole {

// While one lives, allocations by operator new are counted, on all threads, and one of them fails:
// number `failing`, from 0. One at a time.
class FailingMemory {
 public:
  explicit FailingMemory(long failing);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
};

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
