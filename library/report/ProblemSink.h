// Who takes the problems of an import one by one.
#pragma once

#include "HostFramework/ImportObserver.h"

namespace library {

class ProblemSink {
 public:
  virtual ~ProblemSink() = default;
  // On the thread of the import, in the order of the file. Throws std::bad_alloc, and
  // std::runtime_error with a sentence for what an output cannot hold: the import fails by it.
  virtual void Write(const ImportProblem& problem) = 0;
};

}  // namespace library
