// What a worker has made of a batch of records, on its way to the host's thread: cases, or counters
// for type detection, and notes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/ImportObserver.h"
#include "TxtWzMultiThreadMgr/UndecodableNotes.h"
#include "detection/DetectionEvidence.h"
#include "detection/SamplingState.h"
#include "model/TxtWzVar.h"
#include "watch/WatchedBatch.h"

namespace textwizard {

// A flag of a variable that a record of a batch gave rise to and that is set when its case is
// delivered; the first of the batch only.
struct BatchNote {
  enum Kind : std::uint8_t { kMissingStored, kStringTruncated };
  // Position in the list of variables.
  std::uint32_t variable;
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
    fUndecodable.Clear();
    fFailed = false;
    positions.clear();
    product.reset();
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
  void AddUndecodable(std::uint32_t record, const UndecodableRun& run) {
    fUndecodable.Add(record, run);
  }
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
  // The same of bytes that are no character; good until the next call.
  const UndecodableNotes::Note* NextUndecodable() { return fUndecodable.Next(fConsumeIndex); }
  // Number of the case, from 1, that came of a record of the batch.
  std::int64_t CaseNumber(std::uint32_t record) const { return fFirstCase + record + 1; }
  std::int64_t firstCase() const { return fFirstCase; }
  // Cases taken so far, one after another.
  std::uint32_t taken() const { return fConsumeIndex; }
  const OBS* cases() const { return fCases.get(); }
  const OBS* lastCase() const { return fCases.get() + fCaseCells * (fRecordCount - 1); }

  // --- Both
  const std::vector<BatchNote>& notes() const { return fNotes; }
  // Detection: the counters of each AUTO variable and, for a host that watches, the evidence; for
  // that also the lines of runs in the batch: those before it are to be added to every line.
  std::vector<TxtWzVar> counters;
  std::vector<DetectionEvidence> evidence;
  std::int64_t runLines = 0;
  // Detection of fixed columns: the states that the counters began with.
  std::vector<SamplingState> begun;
  // For an iterator that goes on by itself anywhere: of each case, the file position of the record
  // read last for it.
  std::vector<std::int64_t> positions;
  // For a host that watches, else null: what is to be told of the cases, and what it has made of
  // them.
  std::unique_ptr<WatchedBatch> watched;
  std::unique_ptr<ImportBatchProduct> product;

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
  UndecodableNotes fUndecodable;
  bool fFailed = false;
};

}  // namespace textwizard
