// The engine of the multi-threaded iterator: a reader thread (this object, by its RingReader),
// which cuts the file into batches of records, a ring of workers, which convert them or count them
// for type detection, and the host's thread, which takes the results out of the ring in the order
// of the file.
//
// The reader fills the slots of the ring one after another and fills a slot again once the host's
// thread has given it back; the host's thread goes round in the same order. So the cases keep their
// order, and in memory is one batch a slot, the next one of the reader, and the one that the host's
// thread delivers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/DataSource.h"
#include "HostFramework/Messages.h"
#include "HostFramework/Threads.h"
#include "TxtWzMultiThreadMgr/CaseBatch.h"
#include "TxtWzMultiThreadMgr/RingReader.h"
#include "TxtWzMultiThreadMgr/WorkerPlan.h"
#include "TxtWzMultiThreadMgr/WorkerRing.h"
#include "model/UndecodableWarnings.h"
#include "watch/PassTeller.h"

namespace textwizard {

class ImportSource;

// Every operation but threadMain is called on the host's thread.
class QANT_TextWizardMultiThreadedManager : public sfThread {
 public:
  // `decimalCharacter`: the host's, in detection mode, by which numbers are told. `anyArrangement`:
  // conversion mode also of cases that are not lines, of which nothing is converted else. Where the
  // file cannot be opened once more, the pass fails when it is asked for. Throws only when memory
  // runs out.
  QANT_TextWizardMultiThreadedManager(const ImportSource& source, QANT_InputCaseIterator& iterator,
                                      bool detection, int decimalCharacter,
                                      bool anyArrangement = false);
  // Stops and joins all threads.
  ~QANT_TextWizardMultiThreadedManager() override;

  // Starts the reader. Conversion mode, once; detection starts it itself.
  void Start();
  // The pass has been given up; what had been read before is still delivered.
  bool failed() const { return fRing.fFailed.load(); }

  // False when the host takes cases by the batch.
  bool IsSeekOK() const { return !fPlan.batchObserver; }
  // Cases before n are read and dropped by the following Next; a position already passed makes it
  // answer true without moving.
  bool Seek(long long n);
  long long Tell() const {
    fHost.Assume();
    return fCaseNumber;
  }
  void Commit() {}
  // Of the case delivered last, where cases are not lines and not taken by the batch: the file
  // position of the record read last for it.
  std::int64_t recordPosition() const;
  // The observer is told no more of the pass.
  void LeaveTelling();
  // Copies the next case into the iterator's case buffer. At the end of the data, and when the pass
  // cannot go on, false; the latter posts one error.
  bool Next();

  // Adds up the counters of every AUTO variable among `variables`. Returns the number of records
  // examined, one more after an interruption; throws the integer 2269 when the pass could not be
  // completed. Detection mode, once.
  std::int64_t PerformAutoDetection(TxtWzVar* const* variables, std::size_t count,
                                    DetectionEvidence* evidence);
  // Detection mode of fixed columns instead (ColumnDetection.h): says for what. Once, before
  // TakeBatches.
  void DetectColumns(const std::vector<TxtWzVar*>& variables, bool evidence, KnownStates& known);
  // Starts the threads and gives `take` one batch after another in the order of the file, with the
  // records that it was made of, until it returns false. False then, too, and when the pass could
  // not be completed. Throws what `take` throws.
  bool TakeBatches(const std::function<bool(const CaseBatch&, const RecordBatch&)>& take);
  // Constant while threads run.
  const WorkerPlan& plan() const { return fPlan; }
  // Gives messages, progress and interruption a way to the host when the iterator has no monitor.
  void SetDacAdapter(DACAdapterBase* adapter);

  // The reader thread.
  void threadMain() override { fReader.Run(); }

 private:
  // --- Host's thread
  // Sets up what the host's observer wants. Before threads run.
  void Watch() SF_REQUIRES(fHost);
  bool MoreCases() const SF_REQUIRES(fHost);
  // What Next does behind its guards. Throws when memory runs out.
  bool ReadOn() SF_REQUIRES(fHost);
  bool ReadCase() SF_REQUIRES(fHost);
  bool ReadBatch() SF_REQUIRES(fHost);
  // No further case comes; posts the error when the pass was given up.
  void EndPass() SF_REQUIRES(fHost);
  // The next converted case, or null when there is none; reports what arose from its record.
  const OBS* GetNextObsArray() SF_REQUIRES(fHost);
  // Adds up batch after batch; true only when the user interrupted.
  bool GetAutoNext() SF_REQUIRES(fHost);
  // Takes the next batch out of the ring into fTaken, once its worker has finished it; false at the
  // end of the pass.
  bool TakeBatch() SF_REQUIRES(fHost);
  // The worker whose batch is next, once it has finished it; null at the end of the pass.
  TextDataIteratorThread* WaitForBatch() SF_REQUIRES(fHost);
  // Gives the current slot back to the reader and goes to the next one.
  void ReleaseSlot(TextDataIteratorThread& worker) SF_REQUIRES(fHost);
  void TakeNotes() SF_REQUIRES(fHost);
  // Tells who watches that the pass begins; the reader has come to the first record.
  void BeginTelling() SF_REQUIRES(fHost);
  void EndTelling(bool complete, bool dataEnded) SF_REQUIRES(fHost);
  void ReportCaseCount(std::int32_t count) SF_REQUIRES(fHost);
  ErrorMonitor* Monitor() const SF_REQUIRES(fHost);

  // Of the host's thread.
  sfThreadRole fHost;

  // Constant after construction.
  const ImportSource& fSource;
  QANT_InputCaseIterator& fIterator;
  // Null when nobody watches; the workers look whether more problems are to be told.
  std::unique_ptr<PassTeller> fTeller SF_PT_GUARDED_BY(fHost);
  // Constant while threads run.
  WorkerPlan fPlan;

  WorkerRing fRing;
  RingReader fReader;

  std::size_t fCurrentThread SF_GUARDED_BY(fHost) = 0;
  // The batch that is being delivered while its slot is filled again.
  CaseBatch fTaken SF_GUARDED_BY(fHost);
  std::int64_t fCaseNumber SF_GUARDED_BY(fHost) = 0;
  std::int64_t fTargetCase SF_GUARDED_BY(fHost) = 0;
  bool fEndOfData SF_GUARDED_BY(fHost) = false;
  TxtWzVar* const* fAutoVariables SF_GUARDED_BY(fHost) = nullptr;
  DetectionEvidence* fAutoEvidence SF_GUARDED_BY(fHost) = nullptr;
  std::unique_ptr<QantErrorMonitor> fOwnedErrorMonitor SF_GUARDED_BY(fHost);
  UndecodableWarnings fUndecodableWarnings SF_GUARDED_BY(fHost);
};

}  // namespace textwizard
