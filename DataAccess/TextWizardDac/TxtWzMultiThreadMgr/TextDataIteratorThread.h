// A conversion worker: a thread that turns batches of records into cases, or counts them for type
// detection, one batch after another.
//
// The reader thread exchanges a batch of records for the one converted last, the host's thread the
// cases for those it has delivered: so the reader reads on, and the host's thread delivers, while
// the worker converts. Three semaphores hand the worker's two batches on: work, done and free.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "HostFramework/Threads.h"
#include "TxtWzMultiThreadMgr/CaseBatch.h"
#include "TxtWzMultiThreadMgr/ColumnCounter.h"
#include "TxtWzMultiThreadMgr/RecordBatch.h"
#include "TxtWzMultiThreadMgr/WorkerPlan.h"
#include "detection/DetectionCounters.h"
#include "detection/RegExMappings.h"
#include "reading/CaseWatch.h"
#include "reading/FieldSplitter.h"
#include "reading/RecordDecoder.h"

namespace textwizard {

class TextDataIteratorThread : public sfThread, private UndecodableListener {
 public:
  // Where the batch is. A stopped slot stays stopped.
  enum State : std::int32_t {
    kFreed = 0,       // by the host's thread
    kAvailable = 1,   // to the reader; also a new worker
    kConverting = 2,  // by the worker
    kConverted = 3,
    kConsumed = 4,  // being taken by the host's thread
    kStopped = 5,
  };
  // What the worker is told. Never falls.
  enum Command : std::int32_t { kNew = 0, kConvert = 1, kStop = 2, kExited = 3 };

  // Bytes of batch text, at least; more when the first record is long. (Later batches of a pass may
  // have more: RingReader.)
  static constexpr std::size_t kBatchText = 125000;
  static constexpr std::size_t kRecordsOfFirstLength = 20;
  // But a very long first record does not make every batch of the worker very long.
  static constexpr std::size_t kLargestBatchText = std::size_t{8} << 20;

  // `firstRecord`: length in bytes of the first record that the worker will get.
  TextDataIteratorThread(const WorkerPlan& plan, std::size_t firstRecord);
  // Joins the thread, which must have been stopped or never started.
  ~TextDataIteratorThread() override;

  void threadMain() override;

  // --- Any thread
  bool running() const { return fRunning.load(); }
  bool stopRequested() const { return fStopRequested.load(); }
  bool exited() const { return fCommand.load() == kExited; }
  State state() SF_EXCLUDES(fStateMutex);
  // Sets one of the states but kStopped, unless the slot is stopped.
  void SetState(State state) SF_EXCLUDES(fStateMutex);
  // Ends the worker once it has finished the batch that it is converting, and wakes whoever waits
  // for it. Only the first call on a running worker does something.
  void Stop() SF_EXCLUDES(fControlMutex, fStateMutex);

  // --- Reader thread
  // The text that an ordinary batch has room for.
  std::size_t textLimit() const { return fTextLimit; }
  void WaitFree() { fFreeSemaphore.wait(); }
  // Hands a batch to the worker in exchange for one that is done with, while the slot is available;
  // false when the worker has been stopped.
  bool SendBatch(RecordBatch& batch);

  // --- Host's thread
  void WaitDone() { fDoneSemaphore.wait(); }
  // Takes what has become of the batch in exchange for one that is done with, between WaitDone and
  // PostFree.
  void TakeBatch(CaseBatch& batch) {
    fHolder.Assume();
    std::swap(fCases, batch);
  }
  // What it was made of; likewise.
  const RecordBatch& records() const {
    fHolder.Assume();
    return fRecords;
  }
  void PostFree() { fFreeSemaphore.post(); }

 private:
  void OnUndecodable(const UndecodableRun& run) override;
  void ConvertBatch() SF_REQUIRES(fRole);
  // Detection of fixed columns; false when it must not go on.
  bool CountColumns() SF_REQUIRES(fRole, fHolder);
  void PrepareBatch() SF_REQUIRES(fRole, fHolder);
  void ConvertRecords() SF_REQUIRES(fRole, fHolder);
  // The same where cases are not lines.
  void ConvertCases() SF_REQUIRES(fRole, fHolder);
  template <bool kWatched>
  void ConvertCase() SF_REQUIRES(fRole, fHolder);
  // What reads one case after another (reading/CaseReading.h) asks for.
  template <bool kWatched>
  struct CaseEngine;
  // Cases of the batch, as many as are wanted.
  std::uint32_t WantedCases() const SF_REQUIRES(fRole, fHolder);
  // Goes to the next record of the case in hand; false when the batch has no more.
  template <bool kWatched>
  bool NextRecord() SF_REQUIRES(fRole, fHolder);
  // Makes fRecord and, where it is cut by delimiters, fSplitter ready; returns the record as it
  // stands in the batch.
  std::string_view StartNextRecord() SF_REQUIRES(fRole, fHolder);
  template <bool kWatched>
  void ConvertColumn(std::string_view field, const ColumnTask& task) SF_REQUIRES(fRole, fHolder);
  void StoreMissing(const FieldTask& task, std::uint32_t line) SF_REQUIRES(fRole, fHolder);
  void PrepareWatch() SF_REQUIRES(fRole, fHolder);
  // The record has been converted.
  void EndWatched(std::string_view raw) SF_REQUIRES(fRole, fHolder);
  // fRecord with its place becomes fWatched. `raw`: as it stands in the batch.
  void TakeWatched(std::string_view raw) SF_REQUIRES(fRole, fHolder);
  void MakeProduct() SF_REQUIRES(fRole, fHolder);
  // Makes fSplitter ready for the next record of the text, which becomes fRecord; returns it as it
  // stands in the batch.
  std::string_view StartRecord(bool byteText) SF_REQUIRES(fRole, fHolder);
  template <bool kWatched>
  void ConvertRecord() SF_REQUIRES(fRole, fHolder);
  template <bool kWatched>
  void DetectRecord() SF_REQUIRES(fRole, fHolder);
  // Cuts the record's next fields, at most `wanted`, into fFields; returns how many.
  std::size_t GetNextVars(std::size_t wanted) SF_REQUIRES(fRole) {
    return fSplitter.Cut(fFields.data(), std::min(wanted, fFields.size()));
  }
  // Fields of the record that are cut at once are views of it, but perhaps the last one; and
  // whether the first `cut` of fFields, at least one, all are, and have no qualifiers that somebody
  // is told of.
  bool CutsViews() const SF_REQUIRES(fRole) {
    return fTextMarked && !fPlan.fieldRules.leadingSpaces() && !fPlan.fieldRules.multipleSpaces();
  }
  bool AreViews(std::size_t cut) const SF_REQUIRES(fRole, fHolder) {
    const std::string_view last = fFields[cut - 1];
    return !fSplitter.MetQuotes() && (last.data() == nullptr || fRecords.Contains(last));
  }
  template <bool kWatched>
  void ConvertVar(std::string_view field, const FieldTask& task) SF_REQUIRES(fRole, fHolder);
  void SetFittingValue(std::string_view text, const FieldTask& task) SF_REQUIRES(fRole, fHolder);
  void SetColumnValue(std::string_view text, const FieldTask& task) SF_REQUIRES(fRole, fHolder);
  template <bool kWatched>
  void AutoDetectVar(std::string_view field, TxtWzVar& counters, DetectionEvidence* evidence)
      SF_REQUIRES(fRole, fHolder);
  void NoteFlag(BatchNote::Kind kind, std::uint32_t variable) SF_REQUIRES(fRole, fHolder);
  // Raises fCommand to at least `command`.
  void RaiseCommand(Command command);

  // Constant after construction.
  const WorkerPlan& fPlan;
  const std::size_t fTextLimit;

  // Synchronise themselves.
  std::atomic<std::int32_t> fCommand{kNew};
  std::atomic<bool> fRunning{false};
  std::atomic<bool> fStopRequested{false};
  sfSemaphore fWorkSemaphore{0};
  sfSemaphore fDoneSemaphore{0};
  sfSemaphore fFreeSemaphore{0};
  // Held by whoever stops the worker. Taken before fStateMutex.
  sfMutex fControlMutex;
  sfMutex fStateMutex;
  State fState SF_GUARDED_BY(fStateMutex) = kAvailable;

  // Of the thread that the batches have been handed on to.
  sfThreadRole fHolder;
  // From SendBatch to WaitDone the worker's, then at most looked at until PostFree.
  RecordBatch fRecords SF_GUARDED_BY(fHolder);
  // From SendBatch to WaitDone the worker's, then the host's thread's until PostFree.
  CaseBatch fCases SF_GUARDED_BY(fHolder);

  // Of the worker's thread.
  sfThreadRole fRole;
  BatchRecords fBatchRecords SF_GUARDED_BY(fRole);
  FieldSplitter fSplitter SF_GUARDED_BY(fRole);
  std::array<std::string_view, 64> fFields SF_GUARDED_BY(fRole);
  RecordDecoder fDecoder SF_GUARDED_BY(fRole);
  // For a host that watches.
  std::unique_ptr<CaseWatch> fWatch SF_GUARDED_BY(fRole);
  PlaceWalk fPlaces SF_GUARDED_BY(fRole);
  WatchedRecord fWatched SF_GUARDED_BY(fRole);
  std::string_view fRecord SF_GUARDED_BY(fRole);
  // Where cases are not lines: the batch text can be cut by bytes; records of it behind fRecord,
  // and where it begins in the file.
  bool fByteText SF_GUARDED_BY(fRole) = false;
  // Bytes of the record before fRecord.
  std::size_t fTextOffset SF_GUARDED_BY(fRole) = 0;
  std::uint32_t fRecordsLeft SF_GUARDED_BY(fRole) = 0;
  std::int64_t fRecordPosition SF_GUARDED_BY(fRole) = 0;
  std::optional<RegExMappings> fRegEx SF_GUARDED_BY(fRole);
  std::optional<DetectionCounters> fCounters SF_GUARDED_BY(fRole);
  std::unique_ptr<ColumnCounter> fColumnCounter SF_GUARDED_BY(fRole);
  // fSplitter knows the batch text as one of bytes; a record that was decoded makes it forget.
  bool fTextMarked SF_GUARDED_BY(fRole) = false;
  std::uint32_t fConvertIndex SF_GUARDED_BY(fRole) = 0;
  unsigned char* fCurrentCase SF_GUARDED_BY(fRole) = nullptr;
  // Two for each variable: the batch has a note that its flag was set.
  std::vector<std::uint8_t> fFlagNoted SF_GUARDED_BY(fRole);
};

}  // namespace textwizard
