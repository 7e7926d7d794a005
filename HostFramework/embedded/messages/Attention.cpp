#include "HostFramework/embedded/messages/Attention.h"

#include <atomic>

namespace embedded {
namespace {

std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets the request");

}  // namespace

void RequestAttention() { requested = true; }
void ClearAttention() { requested = false; }
bool AttentionRequested() { return requested; }

}  // namespace embedded
