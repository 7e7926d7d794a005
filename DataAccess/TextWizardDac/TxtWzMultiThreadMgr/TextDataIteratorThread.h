// A conversion worker: a thread with one batch of records, which it turns into cases, or counts for
// type detection.
//
// A batch passes from the reader thread (which fills the text) through the worker to the host's
// thread (which takes the cases) and back. Three semaphores hand it on: work, done and free.
// Whoever was handed the batch owns every member that is marked so; nobody else touches them.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/Threads.h"
#include "TxtWzMultiThreadMgr/WorkerPlan.h"
#include "command/TxtWzVar.h"
#include "detection/DetectionCounters.h"
#include "detection/RegExMappings.h"
#include "reading/FieldSplitter.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"

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

  // Bytes of batch text, at least; more when the first record is long.
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
  State state();
  // Sets one of the states but kStopped, unless the slot is stopped.
  void SetState(State state);
  // Ends the worker once it has finished the batch that it is converting, and wakes whoever waits
  // for it. Only the first call on a running worker does something.
  void Stop();

  // --- Reader thread, while the slot is available: the batch text
  // The text that an ordinary batch has room for.
  std::size_t textLimit() const { return fTextLimit; }
  // Starts a batch with room for `bytes`; false when there is no memory for it.
  bool BeginBatch(std::size_t bytes);
  // Adds a record; false when it does not fit.
  bool AppendRecord(std::string_view record) {
    if (record.size() + 1 >= fTextCapacity - fTextUsed) return false;
    std::memcpy(fText.get() + fTextUsed, record.data(), record.size());
    fTextUsed += record.size();
    fText[fTextUsed++] = '\n';
    ++fRecordCount;
    return true;
  }
  // Adds the records that `reader` can copy at once, at most `most`; returns how many.
  std::uint32_t AppendRun(RecordReader& reader, std::uint32_t most) {
    std::uint32_t count = 0;
    fTextUsed += reader.ReadRun(fText.get() + fTextUsed, fTextCapacity - fTextUsed, most, &count);
    fRecordCount += count;
    return count;
  }
  // Hands the batch to the worker; false when that has been stopped. `firstCase`: cases before the
  // batch. `decoded`: the records are host text already.
  bool SendBatch(std::int64_t firstCase, bool decoded);
  void WaitFree() { fFreeSemaphore.wait(); }

  // --- Host's thread, between WaitDone and PostFree: what has become of the batch
  void WaitDone() { fDoneSemaphore.wait(); }
  void PostFree() { fFreeSemaphore.post(); }
  std::uint32_t recordCount() const { return fRecordCount; }
  // Conversion: the next case, or null after the last one.
  const OBS* GetNextOBSPointer();
  // The next note of a record not after the case taken last; null when there is none.
  const BatchNote* NextNote() {
    if (fNextNote == fNotes.size() || fNotes[fNextNote].record >= fConsumeIndex) return nullptr;
    return &fNotes[fNextNote++];
  }
  // Number of the case, from 1, that `note` belongs to.
  std::int64_t CaseNumber(const BatchNote& note) const { return fFirstCase + note.record + 1; }
  // Detection: takes all records at once. The counters of each AUTO variable.
  const std::vector<TxtWzVar>& TakeCounters();
  // The worker ran out of memory: the batch holds only the cases before that.
  bool failed() const { return fFailed; }

 private:
  void OnUndecodable(std::size_t position) override;
  void ConvertBatch();
  void PrepareBatch();
  // Makes fSplitter ready for the record of `text` at `cursor`; returns where the next one begins.
  std::size_t StartRecord(std::string_view text, std::size_t cursor, bool byteText);
  void ConvertRecord();
  void DetectRecord();
  // Cuts the record's next fields, at most `wanted`, into fFields; returns how many.
  std::size_t GetNextVars(std::size_t wanted) {
    return fSplitter.Cut(fFields.data(), std::min(wanted, fFields.size()));
  }
  void ConvertVar(std::string_view field, const FieldTask& task);
  void SetColumnValue(std::string_view text, const FieldTask& task);
  // The text is a part of the batch text, behind which kReadableCells more bytes can be read.
  bool IsInBatch(std::string_view text) const {
    const auto address = [](const char* at) { return reinterpret_cast<std::uintptr_t>(at); };
    return address(text.data()) - address(fText.get()) < fTextUsed;
  }
  void AutoDetectVar(std::string_view field);
  void NoteFlag(BatchNote::Kind kind, std::uint32_t variable);
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
  // Guarded by fStateMutex.
  State fState = kAvailable;

  // Owned by whoever has the batch.
  std::unique_ptr<char[]> fText;
  std::size_t fTextCapacity = 0;
  std::size_t fTextUsed = 0;
  std::uint32_t fRecordCount = 0;
  std::int64_t fFirstCase = 0;
  bool fDecoded = false;
  std::unique_ptr<OBS[]> fCases;
  std::size_t fCaseCells = 0;
  std::uint32_t fConsumeIndex = 0;
  std::vector<BatchNote> fNotes;
  std::size_t fNextNote = 0;
  std::vector<TxtWzVar> fAutoVars;
  bool fFailed = false;

  // The worker's own.
  FieldSplitter fSplitter;
  std::array<std::string_view, 64> fFields;
  RecordDecoder fDecoder;
  std::optional<RegExMappings> fRegEx;
  std::optional<DetectionCounters> fCounters;
  // fSplitter knows the batch text as one of bytes; a record that was decoded makes it forget.
  bool fTextMarked = false;
  std::uint32_t fConvertIndex = 0;
  std::size_t fAutoSeen = 0;
  unsigned char* fCurrentCase = nullptr;
  // Two for each variable: the batch has a note that its flag was set.
  std::vector<std::uint8_t> fFlagNoted;
};

}  // namespace textwizard
