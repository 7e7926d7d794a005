// Where the cases of an import go: a file of text, columns, a digest. An import may have several.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "HostFramework/DataSource.h"

namespace library {

// What a sink has made of a batch of cases.
class CasePart {
 public:
  virtual ~CasePart() = default;
};

// Takes the cases of one source in two steps, so that the work is done where the cases are
// converted: Make on any thread, for several batches at the same time, Take on the thread of the
// import, in the order of the cases.
class CaseSink {
 public:
  virtual ~CaseSink() = default;

  // Works on `count` cases, one behind the other, that follow `firstCase` cases. Changes nothing of
  // the sink. Throws std::bad_alloc.
  virtual std::unique_ptr<CasePart> Make(const OBS* cases, std::size_t count,
                                         std::int64_t firstCase) const = 0;
  // Takes the part of the batch that follows those taken before. Throws std::bad_alloc, and
  // std::runtime_error with a sentence for what the output cannot hold.
  virtual void Take(std::unique_ptr<CasePart> part) = 0;
  // All cases were taken.
  virtual void Finish() = 0;
};

}  // namespace library
