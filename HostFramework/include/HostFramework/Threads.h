// Threading primitives of the host.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

#include "HostFramework/ThreadSafety.h"

// A thread with a virtual body. The object outlives its thread: owners call join() before any
// member that the body uses dies (the destructor joins too, as a last guard).
class sfThread {
 public:
  // `scope` is the scheduling scope (1: system).
  explicit sfThread(int scope);
  sfThread(const sfThread&) = delete;
  sfThread& operator=(const sfThread&) = delete;
  virtual ~sfThread();
  // The body; runs on the new thread.
  virtual void threadMain() = 0;
  // Asks the body to end; the base does nothing.
  virtual void stopThread();

  // Starts the thread with SIGINT blocked; false when it cannot be started or was started before.
  bool activate();
  // Waits for the thread to end; does nothing when it never started. Owner's thread only.
  void join();
  int scope() const { return scope_; }

 private:
  int scope_;
  std::thread thread_;
};

class SF_CAPABILITY("mutex") sfMutex {
 public:
  void lock() SF_ACQUIRE() { mutex_.lock(); }
  void unlock() SF_RELEASE() { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

// Holds a mutex for its own lifetime.
class SF_SCOPED_CAPABILITY sfGuard {
 public:
  explicit sfGuard(sfMutex& mutex) SF_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~sfGuard() SF_RELEASE() { mutex_.unlock(); }
  sfGuard(const sfGuard&) = delete;
  sfGuard& operator=(const sfGuard&) = delete;

 private:
  sfMutex& mutex_;
};

// The role of one thread, for what only that thread may touch: a member that is guarded by a role
// is touched in functions that require it, and the thread's body says that it has it. Holds nothing
// and costs nothing; clang checks it.
class SF_CAPABILITY("role") sfThreadRole {
 public:
  // Says that the calling thread is the one whose role this is.
  void Assume() const SF_ASSERT_CAPABILITY(this) {}
};

// A counting semaphore. Waits survive interrupted system calls.
class sfSemaphore {
 public:
  explicit sfSemaphore(unsigned initialCount);
  ~sfSemaphore();
  sfSemaphore(const sfSemaphore&) = delete;
  sfSemaphore& operator=(const sfSemaphore&) = delete;
  void wait();
  void post();

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

// Sleeps for `milliseconds`; 0 yields the processor.
void QANT_msleep(unsigned milliseconds);
// Number of processors that this process may run on (its affinity mask); at least 1.
int getLogicalCPUCount();
