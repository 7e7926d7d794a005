// Who takes the problems of an import one by one.
#pragma once

#include <cstddef>
#include <string_view>

#include "HostFramework/ImportObserver.h"

namespace library {

class ProblemSink {
 public:
  virtual ~ProblemSink() = default;
  // The problems that follow are of the file of that name (UTF-8), one of several.
  virtual void BeginFile(std::string_view /*name*/) {}
  // On the thread of the import, in the order of the file. Throws std::bad_alloc, and
  // std::runtime_error with a sentence for what an output cannot hold: the import fails by it.
  virtual void Write(const ImportProblem& problem) = 0;
  // The same of some that follow one another.
  virtual void WriteAll(const ImportProblem* problems, std::size_t count) {
    for (const ImportProblem* end = problems + count; problems != end; ++problems) Write(*problems);
  }
};

}  // namespace library
