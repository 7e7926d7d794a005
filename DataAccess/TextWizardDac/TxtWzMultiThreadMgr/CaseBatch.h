// What a worker has made of a batch of records, on its way to the host's thread: cases, or counters
// for type detection, and notes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "HostFramework/DataSource.h"
#include "model/TxtWzVar.h"

namespace textwizard {

// Something that a record of a batch gave rise to and that is reported when its case is delivered.
struct BatchNote {
  enum Kind : std::uint8_t {
    kUndecodable,      // detail: byte position in the record
    kMissingStored,    // detail: position in the list of variables; first of the batch only
    kStringTruncated,  // the same
  };
  std::uint64_t detail;
  // Number in the batch, from 0.
  std::uint32_t record;
  Kind kind;
};

// Belongs to one thread at a time: it is filled by a worker and taken by the host's thread. Its
// memory is kept from batch to batch.
class CaseBatch {
 public:
  // --- Worker
  // Starts an empty batch behind `firstCase` cases.
  void Begin(std::int64_t firstCase) {
    fFirstCase = firstCase;
    fRecordCount = 0;
    fConsumeIndex = 0;
    fNextNote = 0;
    fNotes.clear();
    fFailed = false;
  }
  // Room for `count` cases of `cells` cells each. Throws when there is no memory for it.
  void MakeRoom(std::size_t count, std::size_t cells) {
    fCaseCells = cells;
    if (count * cells <= fCapacity && fCases) return;
    fCases.reset();
    fCapacity = 0;
    fCases.reset(new OBS[count * cells]);
    fCapacity = count * cells;
  }
  // The case of record `index`, which has room.
  OBS* Case(std::uint32_t index) { return fCases.get() + fCaseCells * index; }
  void Add(const BatchNote& note) { fNotes.push_back(note); }
  // The batch holds what came of the first `count` records. `failed`: the worker ran out of memory
  // behind them.
  void End(std::uint32_t count, bool failed) {
    fRecordCount = count;
    fFailed = failed;
  }

  // --- Host's thread
  std::uint32_t recordCount() const { return fRecordCount; }
  bool failed() const { return fFailed; }
  // The next case, or null after the last one; good until the batch is handed back.
  const OBS* GetNextOBSPointer() {
    if (fConsumeIndex >= fRecordCount) return nullptr;
    return fCases.get() + fCaseCells * fConsumeIndex++;
  }
  // Detection takes all records at once.
  void TakeAll() { fConsumeIndex = fRecordCount; }
  // The next note of a record not after the case taken last; null when there is none.
  const BatchNote* NextNote() {
    if (fNextNote == fNotes.size() || fNotes[fNextNote].record >= fConsumeIndex) return nullptr;
    return &fNotes[fNextNote++];
  }
  // Number of the case, from 1, that `note` belongs to.
  std::int64_t CaseNumber(const BatchNote& note) const { return fFirstCase + note.record + 1; }

  // --- Both
  const std::vector<BatchNote>& notes() const { return fNotes; }
  // Detection: the counters of each AUTO variable.
  std::vector<TxtWzVar> counters;

 private:
  std::unique_ptr<OBS[]> fCases;
  // In cells.
  std::size_t fCapacity = 0;
  std::size_t fCaseCells = 0;
  std::uint32_t fRecordCount = 0;
  std::uint32_t fConsumeIndex = 0;
  std::int64_t fFirstCase = 0;
  std::vector<BatchNote> fNotes;
  std::size_t fNextNote = 0;
  bool fFailed = false;
};

}  // namespace textwizard
