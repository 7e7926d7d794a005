#include "cli/terminal/Interrupt.h"

#include <csignal>
#include <initializer_list>

#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "cli/ExitStatus.h"
#include "library/outputs/UnfinishedFile.h"

namespace cli {
namespace {

volatile std::sig_atomic_t interrupted = 0;

// Everything below runs inside a signal handler and calls only what is allowed there.

void EndAtOnce(int signal) {
  library::RemoveUnfinishedFiles();
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
  if (interrupted != 0) {
    library::RemoveUnfinishedFiles();
    _exit(kExitInterrupted);
  }
  interrupted = 1;
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
  // A write beyond the limit on a file's size fails as on a full disk: it is said, and the file
  // goes.
  Handle(SIGXFSZ, SIG_IGN);
}

}  // namespace cli
