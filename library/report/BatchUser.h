// Whoever uses the cases of an import by the batch: a writer, a table of columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "HostFramework/ImportObserver.h"

namespace library {

class BatchUser {
 public:
  virtual ~BatchUser() = default;
  // On the thread that converted the cases, several at the same time: `count` cases of the source's
  // layout, which follow `firstCase` cases and are good during the call. May throw std::bad_alloc,
  // which ends the pass before these cases.
  virtual std::unique_ptr<ImportBatchProduct> Make(const OBS* /*cases*/, std::size_t /*count*/,
                                                   std::int64_t /*firstCase*/) {
    return nullptr;
  }
  // On the host's thread, in the order of the file: the same cases when they are delivered. Throws
  // nothing.
  virtual void Take(std::unique_ptr<ImportBatchProduct> product, const OBS* cases,
                    std::size_t count, std::int64_t firstCase) = 0;
};

}  // namespace library
