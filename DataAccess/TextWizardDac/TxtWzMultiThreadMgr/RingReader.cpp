#include "TxtWzMultiThreadMgr/RingReader.h"

#include <algorithm>
#include <new>

#include "HostFramework/Text.h"
#include "TxtWzMultiThreadMgr/PatientWait.h"
#include "reading/ImportSource.h"

namespace textwizard {

RingReader::RingReader(const ImportSource& source, const WorkerPlan& plan, WorkerRing& ring)
    : fSource(source),
      fPlan(plan),
      fRing(ring),
      fReader(source.stream()),
      fDecoder(source.settings().encoding) {
  // The stream's copy may lack a file descriptor, which looks like an empty file later.
  if (!fReader.SeekBegin()) fRing.fFailed.store(true);
  fReader.SetStop(&fRing.fReaderState);
}

void RingReader::KeepNuls() {
  fRole.Assume();
  fReader.KeepNuls(&fNuls);
}

void RingReader::Run() {
  fRole.Assume();
  if (fRing.fReaderState.load() == WorkerRing::kReading) {
    ReadFirstRecord();
    WalkRing();
    // Whoever waits for a slot that will never be filled.
    fRing.fStartSemaphore.post();
    for (const auto& worker : fWorkers) worker->Stop();
    for (const auto& worker : fWorkers) {
      for (PatientWait wait; !worker->exited();) wait.Pause();
    }
  }
  fRing.RaiseReaderState(WorkerRing::kEnded);
}

void RingReader::WalkRing() {
  for (std::size_t slot = 0; fRing.fReaderState.load() == WorkerRing::kReading;
       slot = (slot + 1) % fRing.fThreads.size()) {
    TextDataIteratorThread* worker = fRing.fThreads[slot].load();
    const bool isNew = !worker;
    if (isNew && fPending) worker = MakeWorker(slot);
    if (worker) {
      const bool filled = fPending && FillBatch(*worker);
      if (!isNew) {
        worker->WaitFree();
        --fInFlight;
      }
      if (filled && SendBatch(*worker)) continue;
      worker->Stop();
    }
    if (fInFlight == 0) fRing.RaiseReaderState(WorkerRing::kStopping);
  }
}

void RingReader::ReadFirstRecord() {
  try {
    if (!fReader.SeekBegin()) return GiveUp();
    fReader.HandleByteOrderMark();
    fRing.fMarkBytes = fReader.position();
    const ImportSettings& settings = fSource.settings();
    if (fPlan.fieldsPerCase > 0) {
      ReadFirstFields();
    } else {
      fReader.SkipLines(settings.arrangement == kDelimitedCount ? 0 : 1, settings.firstCase);
      fRing.fPreambleEnd = fReader.position();
    }
  } catch (...) {
    return GiveUp();
  }
  if (!fPending) ReadRecord();
}

void RingReader::ReadFirstFields() {
  const std::int64_t firstLine = fSource.settings().firstCase;
  const bool found = fReader.SkipLines(0, firstLine) && firstLine > 0;
  fRing.fPreambleEnd = found ? fReader.recordPosition() : fReader.position();
  fCounter = std::make_unique<FieldCounter>(fPlan.fieldRules);
  fRecord = fReader.record();
  fPending = found && !fRecord.empty();
}

void RingReader::ReadRecord() {
  try {
    fPending = fReader.Read(fPlan.keepsEmpty);
    if (!fPending) {
      if (fReader.failed()) {
        GiveUp();
      } else {
        fRing.fDataEnd = fReader.position();
      }
      return;
    }
    fRecord = fReader.record();
    if (fReader.isUtf16()) fRecord = fDecoder.Decode16(fRecord, fReader.mark());
  } catch (...) {
    // A record that memory cannot hold.
    fLacksMemory = true;
    GiveUp();
  }
}

TextDataIteratorThread* RingReader::MakeWorker(std::size_t slot) {
  TextDataIteratorThread* worker = nullptr;
  try {
    fWorkers.push_back(std::make_unique<TextDataIteratorThread>(fPlan, fRecord.size()));
    worker = fWorkers.back().get();
  } catch (...) {
    GiveUp();
    return nullptr;
  }
  if (!worker->activate()) {
    fWorkers.pop_back();
    GiveUp();
    return nullptr;
  }
  for (PatientWait wait; !worker->running();) wait.Pause();
  // A new worker is made for the record that it gets first.
  fOversize = fRecord.size() + 1 >= worker->textLimit();
  fRing.fThreads[slot].store(worker);
  fRing.fStartSemaphore.post();
  return worker;
}

std::size_t RingReader::BatchText(const TextDataIteratorThread& worker) const {
  const bool anyCut = !fPlan.detection || fPlan.known;
  if (!anyCut || fBatchesSent < kFirstBatches) return worker.textLimit();
  return std::max(worker.textLimit(), kLaterBatchText);
}

bool RingReader::FillBatch(const TextDataIteratorThread& worker) {
  const std::size_t limit = BatchText(worker);
  const std::size_t room = fOversize ? std::max(limit, fRecord.size() + 2) : limit;
  if (!fBatch.Begin(room)) {
    GiveUp();
    return false;
  }
  try {
    if (fPlan.keepsPlaces) fBatch.KeepPlaces();
    if (fPlan.keepsEmpty) fBatch.KeepEmpty();
    fGrown = false;
    fPlan.fieldsPerCase > 0 ? FillWithFields() : FillWithRecords();
  } catch (...) {
    // No memory for the places.
    GiveUp();
    return false;
  }
  fOversize = fBatch.recordCount() == 0;
  fBatch.End(fCasesSent, fReader.isUtf16(), fReader.mark());
  if (!fPlan.caseIsLine) {
    const std::size_t whole = fPlan.fieldsPerCase > 0 ? fFields / fPlan.fieldsPerCase
                                                      : fBatch.recordCount() / fPlan.recordsPerCase;
    // Of a case that could not be read to its end nobody is told.
    const bool begun = IsWithinCase() && !fLacksMemory;
    fBatch.SetCases(static_cast<std::uint32_t>(whole + (begun ? 1 : 0)), fReader.recordPosition());
  }
  return true;
}

void RingReader::FillWithRecords() {
  while (fPending && fBatch.recordCount() < fPlan.maxRecords && TakePending()) {
    fBatch.AppendRun(fReader, RunLimit());
    ReadRecord();
  }
}

// Runs are counted as a whole. So that a batch ends where a case does, its last records are read
// one by one; the one that the last case ends in begins the next batch, too, unless it is used up.
// Of a very long one each batch has the part that it needs.
void RingReader::FillWithFields() {
  fFields = 0;
  fBatch.SetFieldOffset(fFieldOffset, IsSliced());
  while (fPending && (fFields < fPlan.maxFields || IsWithinCase())) {
    const std::string_view record = fRecord;
    const bool sliced = IsSliced();
    std::size_t behind = fFieldOffset;
    std::size_t fields = 0;
    if (sliced) {
      fields = CountPending(&behind);
      fRecord = record.substr(fFieldOffset, behind - fFieldOffset);
    }
    const bool taken = TakePending();
    fRecord = record;
    if (!taken) return;
    fFields += sliced ? fields : CountPending(&behind);
    fFieldOffset = behind == kUsedUp ? 0 : behind;
    if (fFieldOffset > 0) return;
    if (!fGrown && fFields < fPlan.maxFields) AppendFields();
    ReadRecord();
  }
}

std::size_t RingReader::CountPending(std::size_t* offset) {
  const std::size_t ofCase = fFields % fPlan.fieldsPerCase;
  const bool endsCase = fGrown || fFields >= fPlan.maxFields;
  const std::size_t most = endsCase ? fPlan.fieldsPerCase - ofCase : fPlan.maxFields - fFields;
  const std::string_view text = fDecoder.Decode8(fRecord);
  const std::size_t count = fCounter->CountRecord(text, most, offset);
  if (*offset == text.size()) *offset = kUsedUp;
  return count;
}

bool RingReader::IsSliced() {
  return !fPlan.teller && fRecord.size() > kLongRecord && fDecoder.Keeps(fRecord);
}

void RingReader::AppendFields() {
  const std::size_t begin = fBatch.text().size();
  // A field takes a byte at least.
  fBatch.AppendRun(fReader, UINT32_MAX, fPlan.maxFields - fFields);
  std::string_view run = fBatch.text().substr(begin);
  if (fDecoder.Keeps(run)) {
    fFields += fCounter->CountLines(run);
    return;
  }
  while (!run.empty()) {
    const std::size_t length = FindLineEnd8(run);
    std::size_t offset = 0;
    fFields += fCounter->CountRecord(fDecoder.Decode8(run.substr(0, length)), SIZE_MAX, &offset);
    run.remove_prefix(std::min(length + 1, run.size()));
  }
}

bool RingReader::TakePending() {
  const bool within = IsWithinCase();
  if (fGrown && !within) return false;
  if (AppendPending()) return true;
  if (!within) return false;
  fGrown = true;
  const std::size_t used = fBatch.text().size();
  if (!fBatch.Grow(std::max(2 * used, used + fRecord.size() + 2))) throw std::bad_alloc();
  return AppendPending();
}

std::uint32_t RingReader::RunLimit() const {
  if (!fGrown) return fPlan.maxRecords - fBatch.recordCount();
  return IsWithinCase() ? fPlan.recordsPerCase - fBatch.recordCount() % fPlan.recordsPerCase : 0;
}

bool RingReader::AppendPending() {
  const std::size_t at = fBatch.text().size();
  if (!fBatch.Append(fRecord)) return false;
  if (!fPlan.keepsPlaces) return true;
  std::string_view raw;
  // Where every unit has become one byte of UTF-8, it was ASCII.
  if (fReader.isUtf16() && !(qUTF8mode() && 2 * fRecord.size() == fReader.record().size())) {
    raw = fReader.record();
  }
  fBatch.AddPlace(at, fReader.place(), fNuls, raw);
  return true;
}

bool RingReader::SendBatch(TextDataIteratorThread& worker) {
  TextDataIteratorThread::State state = worker.state();
  // The host's thread makes a slot available right after it has said that it is free.
  for (PatientWait wait; state == TextDataIteratorThread::kFreed; state = worker.state()) {
    wait.Pause();
  }
  const std::uint32_t cases = fBatch.caseCount();
  if (state == TextDataIteratorThread::kStopped ||
      fRing.fReaderState.load() != WorkerRing::kReading || !worker.SendBatch(fBatch)) {
    return false;
  }
  ++fInFlight;
  ++fBatchesSent;
  fCasesSent += cases;
  return true;
}

void RingReader::GiveUp() {
  fRing.fFailed.store(true);
  fPending = false;
}

}  // namespace textwizard
