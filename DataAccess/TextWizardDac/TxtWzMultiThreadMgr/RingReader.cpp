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
    fReader.SkipLines(settings.arrangement == kDelimitedCount ? 0 : 1, settings.firstCase);
    fRing.fPreambleEnd = fReader.position();
  } catch (...) {
    return GiveUp();
  }
  ReadRecord();
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

bool RingReader::FillBatch(const TextDataIteratorThread& worker) {
  const std::size_t room =
      fOversize ? std::max(worker.textLimit(), fRecord.size() + 2) : worker.textLimit();
  if (!fBatch.Begin(room)) {
    GiveUp();
    return false;
  }
  try {
    if (fPlan.keepsPlaces) fBatch.KeepPlaces();
    if (fPlan.keepsEmpty) fBatch.KeepEmpty();
    fGrown = false;
    while (fPending && fBatch.recordCount() < fPlan.maxRecords && TakePending()) {
      fBatch.AppendRun(fReader, RunLimit());
      ReadRecord();
    }
    // Of a case that could not be read to its end nobody is told.
    if (fLacksMemory && IsWithinCase()) fBatch.Drop(fBatch.recordCount() % fPlan.recordsPerCase);
  } catch (...) {
    // No memory for the places.
    GiveUp();
    return false;
  }
  fOversize = fBatch.recordCount() == 0;
  fBatch.End(fCasesSent, fReader.isUtf16(), fReader.mark());
  if (!fPlan.caseIsLine) {
    const std::uint32_t lines = fPlan.recordsPerCase;
    fBatch.SetCases(fBatch.recordCount() / lines + (IsWithinCase() ? 1 : 0),
                    fReader.recordPosition());
  }
  return true;
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
  fCasesSent += cases;
  return true;
}

void RingReader::GiveUp() {
  fRing.fFailed.store(true);
  fPending = false;
}

}  // namespace textwizard
