#include <algorithm>
#include <atomic>
#include <vector>

#include "HostFramework/FileStream.h"
#include "HostFramework/Threads.h"

namespace {

constexpr std::size_t kMostEntries = 65536;

struct Entry {
  std::int64_t caseNumber;
  std::int64_t position;
};

bool IsBefore(const Entry& entry, std::int64_t caseNumber) { return entry.caseNumber < caseNumber; }

// The first position noted for a case stays: a pass that resumed at an entry in the middle of a
// case would note later ones, and seeks would drift from case to case.
bool IsKnown(const std::vector<Entry>& entries, std::int64_t caseNumber) {
  const auto place = std::lower_bound(entries.begin(), entries.end(), caseNumber, IsBefore);
  return place != entries.end() && place->caseNumber == caseNumber;
}

}  // namespace

struct QANT_SparseFileIndex::State {
  // Only grows. Read without the mutex to drop most cases early; under it to decide.
  std::atomic<std::int64_t> spacing;
  mutable sfMutex mutex;
  std::vector<Entry> entries SF_GUARDED_BY(mutex);  // rising case numbers, multiples of spacing
};

QANT_SparseFileIndex::QANT_SparseFileIndex(std::int64_t spacing)
    : state_(std::make_unique<State>()) {
  state_->spacing = std::max<std::int64_t>(spacing, 1);
}

QANT_SparseFileIndex::~QANT_SparseFileIndex() = default;

void QANT_SparseFileIndex::Add(std::int64_t caseNumber, std::int64_t position) {
  State& state = *state_;
  if (caseNumber < 0 || caseNumber % state.spacing.load(std::memory_order_relaxed) != 0) return;
  const sfGuard guard(state.mutex);
  std::vector<Entry>& entries = state.entries;
  if (IsKnown(entries, caseNumber)) return;
  while (entries.size() >= kMostEntries) {
    const std::int64_t doubled = state.spacing * 2;
    std::erase_if(entries, [doubled](const Entry& e) { return e.caseNumber % doubled != 0; });
    state.spacing = doubled;
  }
  if (caseNumber % state.spacing != 0) return;
  entries.insert(std::lower_bound(entries.begin(), entries.end(), caseNumber, IsBefore),
                 {caseNumber, position});
}

bool QANT_SparseFileIndex::GetPos(std::int64_t wanted, std::int64_t* caseNumber,
                                  std::int64_t* position) const {
  const State& state = *state_;
  const sfGuard guard(state.mutex);
  const auto behind = std::upper_bound(
      state.entries.begin(), state.entries.end(), wanted,
      [](std::int64_t number, const Entry& entry) { return number < entry.caseNumber; });
  if (behind == state.entries.begin()) return false;
  *caseNumber = std::prev(behind)->caseNumber;
  *position = std::prev(behind)->position;
  return true;
}
