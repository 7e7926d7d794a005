// The reader's side of a pass: cuts the file into batches of records and fills the slots of the
// ring with them, one after another. Makes the workers, and owns them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "HostFramework/Threads.h"
#include "TxtWzMultiThreadMgr/RecordBatch.h"
#include "TxtWzMultiThreadMgr/TextDataIteratorThread.h"
#include "TxtWzMultiThreadMgr/WorkerPlan.h"
#include "TxtWzMultiThreadMgr/WorkerRing.h"
#include "reading/FieldCounter.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"

namespace textwizard {

class ImportSource;

class RingReader {
 public:
  // On the host's thread, as long as the reader thread does not run. Source, plan and ring outlive
  // it; the plan is constant from Run on. The ring has failed when the file cannot be opened once
  // more. Throws only when memory runs out.
  RingReader(const ImportSource& source, const WorkerPlan& plan, WorkerRing& ring);
  // The zero bytes that records lose are kept for the plan's places. Likewise.
  void KeepNuls();

  // The whole pass, on the reader thread, once; the workers have ended when it returns. Throws
  // nothing.
  void Run();

 private:
  static constexpr std::size_t kUsedUp = SIZE_MAX;
  // A record that goes through the ring in parts.
  static constexpr std::size_t kLongRecord = std::size_t{1} << 20;
  // Behind the first batches of a pass, which get all workers going, a batch has room for so much
  // text, at least, where its records need not be those that detection merges one batch of: a
  // quarter of the hand-overs.
  static constexpr std::int64_t kFirstBatches = 8;
  static constexpr std::size_t kLaterBatchText = 500000;

  void WalkRing() SF_REQUIRES(fRole);
  void ReadFirstRecord() SF_REQUIRES(fRole);
  // The same where values run across lines: the line where they begin is a record already.
  void ReadFirstFields() SF_REQUIRES(fRole);
  // Reads the record that is to be added next; fPending tells whether there is one.
  void ReadRecord() SF_REQUIRES(fRole);
  // A worker for the slot, started; null, with the pass given up, when that is not possible.
  TextDataIteratorThread* MakeWorker(std::size_t slot) SF_REQUIRES(fRole);
  // The text that an ordinary batch for the worker has room for.
  std::size_t BatchText(const TextDataIteratorThread& worker) const SF_REQUIRES(fRole);
  // Puts as many records as fit into fBatch, whose text is for `worker`; false when there is no
  // memory for it.
  bool FillBatch(const TextDataIteratorThread& worker) SF_REQUIRES(fRole);
  bool AppendPending() SF_REQUIRES(fRole);
  // The same, with more room where the batch must not end.
  bool TakePending() SF_REQUIRES(fRole);
  // Fills it with whole cases of records, or of fields that run across records.
  void FillWithRecords() SF_REQUIRES(fRole);
  void FillWithFields() SF_REQUIRES(fRole);
  // Adds a run and its fields.
  void AppendFields() SF_REQUIRES(fRole);
  // Fields of the pending record from byte *offset on, as many as the batch takes; the offset
  // becomes the one behind them, or kUsedUp.
  std::size_t CountPending(std::size_t* offset) SF_REQUIRES(fRole);
  // Batches have parts of the pending record.
  bool IsSliced() SF_REQUIRES(fRole);
  // The batch ends within a case.
  bool IsWithinCase() const SF_REQUIRES(fRole) {
    return fPlan.fieldsPerCase > 0 ? fFields % fPlan.fieldsPerCase != 0
                                   : fBatch.recordCount() % fPlan.recordsPerCase != 0;
  }
  // Most records that a run may add.
  std::uint32_t RunLimit() const SF_REQUIRES(fRole);
  // Hands fBatch to the worker; false when that has been stopped.
  bool SendBatch(TextDataIteratorThread& worker) SF_REQUIRES(fRole);
  // The pass cannot go on: what has been read is delivered, then the host's thread reports it.
  void GiveUp() SF_REQUIRES(fRole);

  const ImportSource& fSource;
  const WorkerPlan& fPlan;
  WorkerRing& fRing;

  // The reader thread's; whoever makes this object, before.
  sfThreadRole fRole;
  RecordReader fReader SF_GUARDED_BY(fRole);
  RecordDecoder fDecoder SF_GUARDED_BY(fRole);
  std::vector<std::unique_ptr<TextDataIteratorThread>> fWorkers SF_GUARDED_BY(fRole);
  bool fPending SF_GUARDED_BY(fRole) = false;
  std::string_view fRecord SF_GUARDED_BY(fRole);
  // The pending record did not fit an empty batch: the next one is made for it.
  bool fOversize SF_GUARDED_BY(fRole) = false;
  // The batch was given more room to end its last case.
  bool fGrown SF_GUARDED_BY(fRole) = false;
  // Where values run across records: fields of the batch's cases, and the byte of the pending
  // record's host text behind its fields in earlier batches.
  std::unique_ptr<FieldCounter> fCounter SF_GUARDED_BY(fRole);
  std::size_t fFields SF_GUARDED_BY(fRole) = 0;
  std::size_t fFieldOffset SF_GUARDED_BY(fRole) = 0;
  // There was no memory for the record that follows.
  bool fLacksMemory SF_GUARDED_BY(fRole) = false;
  // Read while its slot is still being converted.
  RecordBatch fBatch SF_GUARDED_BY(fRole);
  std::int64_t fCasesSent SF_GUARDED_BY(fRole) = 0;
  std::int64_t fBatchesSent SF_GUARDED_BY(fRole) = 0;
  std::size_t fInFlight SF_GUARDED_BY(fRole) = 0;
  NulRuns fNuls SF_GUARDED_BY(fRole);
};

}  // namespace textwizard
