#include "HostFramework/embedded/messages/Attention.h"

namespace embedded {
namespace {

std::atomic<bool> requested{false};
// Of this thread.
constinit thread_local const std::atomic<bool>* scope = nullptr;

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets the request");

}  // namespace

void RequestAttention() { requested = true; }
void ClearAttention() { requested = false; }
bool AttentionRequested() { return requested || (scope != nullptr && *scope); }

AttentionScope::AttentionScope(const std::atomic<bool>& wanted) : before_(scope) {
  scope = &wanted;
}

AttentionScope::~AttentionScope() { scope = before_; }

}  // namespace embedded
