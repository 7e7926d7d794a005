#include "HostFramework/Threads.h"

#include <csignal>

#include <gtest/gtest.h>
#include <sched.h>

#include "HostFramework/embedded/threads/ThreadStarts.h"

namespace {

class Counter : public sfThread {
 public:
  Counter() : sfThread(1) {}
  ~Counter() override { join(); }
  void threadMain() override {
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    interruptBlocked = sigismember(&mask, SIGINT) == 1;
    for (int i = 0; i < 1000; ++i) {
      const sfGuard guard(mutex);
      ++count;
    }
    done.post();
  }
  sfMutex mutex;
  sfSemaphore done{0};
  int count = 0;
  bool interruptBlocked = false;
};

TEST(Threads, BodyRunsOnceAndSignalsItsSemaphore) {
  Counter counter;
  ASSERT_TRUE(counter.activate());
  counter.done.wait();
  counter.join();
  EXPECT_EQ(counter.count, 1000);
  EXPECT_EQ(counter.scope(), 1);
}

TEST(Threads, AThreadStartsOnlyOnce) {
  Counter counter;
  ASSERT_TRUE(counter.activate());
  EXPECT_FALSE(counter.activate());
}

TEST(Threads, InterruptIsBlockedInTheThreadAndNotInItsStarter) {
  Counter counter;
  ASSERT_TRUE(counter.activate());
  counter.join();
  EXPECT_TRUE(counter.interruptBlocked);
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  EXPECT_EQ(sigismember(&mask, SIGINT), 0);
}

TEST(Threads, AnObjectThatNeverStartedJoinsAtOnce) {
  Counter counter;
  counter.join();
  EXPECT_EQ(counter.count, 0);
}

TEST(Threads, StartLimitMakesActivateFail) {
  embedded::SetThreadStartLimit(1);
  Counter first, second;
  EXPECT_TRUE(first.activate());
  EXPECT_FALSE(second.activate());
  embedded::SetThreadStartLimit(-1);
  EXPECT_TRUE(second.activate());
}

TEST(Threads, SemaphoreCounts) {
  sfSemaphore semaphore(2);
  semaphore.wait();
  semaphore.wait();
  semaphore.post();
  semaphore.wait();
}

TEST(Threads, ProcessorsAreThoseOfTheAffinityMask) {
  cpu_set_t before;
  ASSERT_EQ(sched_getaffinity(0, sizeof before, &before), 0);
  EXPECT_EQ(getLogicalCPUCount(), CPU_COUNT(&before));
  cpu_set_t one;
  CPU_ZERO(&one);
  for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
    if (CPU_ISSET(cpu, &before)) {
      CPU_SET(cpu, &one);
      break;
    }
  }
  ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
  EXPECT_EQ(getLogicalCPUCount(), 1);
  sched_setaffinity(0, sizeof before, &before);
}

}  // namespace
