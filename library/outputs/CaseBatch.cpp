#include "library/outputs/CaseBatch.h"

#include <algorithm>
#include <chrono>

namespace library {
namespace {

// Small enough to stay in the processor's second-level cache.
constexpr std::size_t kBatchCells = 16384;
constexpr std::size_t kMostCases = 4096;

}  // namespace

CaseBatch::CaseBatch(std::size_t caseBytes, CaseSink& sink)
    : sink_(sink),
      cellsPerCase_(caseBytes / sizeof(OBS)),
      capacity_(std::clamp<std::size_t>(kBatchCells / std::max<std::size_t>(cellsPerCase_, 1), 1,
                                        kMostCases)),
      cells_(capacity_ * cellsPerCase_) {}

void CaseBatch::Add(const OBS* obs) {
  std::copy_n(obs, cellsPerCase_, cells_.data() + count_ * cellsPerCase_);
  if (++count_ == capacity_) Flush();
}

void CaseBatch::Flush() {
  if (count_ == 0) return;
  const auto start = std::chrono::steady_clock::now();
  sink_.Take(sink_.Make(cells_.data(), count_, before_));
  before_ += static_cast<std::int64_t>(count_);
  count_ = 0;
  seconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace library
