// An import that the page ordered: the program's own `run`, in a process of its own.
#pragma once

#include "cli/wizard/ImportOrder.h"
#include "cli/wizard/Job.h"

namespace cli {

// Runs it; the job keeps the problems, which the page asks for by `problems`. The job's end has
// `cases`, `ledger`, `problems` (by variable and kind), `digest`, `outputs`, `line`.
void RunImport(const ImportOrder& order, Job& job);

}  // namespace cli
