#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"

#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedManager.h"
#include "reading/ImportSource.h"

namespace textwizard {

QANT_TextWizardMultiThreadedIterator::QANT_TextWizardMultiThreadedIterator(
    const ImportSource& source, OBS* obs, bool detection)
    : QANT_InputCaseIterator(source, obs),
      fSavedDecimalChar(source.decimalCharacter()),
      fManager(std::make_unique<QANT_TextWizardMultiThreadedManager>(source, *this, detection,
                                                                     fSavedDecimalChar.found())) {
  if (!detection) fManager->Start();
}

QANT_TextWizardMultiThreadedIterator::~QANT_TextWizardMultiThreadedIterator() = default;

bool QANT_TextWizardMultiThreadedIterator::IsSeekOK() { return fManager->IsSeekOK(); }

bool QANT_TextWizardMultiThreadedIterator::Seek(long long n) { return fManager->Seek(n); }

long long QANT_TextWizardMultiThreadedIterator::Tell() const { return fManager->Tell(); }

bool QANT_TextWizardMultiThreadedIterator::Next() { return fManager->Next(); }

void QANT_TextWizardMultiThreadedIterator::Commit() { fManager->Commit(); }

void QANT_TextWizardMultiThreadedIterator::SetDacAdapter(DACAdapterBase* adapter) {
  fManager->SetDacAdapter(adapter);
}

std::int64_t QANT_TextWizardMultiThreadedIterator::PerformAutoDetection(
    TxtWzVar* const* variables, std::size_t count, DetectionEvidence* evidence) {
  return fManager->PerformAutoDetection(variables, count, evidence);
}

}  // namespace textwizard
