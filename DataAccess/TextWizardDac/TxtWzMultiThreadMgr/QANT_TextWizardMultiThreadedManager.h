// The engine of the multi-threaded iterator: a reader thread (this object), which cuts the file
// into batches of records, a ring of workers, which convert them or count them for type detection,
// and the host's thread, which takes the results out of the ring in the order of the file.
//
// The reader fills the slots of the ring one after another and fills a slot again once the host's
// thread has given it back; the host's thread goes round in the same order. So the cases keep their
// order, and in memory is one batch a slot, the next one of the reader, and the one that the host's
// thread delivers.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/DataSource.h"
#include "HostFramework/Messages.h"
#include "HostFramework/Threads.h"
#include "TxtWzMultiThreadMgr/TextDataIteratorThread.h"
#include "TxtWzMultiThreadMgr/WorkerPlan.h"
#include "model/UndecodableWarnings.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"
#include "watch/PassTeller.h"

namespace textwizard {

class ImportSource;

// Every operation but threadMain is called on the host's thread.
class QANT_TextWizardMultiThreadedManager : public sfThread {
 public:
  // `decimalCharacter`: the host's, in detection mode, by which numbers are told. Where the file
  // cannot be opened once more, the pass fails when it is asked for. Throws only when memory runs
  // out.
  QANT_TextWizardMultiThreadedManager(const ImportSource& source, QANT_InputCaseIterator& iterator,
                                      bool detection, int decimalCharacter);
  // Stops and joins all threads.
  ~QANT_TextWizardMultiThreadedManager() override;

  // Starts the reader. Conversion mode, once; detection starts it itself.
  void Start();

  // False when the host takes cases by the batch.
  bool IsSeekOK() const { return !fPlan.batchObserver; }
  // Cases before n are read and dropped by the following Next; a position already passed makes it
  // answer true without moving.
  bool Seek(long long n);
  long long Tell() const { return fCaseNumber; }
  void Commit() {}
  // Copies the next case into the iterator's case buffer. At the end of the data, and when the pass
  // cannot go on, false; the latter posts one error.
  bool Next();

  // Adds up the counters of every AUTO variable among `variables`. Returns the number of records
  // examined, one more after an interruption; throws the integer 2269 when the pass could not be
  // completed. Detection mode, once.
  std::int64_t PerformAutoDetection(TxtWzVar* const* variables, std::size_t count,
                                    DetectionEvidence* evidence);
  // Gives messages, progress and interruption a way to the host when the iterator has no monitor.
  void SetDacAdapter(DACAdapterBase* adapter);

  void threadMain() override;

 private:
  // Rises only.
  enum ReaderState : std::int32_t {
    kReading = 0,
    kStopping = 1,  // asked to stop, or the pass is over
    kEnded = 2,
  };

  // --- Host's thread
  // Sets up what the host's observer wants. Before threads run.
  void Watch();
  bool MoreCases() const;
  // What Next does behind its guards. Throws when memory runs out.
  bool ReadOn();
  bool ReadCase();
  bool ReadBatch();
  // No further case comes; posts the error when the pass was given up.
  void EndPass();
  // The next converted case, or null when there is none; reports what arose from its record.
  const OBS* GetNextObsArray();
  // Adds up batch after batch; true only when the user interrupted.
  bool GetAutoNext();
  // Takes the next batch out of the ring into fTaken, once its worker has finished it; false at the
  // end of the pass.
  bool TakeBatch();
  // The worker whose batch is next, once it has finished it; null at the end of the pass.
  TextDataIteratorThread* WaitForBatch();
  // Gives the current slot back to the reader and goes to the next one.
  void ReleaseSlot(TextDataIteratorThread& worker);
  void TakeNotes();
  // Tells who watches that the pass begins; the reader has come to the first record.
  void BeginTelling();
  void EndTelling(bool complete, bool dataEnded);
  void ReportCaseCount(std::int32_t count);
  ErrorMonitor* Monitor() const;

  // --- Reader thread (ReaderThread.cpp)
  void WalkRing();
  void ReadFirstRecord();
  // Reads the record that is to be added next; fPending tells whether there is one.
  void ReadRecord();
  // A worker for the slot, started; null, with the pass given up, when that is not possible.
  TextDataIteratorThread* MakeWorker(std::size_t slot);
  // Puts as many records as fit into fBatch, whose text is for `worker`; false when there is no
  // memory for it.
  bool FillBatch(const TextDataIteratorThread& worker);
  bool AppendPending();
  // Hands fBatch to the worker; false when that has been stopped.
  bool SendBatch(TextDataIteratorThread& worker);
  // The pass cannot go on: what has been read is delivered, then the host's thread reports it.
  void GiveUp();

  // --- Any thread
  void RaiseReaderState(ReaderState state);

  // Constant after construction.
  const ImportSource& fSource;
  QANT_InputCaseIterator& fIterator;
  // Null when nobody watches; the workers look whether more problems are to be told.
  std::unique_ptr<PassTeller> fTeller;
  // Constant while threads run.
  WorkerPlan fPlan;

  // Synchronise themselves.
  std::atomic<std::int32_t> fReaderState{kReading};
  // The pass was given up. Set before the end of the pass can be seen.
  std::atomic<bool> fFailed{false};
  // The ring. A slot is null until the reader needs it for the first time.
  std::vector<std::atomic<TextDataIteratorThread*>> fThreads;
  // Posted for every worker that the reader makes and at the end of its pass.
  sfSemaphore fStartSemaphore{0};

  // Reader thread only, until it is joined.
  RecordReader fReader;
  RecordDecoder fDecoder;
  std::vector<std::unique_ptr<TextDataIteratorThread>> fWorkers;
  bool fPending = false;
  std::string_view fRecord;
  // The pending record did not fit an empty batch: the next one is made for it.
  bool fOversize = false;
  // Read while its slot is still being converted.
  RecordBatch fBatch;
  std::int64_t fCasesSent = 0;
  std::size_t fInFlight = 0;
  NulRuns fNuls;

  // Written by the reader thread before the first batch is sent, and before its pass ends; read by
  // the host's thread after that.
  std::int64_t fMarkBytes = 0;
  std::int64_t fPreambleEnd = 0;
  std::int64_t fDataEnd = -1;

  // Host's thread only.
  std::size_t fCurrentThread = 0;
  // The batch that is being delivered while its slot is filled again.
  CaseBatch fTaken;
  std::int64_t fCaseNumber = 0;
  std::int64_t fTargetCase = 0;
  bool fEndOfData = false;
  TxtWzVar* const* fAutoVariables = nullptr;
  DetectionEvidence* fAutoEvidence = nullptr;
  std::unique_ptr<QantErrorMonitor> fOwnedErrorMonitor;
  UndecodableWarnings fUndecodableWarnings;
};

}  // namespace textwizard
