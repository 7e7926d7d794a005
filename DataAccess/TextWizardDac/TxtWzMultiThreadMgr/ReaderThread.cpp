// The reader thread's side of the manager: one pass over the file into the ring of workers.
#include <algorithm>
#include <new>

#include "TxtWzMultiThreadMgr/PatientWait.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedManager.h"
#include "reading/ImportSource.h"

namespace textwizard {

void QANT_TextWizardMultiThreadedManager::threadMain() {
  if (fReaderState.load() == kReading) {
    ReadFirstRecord();
    WalkRing();
    // Whoever waits for a slot that will never be filled.
    fStartSemaphore.post();
    for (const auto& worker : fWorkers) worker->Stop();
    for (const auto& worker : fWorkers) {
      for (PatientWait wait; !worker->exited();) wait.Pause();
    }
  }
  RaiseReaderState(kEnded);
}

void QANT_TextWizardMultiThreadedManager::WalkRing() {
  for (std::size_t slot = 0; fReaderState.load() == kReading; slot = (slot + 1) % fThreads.size()) {
    TextDataIteratorThread* worker = fThreads[slot].load();
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
    if (fInFlight == 0) RaiseReaderState(kStopping);
  }
}

void QANT_TextWizardMultiThreadedManager::ReadFirstRecord() {
  try {
    if (!fReader.SeekBegin()) return GiveUp();
    fReader.HandleByteOrderMark();
    fMarkBytes = fReader.position();
    const ImportSettings& settings = fSource.settings();
    fReader.SkipLines(settings.arrangement == kDelimitedCount ? 0 : 1, settings.firstCase);
    fPreambleEnd = fReader.position();
  } catch (...) {
    return GiveUp();
  }
  ReadRecord();
}

void QANT_TextWizardMultiThreadedManager::ReadRecord() {
  try {
    fPending = fReader.Read(false);
    if (!fPending) {
      if (fReader.failed()) {
        GiveUp();
      } else {
        fDataEnd = fReader.position();
      }
      return;
    }
    fRecord = fReader.record();
    if (fReader.isUtf16()) fRecord = fDecoder.Decode16(fRecord, fReader.mark());
  } catch (...) {
    // A record that memory cannot hold.
    GiveUp();
  }
}

TextDataIteratorThread* QANT_TextWizardMultiThreadedManager::MakeWorker(std::size_t slot) {
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
  fThreads[slot].store(worker);
  fStartSemaphore.post();
  return worker;
}

bool QANT_TextWizardMultiThreadedManager::FillBatch(const TextDataIteratorThread& worker) {
  const std::size_t room =
      fOversize ? std::max(worker.textLimit(), fRecord.size() + 2) : worker.textLimit();
  if (!fBatch.Begin(room)) {
    GiveUp();
    return false;
  }
  try {
    if (fPlan.keepsPlaces) fBatch.KeepPlaces();
    const auto full = [this] { return fBatch.recordCount() >= fPlan.maxRecords; };
    while (fPending && !full() && AppendPending()) {
      fBatch.AppendRun(fReader, fPlan.maxRecords - fBatch.recordCount());
      ReadRecord();
    }
  } catch (...) {
    // No memory for the places.
    GiveUp();
    return false;
  }
  fOversize = fBatch.recordCount() == 0;
  fBatch.End(fCasesSent, fReader.isUtf16(), fReader.mark());
  return true;
}

bool QANT_TextWizardMultiThreadedManager::AppendPending() {
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

bool QANT_TextWizardMultiThreadedManager::SendBatch(TextDataIteratorThread& worker) {
  TextDataIteratorThread::State state = worker.state();
  // The host's thread makes a slot available right after it has said that it is free.
  for (PatientWait wait; state == TextDataIteratorThread::kFreed; state = worker.state()) {
    wait.Pause();
  }
  const std::uint32_t records = fBatch.recordCount();
  if (state == TextDataIteratorThread::kStopped || fReaderState.load() != kReading ||
      !worker.SendBatch(fBatch)) {
    return false;
  }
  ++fInFlight;
  fCasesSent += records;
  return true;
}

void QANT_TextWizardMultiThreadedManager::GiveUp() {
  fFailed.store(true);
  fPending = false;
}

}  // namespace textwizard
