// What goes on around a pass does not reach it: signals, other passes, other decimal characters.
#include <pthread.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "TxtWzMultiThreadMgr/testing/EngineTest.h"

namespace textwizard {
namespace {

using namespace engine_test;

std::atomic<int> signalsTaken{0};
std::atomic<int> signalsOnOtherThreads{0};
pthread_t hostThread;

void TakeSignal(int) {
  ++signalsTaken;
  if (!pthread_equal(pthread_self(), hostThread)) ++signalsOnOtherThreads;
}

// Handles a signal, without restarting the system calls that it interrupts.
class Handled {
 public:
  explicit Handled(int signal) : signal_(signal) {
    signalsTaken = signalsOnOtherThreads = 0;
    hostThread = pthread_self();
    struct sigaction action = {};
    action.sa_handler = TakeSignal;
    sigaction(signal, &action, &before_);
  }
  ~Handled() { sigaction(signal_, &before_, nullptr); }

 private:
  int signal_;
  struct sigaction before_;
};

void ExpectNumbered(std::int64_t cases) {
  const auto source = MakeSource("data.txt", 3, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  for (std::int64_t i = 1; i <= cases; ++i) {
    ASSERT_TRUE(iterator.Next()) << i;
    ASSERT_EQ(buffer.Number(0), static_cast<double>(i));
  }
  EXPECT_FALSE(iterator.Next());
}

TEST(Surroundings, InterruptedSystemCallsAreRetried) {
  const DataFile file(NumberedLines(1, 200000));
  const Handled alarm(SIGALRM);
  itimerval often = {{0, 200}, {0, 200}};
  itimerval never = {};
  setitimer(ITIMER_REAL, &often, nullptr);
  for (int pass = 0; pass < 5; ++pass) ExpectNumbered(200000);
  setitimer(ITIMER_REAL, &never, nullptr);
  EXPECT_GT(signalsTaken, 0);
}

TEST(Surroundings, InterruptsGoToTheHostsThread) {
  const DataFile file(NumberedLines(1, 200000));
  const Handled interrupt(SIGINT);
  const auto source = MakeSource(file.path(), 8, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  for (int i = 1; i <= 200000; ++i) {
    ASSERT_TRUE(iterator.Next());
    if (i % 1000 == 0) kill(getpid(), SIGINT);
  }
  EXPECT_FALSE(iterator.Next());
  EXPECT_GT(signalsTaken, 0);
  EXPECT_EQ(signalsOnOtherThreads, 0);
}

TEST(Surroundings, TwoSourcesAreReadOnTwoThreadsAtOnce) {
  const DataFile file(NumberedLines(1, 100000));
  std::thread other([] { ExpectNumbered(100000); });
  ExpectNumbered(100000);
  other.join();
}

TEST(Surroundings, ThousandIteratorsOneAfterAnother) {
  const DataFile file(NumberedLines(1, 10));
  for (int i = 0; i < 1000; ++i) ASSERT_NO_FATAL_FAILURE(ExpectNumbered(10));
}

}  // namespace
}  // namespace textwizard
