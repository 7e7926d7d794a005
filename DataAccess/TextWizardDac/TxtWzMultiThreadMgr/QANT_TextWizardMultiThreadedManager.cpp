#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedManager.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include "model/MessageText.h"
#include "reading/ImportSource.h"

namespace textwizard {
namespace {

// Two at least: one batch is converted while another one is taken.
std::size_t WorkerCount(const ImportSource& source) {
  const int wanted = source.workerCount() < 1 ? getLogicalCPUCount() : source.workerCount();
  return static_cast<std::size_t>(std::max(wanted, 2));
}

// Whether strtod reads the other decimal character than `decimalCharacter`.
bool SwapsDecimal(int decimalCharacter) {
  const bool readsComma = std::strtod("4,56", nullptr) > 4.0;
  return decimalCharacter != (readsComma ? ',' : '.');
}

}  // namespace

QANT_TextWizardMultiThreadedManager::QANT_TextWizardMultiThreadedManager(
    const ImportSource& source, QANT_InputCaseIterator& iterator, bool detection,
    int decimalCharacter, bool anyArrangement)
    : sfThread(1),
      fSource(source),
      fIterator(iterator),
      fPlan(source),
      fRing(WorkerCount(source)),
      fReader(source, fPlan, fRing) {
  fHost.Assume();
  if (detection) {
    DetectionRules& rules = fPlan.detectionRules;
    rules = DetectionRules(source.settings(), DetectionPass::kWorker);
    rules.swapDecimal = SwapsDecimal(decimalCharacter);
    rules.decimalCharacter = static_cast<char>(decimalCharacter);
  } else {
    fPlan.Convert(anyArrangement);
    Watch();
    if (!fPlan.caseIsLine && !fPlan.batchObserver) fPlan.keepsPlaces = fPlan.keepsPositions = true;
  }
}

void QANT_TextWizardMultiThreadedManager::Watch() {
  ImportObserver* const observer = fSource.observer();
  if (!observer) return;
  if (observer->WantsProblems()) {
    const bool fixedColumns = fSource.settings().arrangement == kFixedColumns;
    fTeller = std::make_unique<PassTeller>(*observer, fSource.GetNVariables(), fixedColumns);
    fPlan.teller = fTeller.get();
    fPlan.keepsPlaces = true;
    fPlan.TakeNulls(observer->NullTexts());
    fReader.KeepNuls();
  }
  if (observer->WantsBatches()) {
    fPlan.batchObserver = observer;
    const ImportSettings& settings = fSource.settings();
    if (settings.importMode == kImportFirst) fPlan.caseLimit = settings.caseLimit;
  }
}

QANT_TextWizardMultiThreadedManager::~QANT_TextWizardMultiThreadedManager() {
  fHost.Assume();
  EndTelling(false, false);
  fRing.RaiseReaderState(WorkerRing::kStopping);
  for (const auto& slot : fRing.fThreads) {
    if (TextDataIteratorThread* worker = slot.load()) worker->Stop();
  }
  join();
}

void QANT_TextWizardMultiThreadedManager::Start() {
  if (!fRing.fFailed.load() && activate()) return;
  fRing.fFailed.store(true);
  fRing.RaiseReaderState(WorkerRing::kEnded);
}

std::int64_t QANT_TextWizardMultiThreadedManager::recordPosition() const {
  fHost.Assume();
  return fTaken.positions[fTaken.taken() - 1];
}

void QANT_TextWizardMultiThreadedManager::LeaveTelling() {
  fHost.Assume();
  EndTelling(false, false);
}

bool QANT_TextWizardMultiThreadedManager::Seek(long long n) {
  fHost.Assume();
  fTargetCase = n;
  return true;
}

bool QANT_TextWizardMultiThreadedManager::MoreCases() const {
  return fSource.settings().AllowsCaseAfter(fCaseNumber);
}

bool QANT_TextWizardMultiThreadedManager::Next() {
  fHost.Assume();
  if (fCaseNumber > fTargetCase) {
    fTargetCase = fCaseNumber;
    return true;
  }
  if (fTargetCase != fCaseNumber) EndTelling(false, false);
  // Nothing is thrown to the host, even when there is no memory for a message.
  try {
    return ReadOn();
  } catch (...) {
    fRing.fFailed.store(true);
  }
  fTargetCase = fCaseNumber;
  EndTelling(false, false);
  try {
    EndPass();
  } catch (...) {
    // Not even the report could be made: the end is all that is left to tell.
  }
  return false;
}

bool QANT_TextWizardMultiThreadedManager::ReadOn() {
  if (fPlan.batchObserver ? ReadBatch() : ReadCase()) {
    fTargetCase = fCaseNumber;
    return true;
  }
  fTargetCase = fCaseNumber;
  // A pass that met a failure is not a complete one.
  const bool complete = !fEndOfData || !fRing.fFailed.load();
  EndTelling(complete, fEndOfData && complete);
  if (complete) fSource.NotePassEnd(fCaseNumber, Monitor());
  return false;
}

bool QANT_TextWizardMultiThreadedManager::ReadCase() {
  while (!fEndOfData && MoreCases()) {
    const OBS* const nextCase = GetNextObsArray();
    if (!nextCase) {
      EndPass();
      break;
    }
    std::memcpy(fIterator.GetObsPointer(), nextCase, fPlan.caseBytes);
    if (fTargetCase < ++fCaseNumber) return true;
  }
  return false;
}

bool QANT_TextWizardMultiThreadedManager::ReadBatch() {
  while (!fEndOfData && MoreCases()) {
    if (fTaken.failed()) fRing.fFailed.store(true);
    if (fTaken.failed() || !TakeBatch()) {
      EndPass();
      break;
    }
    const std::uint32_t count = fTaken.recordCount();
    if (count == 0) continue;
    fTaken.TakeAll();
    TakeNotes();
    fPlan.batchObserver->OnProduct(std::move(fTaken.product), fTaken.cases(), count,
                                   fTaken.firstCase());
    if (fTeller) fTeller->TellCases(count);
    std::memcpy(fIterator.GetObsPointer(), fTaken.lastCase(), fPlan.caseBytes);
    fCaseNumber += count;
    return true;
  }
  return false;
}

void QANT_TextWizardMultiThreadedManager::EndPass() {
  fEndOfData = true;
  ErrorMonitor* const monitor = fRing.fFailed.load() ? Monitor() : nullptr;
  if (monitor) monitor->Report(ReadFailedError(fSource.GetFileSpec()));
}

const OBS* QANT_TextWizardMultiThreadedManager::GetNextObsArray() {
  do {
    if (const OBS* const nextCase = fTaken.GetNextOBSPointer()) {
      TakeNotes();
      if (fTeller) fTeller->TellCases(fTaken.taken());
      return nextCase;
    }
    if (fTaken.failed()) {
      fRing.fFailed.store(true);
      return nullptr;
    }
  } while (TakeBatch());
  return nullptr;
}

bool QANT_TextWizardMultiThreadedManager::TakeBatch() {
  TextDataIteratorThread* const worker = WaitForBatch();
  if (fTeller) {
    fTeller->EndBatch(fTaken.runLines);
    BeginTelling();
  }
  if (!worker) return false;
  worker->TakeBatch(fTaken);
  // Nothing behind a failure is wanted.
  if (!fTaken.failed()) ReleaseSlot(*worker);
  if (fTeller) fTeller->StartBatch(*fTaken.watched, fTaken.firstCase());
  return true;
}

void QANT_TextWizardMultiThreadedManager::BeginTelling() {
  fTeller->Begin(fRing.fMarkBytes, fRing.fPreambleEnd);
}

void QANT_TextWizardMultiThreadedManager::EndTelling(bool complete, bool dataEnded) {
  if (!fTeller) return;
  // Where no case is allowed, nobody has waited for the reader so far.
  if (complete && fCaseNumber == 0 && !fEndOfData) TakeBatch();
  fTeller->End(complete, dataEnded ? fRing.fDataEnd : -1, fSource.stream().Size());
}

TextDataIteratorThread* QANT_TextWizardMultiThreadedManager::WaitForBatch() {
  for (;;) {
    TextDataIteratorThread* const worker = fRing.fThreads[fCurrentThread].load();
    if (!worker) {
      // An empty slot is the end only once the reader has finished; before, its worker is coming.
      if (fRing.fReaderState.load() != WorkerRing::kReading) return nullptr;
      fRing.fStartSemaphore.wait();
      continue;
    }
    if (worker->stopRequested()) return nullptr;
    worker->WaitDone();
    worker->SetState(TextDataIteratorThread::kConsumed);
    if (worker->state() != TextDataIteratorThread::kStopped) return worker;
  }
}

void QANT_TextWizardMultiThreadedManager::ReleaseSlot(TextDataIteratorThread& worker) {
  fCurrentThread = (fCurrentThread + 1) % fRing.fThreads.size();
  worker.SetState(TextDataIteratorThread::kFreed);
  worker.PostFree();
  worker.SetState(TextDataIteratorThread::kAvailable);
}

void QANT_TextWizardMultiThreadedManager::TakeNotes() {
  while (const BatchNote* const note = fTaken.NextNote()) {
    TxtWzVar& variable = *fSource.variables()[note->variable];
    switch (note->kind) {
      case BatchNote::kMissingStored:
        variable.missingStored = true;
        break;
      case BatchNote::kStringTruncated:
        variable.stringTruncated = true;
        break;
    }
  }
  while (const UndecodableNotes::Note* const note = fTaken.NextUndecodable()) {
    if (ErrorMonitor* const monitor = Monitor()) {
      fUndecodableWarnings.Report(*monitor, fTaken.CaseNumber(note->record), note->run.position,
                                  note->run.count);
    }
  }
}

std::int64_t QANT_TextWizardMultiThreadedManager::PerformAutoDetection(
    TxtWzVar* const* variables, std::size_t count, DetectionEvidence* evidence) {
  fHost.Assume();
  fAutoVariables = variables;
  fAutoEvidence = evidence;
  fPlan.Detect(variables, count);
  fPlan.evidence = fPlan.keepsPlaces = evidence != nullptr;
  Start();
  while (MoreCases()) {
    if (!GetAutoNext()) {
      fEndOfData = true;
      break;
    }
    if (fTargetCase < ++fCaseNumber) break;
  }
  fTargetCase = fCaseNumber;
  if (fEndOfData && fRing.fFailed.load()) throw int{kReadFailed};
  return fCaseNumber;
}

bool QANT_TextWizardMultiThreadedManager::GetAutoNext() {
  std::int64_t lastThousands = 0;
  // Of the runs in all batches before.
  std::int64_t lines = 0;
  while (TakeBatch()) {
    for (std::size_t i = 0; i < fTaken.counters.size(); ++i) {
      const std::uint32_t variable = fPlan.autoVariables[i];
      DetectionCounters::Merge(fTaken.counters[i], *fAutoVariables[variable]);
      if (fAutoEvidence) fAutoEvidence[variable].Merge(fTaken.evidence[i], lines);
    }
    lines += fTaken.runLines;
    fTaken.TakeAll();
    TakeNotes();
    fCaseNumber += fTaken.recordCount();
    if (fTaken.failed()) {
      fRing.fFailed.store(true);
      break;
    }
    if (fCaseNumber / 1000 <= lastThousands) continue;
    lastThousands = fCaseNumber / 1000;
    ReportCaseCount(static_cast<std::int32_t>(lastThousands * 1000));
    bool attention = false;
    if (fOwnedErrorMonitor) fOwnedErrorMonitor->AttentionCheck(&attention);
    if (attention) {
      ReportCaseCount(-1);
      return true;
    }
  }
  ReportCaseCount(-1);
  return false;
}

void QANT_TextWizardMultiThreadedManager::DetectColumns(const std::vector<TxtWzVar*>& variables,
                                                        bool evidence, KnownStates& known) {
  fPlan.DetectColumns(variables, known);
  fPlan.evidence = fPlan.keepsPlaces = evidence;
}

bool QANT_TextWizardMultiThreadedManager::TakeBatches(
    const std::function<bool(const CaseBatch&, const RecordBatch&)>& take) {
  fHost.Assume();
  Start();
  while (TextDataIteratorThread* const worker = WaitForBatch()) {
    worker->TakeBatch(fTaken);
    if (fTaken.failed() || !take(fTaken, worker->records())) return false;
    ReleaseSlot(*worker);
  }
  return !fRing.fFailed.load();
}

void QANT_TextWizardMultiThreadedManager::SetDacAdapter(DACAdapterBase* adapter) {
  fHost.Assume();
  if (!adapter || Monitor()) return;
  fOwnedErrorMonitor = std::make_unique<QantErrorMonitor>(adapter->GetErrorCallback());
  fOwnedErrorMonitor->SetContext(adapter->GetAdapterContext());
}

ErrorMonitor* QANT_TextWizardMultiThreadedManager::Monitor() const {
  if (fOwnedErrorMonitor) return fOwnedErrorMonitor.get();
  return fIterator.GetErrorMonitor();
}

void QANT_TextWizardMultiThreadedManager::ReportCaseCount(std::int32_t count) {
  ErrorMonitor* const monitor = Monitor();
  if (!monitor) return;
  // One display for the whole process: passes on different threads take turns.
  static sfMutex mutex;
  const sfGuard guard(mutex);
  // Without its sign: the end of the display shows as 4294967295.
  monitor->Report({std::to_string(static_cast<std::uint32_t>(count)), kMessageProgress, 0});
}

}  // namespace textwizard
