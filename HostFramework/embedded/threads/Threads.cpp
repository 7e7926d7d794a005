#include "HostFramework/Threads.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <exception>

#include <sched.h>
#include <semaphore.h>

#include "HostFramework/embedded/threads/ThreadStarts.h"

namespace embedded {
namespace {

std::atomic<int> startLimit{-1};
std::atomic<int> started{0};

bool TakeThreadStart() {
  int left = startLimit.load();
  while (left > 0 && !startLimit.compare_exchange_weak(left, left - 1)) {
  }
  return left != 0;
}

// Blocks SIGINT for the calling thread's scope, so that a thread started in it inherits the mask
// and the interrupt goes to the host's own thread.
class InterruptBlocked {
 public:
  InterruptBlocked() {
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    pthread_sigmask(SIG_BLOCK, &interrupt, &before_);
  }
  ~InterruptBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  InterruptBlocked(const InterruptBlocked&) = delete;
  InterruptBlocked& operator=(const InterruptBlocked&) = delete;

 private:
  sigset_t before_;
};

}  // namespace

void SetThreadStartLimit(int threads) { startLimit = threads; }

int ThreadsStarted() { return started; }

}  // namespace embedded

sfThread::sfThread(int scope) : scope_(scope) {}

sfThread::~sfThread() { join(); }

void sfThread::stopThread() {}

bool sfThread::activate() {
  if (thread_.joinable() || !embedded::TakeThreadStart()) return false;
  const embedded::InterruptBlocked blocked;
  try {
    thread_ = std::thread([this] { threadMain(); });
  } catch (const std::exception&) {
    // The system has no thread to give, or there is no memory for one.
    return false;
  }
  ++embedded::started;
  return true;
}

void sfThread::join() {
  if (thread_.joinable()) thread_.join();
}

struct sfSemaphore::Native {
  sem_t semaphore;
};

sfSemaphore::sfSemaphore(unsigned initialCount) : native_(std::make_unique<Native>()) {
  sem_init(&native_->semaphore, 0, initialCount);
}

sfSemaphore::~sfSemaphore() { sem_destroy(&native_->semaphore); }

void sfSemaphore::wait() {
  while (sem_wait(&native_->semaphore) != 0 && errno == EINTR) {
  }
}

void sfSemaphore::post() { sem_post(&native_->semaphore); }

void QANT_msleep(unsigned milliseconds) {
  if (milliseconds == 0) {
    sched_yield();
    return;
  }
  timespec left{static_cast<time_t>(milliseconds / 1000),
                static_cast<long>(milliseconds % 1000) * 1000000L};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

int getLogicalCPUCount() {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) {
    const unsigned known = std::thread::hardware_concurrency();
    return known > 0 ? static_cast<int>(known) : 1;
  }
  const int count = CPU_COUNT(&processors);
  return count > 0 ? count : 1;
}
