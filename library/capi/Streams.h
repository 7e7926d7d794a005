// Cases and problems as Arrow C streams.
#pragma once

#include <memory>

#include "library/capi/ImportSession.h"
#include "library/include/textwizard/arrow_c.h"

namespace library {

// Begins a pass over the cases and fills *out with its stream, which keeps what it needs of the
// session; its callbacks may be called on any thread, one at a time. Throws as the session does.
void ExportCases(std::shared_ptr<ImportSession> session, ArrowArrayStream* out);
// The problems of the latest pass, as they are now.
void ExportProblems(ImportSession& session, ArrowArrayStream* out);

}  // namespace library
