#include "source/QANT_TextWizardSrc.h"

#include <cstdlib>
#include <new>
#include <string_view>

#include "HostFramework/ValueInput.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "TxtWzMultiThreadMgr/WorkerFeed.h"
#include "map/VariableMap.h"
#include "model/MessageText.h"
#include "reading/QANT_TextWizardIterator.h"

namespace textwizard {
namespace {

// The variable of the environment, and its one value, that keeps type detection on one thread.
constexpr const char* kSingleThreadVariable = "DISABLE_MULTI_THREAD_AUTO";
constexpr std::string_view kSingleThreadValue = "YES";

// Every case is noted; the index thins itself out.
constexpr std::int64_t kIndexSpacing = 1;

// What the host asks for by an adapter that is more than one.
ImportObserver* ObserverOf(DACAdapterBase* adapter) {
  auto* const observing = dynamic_cast<ImportObserving*>(adapter);
  return observing ? observing->GetImportObserver() : nullptr;
}

bool IsSingleThreadSet() {
  const char* const value = std::getenv(kSingleThreadVariable);
  return value != nullptr && value == kSingleThreadValue;
}

}  // namespace

QANT_TextWizardSrc::QANT_TextWizardSrc(const char* path, int workerCount, int hostParameter,
                                       DACAdapterBase* adapter)
    : ImportSource(nullptr),
      adapter_(adapter),
      observer_(ObserverOf(adapter)),
      workerCount_(workerCount),
      hostParameter_(hostParameter),
      decimalCharacter_(static_cast<char>(iocvgetdecchar_())),
      index_(std::make_unique<QANT_SparseFileIndex>(kIndexSpacing)) {
  OpenFile(path);
  SetFileSpec(path);
}

QANT_TextWizardSrc::~QANT_TextWizardSrc() = default;

bool QANT_TextWizardSrc::OpenFile(const char* path) {
  if (!stream_.Open(path, "", "rb")) throw int{kReadFailed};
  return true;
}

QANT_InputCaseIterator* QANT_TextWizardSrc::MakeIterator(OBS* obs) const {
  try {
    const bool oneThread = observer_ && observer_->ReadsOnOneThread();
    if (settings_.arrangement == kDelimitedLines && !oneThread) {
      return new QANT_TextWizardMultiThreadedIterator(*this, obs, false);
    }
    auto iterator = std::make_unique<QANT_TextWizardIterator>(*this, obs);
    if (obs && !oneThread) iterator->UseFeed();
    return iterator.release();
  } catch (...) {
    // Lack of memory, in whatever form a library reports it (docs/decisions.md).
    return nullptr;
  }
}

bool QANT_TextWizardSrc::DetectsOnOneThread() const {
  return IsSingleThreadSet() || (observer_ && observer_->ReadsOnOneThread());
}

QANT_InputCaseIterator* QANT_TextWizardSrc::MakeAutoDetectIterator(OBS* obs) const {
  if (IsSingleThreadSet() || settings_.arrangement != kDelimitedLines) {
    return new QANT_TextWizardIterator(*this, obs);
  }
  auto iterator = std::make_unique<QANT_TextWizardMultiThreadedIterator>(*this, obs, true);
  iterator->SetDacAdapter(adapter_);
  return iterator.release();
}

std::unique_ptr<CaseFeed> QANT_TextWizardSrc::MakeCaseFeed(QANT_InputCaseIterator& iterator) const {
  if (!WorkerPlan::Converts(*this)) return nullptr;
  auto feed = std::make_unique<WorkerFeed>(*this, iterator);
  if (!feed->started()) return nullptr;
  return feed;
}

void QANT_TextWizardSrc::SetSettings(const ImportSettings& settings) {
  settings_ = settings;
  settings_.keepsStrayQualifiers = observer_ && observer_->KeepsStrayQualifiers();
}

long long QANT_TextWizardSrc::RowCount() const { return highestCaseCount_; }

void QANT_TextWizardSrc::NotePassEnd(std::int64_t cases, ErrorMonitor* monitor) const {
  if (cases <= highestCaseCount_) return;
  highestCaseCount_ = cases;
  if (settings_.mapRequested) EmitMapOutput(monitor, *this);
}

void EmitMapOutput(ErrorMonitor* monitor, const QANT_TextWizardSrc& source) {
  EmitMapOutput(monitor, static_cast<const ImportSource&>(source));
}

}  // namespace textwizard
