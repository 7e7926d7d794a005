// The user's wish to interrupt, as every error monitor reports it.
#pragma once

#include <atomic>

namespace embedded {

// Asks every reading pass to stop at its next check. Async-signal-safe; any thread.
void RequestAttention();
// Forgets the request, before the next command runs. Any thread.
void ClearAttention();
// Whether the user wants to interrupt what this thread does: everything, or its own scope.
bool AttentionRequested();

// As long as it lives, the thread that made it is also asked to stop while the flag is true, and no
// other thread is. Scopes nest; the inner one counts.
class AttentionScope {
 public:
  // The flag outlives the scope; any thread may set it.
  explicit AttentionScope(const std::atomic<bool>& wanted);
  ~AttentionScope();
  AttentionScope(const AttentionScope&) = delete;
  AttentionScope& operator=(const AttentionScope&) = delete;

 private:
  const std::atomic<bool>* const before_;
};

}  // namespace embedded
