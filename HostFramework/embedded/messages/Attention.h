// The user's wish to interrupt, as every error monitor reports it.
#pragma once

#include <atomic>
#include <functional>

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
  // The flag outlives the scope; any thread may set it. `look`, if there is one, is called whenever
  // this thread asks, before the flag is read: for those who learn of the wish only on this thread.
  // It throws nothing.
  explicit AttentionScope(const std::atomic<bool>& wanted, std::function<void()> look = {});
  ~AttentionScope();
  AttentionScope(const AttentionScope&) = delete;
  AttentionScope& operator=(const AttentionScope&) = delete;

  // What the question is answered by.
  bool IsWanted() const;

 private:
  const std::atomic<bool>& wanted_;
  const std::function<void()> look_;
  const AttentionScope* const before_;
};

}  // namespace embedded
