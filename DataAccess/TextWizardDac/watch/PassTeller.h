// Tells a host's observer of a pass: takes what was noted of each batch, case by case as these are
// delivered, and keeps what only the pass as a whole shows.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "watch/WatchedBatch.h"

namespace textwizard {

// Host's thread, but for limitReached. The observer outlives it.
class PassTeller {
 public:
  // `variables`: those of the source.
  PassTeller(ImportObserver& observer, std::size_t variables, bool fixedColumns);

  // Any thread: no more problems are told but the first of each kind of each variable. Never falls.
  bool limitReached() const { return limitReached_.load(std::memory_order_relaxed); }

  // --- The calls of a pass, in this order. There is one: nothing is told once it is over.
  // `preambleEnd`: offset behind the lines before the first case's.
  void Begin(std::int64_t markBytes, std::int64_t preambleEnd);
  bool telling() const { return state_ == State::kTelling; }
  // The batch is delivered from now on; it stays as it is until EndBatch. `firstCase`: cases before
  // it.
  void StartBatch(const WatchedBatch& batch, std::int64_t firstCase);
  // Cases of the batch before `end` (counted from 0) have been delivered.
  void TellCases(std::uint32_t end) {
    delivered_ = end;
    if (nextNoted_ < end) TellNoted();
  }
  // No more cases of the batch are delivered. `runLines`: lines in it that its places do not count.
  void EndBatch(std::int64_t runLines = 0);
  // The pass is over, if it has begun at all. `dataEnd`: offset where the data ended, -1 when the
  // pass did not come so far.
  void End(bool complete, std::int64_t dataEnd, std::int64_t fileBytes);

 private:
  void TellNoted();
  void TellCase(std::uint32_t record);
  void TellProblems(std::uint32_t record);
  // False for one that is beyond the limit.
  bool Tells(const NotedProblems::Problem& problem);
  void FindNoted();
  // Counts the problems of the cases that were delivered.
  void CountProblems();
  // The next stretch, which ends at `end`.
  void AddSpan(ImportSpan::Kind kind, std::int64_t end, std::int64_t records = 0,
               std::int64_t lineEndBytes = 0, std::int64_t droppedBytes = 0);
  void TellSpan();

  ImportObserver& observer_;
  const std::size_t variables_;
  const std::int64_t problemLimit_;
  const bool tellsProblemCases_;
  const bool tellsCellsPerCase_;
  std::atomic<bool> limitReached_;
  const bool fixedColumns_;

  enum class State { kBefore, kTelling, kOver };
  State state_ = State::kBefore;
  std::int64_t cases_ = 0;
  std::int64_t records_ = 0;
  std::int64_t toldProblems_ = 0;
  // By code, until the pass ends: problems of the batches so far, and whether one was told.
  std::vector<ImportProblemCount> counts_;
  std::vector<std::uint8_t> told_;
  ImportCellCounts cells_;
  std::vector<std::int64_t> textsBeyondColumn_;
  // The stretch that may go on.
  ImportSpan span_{};

  // The batch that is being delivered; null between batches.
  const WatchedBatch* batch_ = nullptr;
  std::int64_t firstCase_ = 0;
  // Lines of the runs of all batches before it.
  std::int64_t runLines_ = 0;
  std::uint32_t delivered_ = 0;
  // The next case that there is something to tell of.
  std::uint32_t nextNoted_ = UINT32_MAX;
  std::size_t nextDetail_ = 0;
  // Problems that are told at once.
  std::array<ImportProblem, 32> together_{};
  std::size_t nextProblemCase_ = 0;
  std::size_t nextCells_ = 0;
};

}  // namespace textwizard
