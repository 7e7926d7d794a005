// The user's wish to interrupt, as every error monitor reports it.
#pragma once

namespace embedded {

// Asks every reading pass to stop at its next check. Async-signal-safe; any thread.
void RequestAttention();
// Forgets the request, before the next command runs. Any thread.
void ClearAttention();
bool AttentionRequested();

}  // namespace embedded
