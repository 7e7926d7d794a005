// What the threads of one pass share: the ring of workers, how far the reader has come, and what it
// leaves for the host's thread beside the batches.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "HostFramework/Threads.h"
#include "TxtWzMultiThreadMgr/TextDataIteratorThread.h"

namespace textwizard {

struct WorkerRing {
  // Rises only.
  enum ReaderState : std::int32_t {
    kReading = 0,
    kStopping = 1,  // asked to stop, or the pass is over
    kEnded = 2,
  };

  explicit WorkerRing(std::size_t slots) : fThreads(slots) {}

  // Any thread.
  void RaiseReaderState(ReaderState state) {
    std::int32_t now = fReaderState.load();
    while (now < state && !fReaderState.compare_exchange_weak(now, state)) {
    }
  }

  // --- Synchronise themselves
  std::atomic<std::int32_t> fReaderState{kReading};
  // The pass was given up. Set before the end of the pass can be seen.
  std::atomic<bool> fFailed{false};
  // A slot is null until the reader needs it for the first time. The reader owns the workers.
  std::vector<std::atomic<TextDataIteratorThread*>> fThreads;
  // Posted for every worker that the reader makes and at the end of its pass.
  sfSemaphore fStartSemaphore{0};

  // --- Written by the reader thread before the first batch is sent, and before its pass ends; read
  // --- by the host's thread after that
  std::int64_t fMarkBytes = 0;
  std::int64_t fPreambleEnd = 0;
  // -1 until the data has ended.
  std::int64_t fDataEnd = -1;
};

}  // namespace textwizard
