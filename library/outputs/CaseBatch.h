// Cases kept for a moment, so that writing can be measured apart from reading without asking the
// clock for every case.
#pragma once

#include <cstddef>
#include <vector>

#include "HostFramework/DataSource.h"
#include "library/outputs/CaseWriter.h"

namespace library {

class CaseBatch {
 public:
  // Cases of `caseBytes` bytes each, for `writer`.
  CaseBatch(std::size_t caseBytes, CaseWriter& writer);
  // Copies a case; writes the batch when it is full.
  void Add(const OBS* obs);
  // Writes the cases that are kept.
  void Flush();
  // Time spent in the writer.
  double seconds() const { return seconds_; }

 private:
  CaseWriter& writer_;
  std::size_t cellsPerCase_;
  std::size_t capacity_;
  std::size_t count_ = 0;
  std::vector<OBS> cells_;
  double seconds_ = 0;
};

}  // namespace library
