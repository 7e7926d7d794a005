// What the signals of a person at the terminal do to a run.
#pragma once

namespace cli {

// From now on the first Ctrl-C asks the run to stop at its next check (the host's attention) and
// wakes every system call that waits (EINTR), and the second one ends the process at once with
// kExitInterrupted, after removing the unfinished files. A hang-up, a broken pipe and a request to
// terminate remove them too and then end the process as they do by themselves. A file that grows
// beyond what it may (SIGXFSZ) is no signal any more but a failed write. Once, on the main thread.
void HandleInterrupts();

}  // namespace cli
