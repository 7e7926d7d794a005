#include "HostFramework/Threads.h"

#include <atomic>
#include <csignal>
#include <memory>
#include <vector>

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
  int Count() {
    const sfGuard guard(mutex);
    return count;
  }
  sfMutex mutex;
  sfSemaphore done{0};
  int count SF_GUARDED_BY(mutex) = 0;
  bool interruptBlocked = false;
};

TEST(Threads, BodyRunsOnceAndSignalsItsSemaphore) {
  Counter counter;
  ASSERT_TRUE(counter.activate());
  counter.done.wait();
  counter.join();
  EXPECT_EQ(counter.Count(), 1000);
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
  EXPECT_EQ(counter.Count(), 0);
}

TEST(Threads, StartLimitMakesActivateFail) {
  embedded::SetThreadStartLimit(1);
  Counter first, second;
  EXPECT_TRUE(first.activate());
  EXPECT_FALSE(second.activate());
  embedded::SetThreadStartLimit(-1);
  EXPECT_TRUE(second.activate());
}

// Goes through a semaphore again and again and notes how many are behind it at once.
class Visitor : public sfThread {
 public:
  Visitor(sfSemaphore& door, std::atomic<int>& inside, std::atomic<int>& most)
      : sfThread(1), door_(door), inside_(inside), most_(most) {}
  ~Visitor() override { join(); }
  void threadMain() override {
    for (int i = 0; i < kVisits; ++i) {
      door_.wait();
      const int now = ++inside_;
      int seen = most_;
      while (now > seen && !most_.compare_exchange_weak(seen, now)) {
      }
      QANT_msleep(0);
      --inside_;
      ++visits;
      door_.post();
    }
  }
  static constexpr int kVisits = 2000;
  int visits = 0;

 private:
  sfSemaphore& door_;
  std::atomic<int>& inside_;
  std::atomic<int>& most_;
};

TEST(Threads, ASemaphoreLetsAsManyInAsItsCount) {
  for (const unsigned count : {1U, 2U, 3U}) {
    sfSemaphore door(count);
    std::atomic<int> inside{0}, most{0};
    std::vector<std::unique_ptr<Visitor>> visitors;
    for (int i = 0; i < 5; ++i) {
      visitors.push_back(std::make_unique<Visitor>(door, inside, most));
      ASSERT_TRUE(visitors.back()->activate());
    }
    for (const auto& visitor : visitors) {
      visitor->join();
      EXPECT_EQ(visitor->visits, Visitor::kVisits);
    }
    EXPECT_EQ(inside, 0);
    EXPECT_GE(most, 1);
    EXPECT_LE(most, static_cast<int>(count));
  }
}

// What was posted before anyone waited lets as many through, one by one.
TEST(Threads, ASemaphoreKeepsWhatWasPosted) {
  sfSemaphore door(0), passed(0);
  std::atomic<int> through{0};
  class Passer : public sfThread {
   public:
    Passer(sfSemaphore& door, sfSemaphore& passed, std::atomic<int>& through)
        : sfThread(1), door_(door), passed_(passed), through_(through) {}
    ~Passer() override { join(); }
    void threadMain() override {
      for (int i = 0; i < 5; ++i) {
        door_.wait();
        ++through_;
        passed_.post();
      }
    }

   private:
    sfSemaphore& door_;
    sfSemaphore& passed_;
    std::atomic<int>& through_;
  };
  for (int i = 0; i < 3; ++i) door.post();
  Passer passer(door, passed, through);
  ASSERT_TRUE(passer.activate());
  for (int i = 0; i < 3; ++i) passed.wait();
  EXPECT_EQ(through, 3);
  door.post();
  passed.wait();
  EXPECT_EQ(through, 4);
  door.post();
  passer.join();
  EXPECT_EQ(through, 5);
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
