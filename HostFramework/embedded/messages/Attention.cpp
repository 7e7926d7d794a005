#include "HostFramework/embedded/messages/Attention.h"

#include <utility>

namespace embedded {
namespace {

std::atomic<bool> requested{false};
// Of this thread.
constinit thread_local const AttentionScope* scope = nullptr;

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets the request");

}  // namespace

void RequestAttention() { requested = true; }
void ClearAttention() { requested = false; }
bool AttentionRequested() { return requested || (scope != nullptr && scope->IsWanted()); }

AttentionScope::AttentionScope(const std::atomic<bool>& wanted, std::function<void()> look)
    : wanted_(wanted), look_(std::move(look)), before_(scope) {
  scope = this;
}

AttentionScope::~AttentionScope() { scope = before_; }

bool AttentionScope::IsWanted() const {
  if (look_) look_();
  return wanted_;
}

}  // namespace embedded
