// Cases that come one by one, kept for a moment and handed to a sink together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "HostFramework/DataSource.h"
#include "library/outputs/CaseSink.h"

namespace library {

class CaseBatch {
 public:
  // Cases of `caseBytes` bytes each, for `sink`.
  CaseBatch(std::size_t caseBytes, CaseSink& sink);
  // Copies a case; hands the batch over when it is full.
  void Add(const OBS* obs);
  // Hands over the cases that are kept.
  void Flush();
  // Time spent in the sink.
  double seconds() const { return seconds_; }

 private:
  CaseSink& sink_;
  std::size_t cellsPerCase_;
  std::size_t capacity_;
  std::size_t count_ = 0;
  std::int64_t before_ = 0;  // cases handed over
  std::vector<OBS> cells_;
  double seconds_ = 0;
};

}  // namespace library
