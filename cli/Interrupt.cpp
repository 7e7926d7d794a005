#include "cli/Interrupt.h"

#include <array>
#include <atomic>
#include <csignal>

#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "cli/ExitStatus.h"

namespace cli {
namespace {

constexpr std::size_t kSlots = 32;
std::array<std::atomic<const char*>, kSlots> unfinished{};

static_assert(std::atomic<const char*>::is_always_lock_free, "signal handlers read the slots");

// Everything below runs inside a signal handler and calls only what is allowed there.

void RemoveUnfinished() {
  for (const auto& slot : unfinished) {
    if (const char* path = slot.load()) unlink(path);
  }
}

void EndAtOnce(int signal) {
  RemoveUnfinished();
  // The signal's own end, so that whoever waits for the process sees what ended it.
  struct sigaction byDefault {};
  byDefault.sa_handler = SIG_DFL;
  sigaction(signal, &byDefault, nullptr);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  sigprocmask(SIG_UNBLOCK, &set, nullptr);
  raise(signal);
}

void OnInterrupt(int /*signal*/) {
  if (embedded::AttentionRequested()) {
    RemoveUnfinished();
    _exit(kExitInterrupted);
  }
  embedded::RequestAttention();
  alarm(1);
}

// A call that began to wait in the moment between the look for an interrupt and its own start was
// not woken by it: from time to time all that wait are woken.
void OnAlarm(int /*signal*/) { alarm(1); }

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

}  // namespace

void HandleInterrupts() {
  embedded::ClearAttention();
  // Waiting calls return when the signal comes: a run that waits for its command is interrupted
  // too.
  Handle(SIGINT, OnInterrupt);
  Handle(SIGALRM, OnAlarm);
  for (const int signal : {SIGTERM, SIGHUP, SIGPIPE}) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) Handle(signal, EndAtOnce);
  }
}

UnfinishedFile::UnfinishedFile(const char* path) : slot_(0) {
  for (; slot_ < kSlots; ++slot_) {
    const char* none = nullptr;
    if (unfinished[slot_].compare_exchange_strong(none, path)) return;
  }
}

UnfinishedFile::~UnfinishedFile() {
  if (slot_ < kSlots) unfinished[slot_] = nullptr;
}

}  // namespace cli
