// A limit on the threads that may be started, so that the lack of threads can be tried out.
#pragma once

namespace embedded {

// Threads that may still be started before sfThread::activate fails; negative is no limit (the
// default). Any thread.
void SetThreadStartLimit(int threads);

}  // namespace embedded
