// The threads that sfThread starts: how many there were, and a limit on them, so that the lack of
// threads can be tried out.
#pragma once

namespace embedded {

// Threads that may still be started before sfThread::activate fails; negative is no limit (the
// default). Any thread.
void SetThreadStartLimit(int threads);

// Threads that sfThread::activate has started since the process began. Any thread.
int ThreadsStarted();

}  // namespace embedded
