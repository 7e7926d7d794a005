// The iterator that the host sees when a delimited file is read with several threads: a facade over
// the manager, which owns the reader thread and the conversion workers. Pins the host's decimal
// character while it lives. All operations on the host's thread.
#pragma once

#include <cstdint>
#include <memory>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/DataSource.h"
#include "reading/DecimalCharacterPin.h"

namespace textwizard {

class QANT_TextWizardMultiThreadedManager;
class ImportSource;
class TxtWzVar;
class DetectionEvidence;

class QANT_TextWizardMultiThreadedIterator : public QANT_InputCaseIterator {
 public:
  // `obs` may be null when `detection`. In conversion mode the threads start at once. A file that
  // cannot be opened again fails the pass, not the making: Next posts the error. Throws only when
  // memory runs out.
  QANT_TextWizardMultiThreadedIterator(const ImportSource& source, OBS* obs, bool detection);
  ~QANT_TextWizardMultiThreadedIterator() override;

  bool IsSeekOK() override;
  bool Seek(long long n) override;
  long long Tell() const override;
  bool Next() override;
  void Commit() override;

  // Where progress and interruption of a detection pass go.
  void SetDacAdapter(DACAdapterBase* adapter);
  // `evidence`: one for each of the variables, null when nobody wants them.
  // Counts every AUTO variable of `variables` (the plan's slots, one per variable) over the whole
  // file, or as far as the user let it. Returns the number of records examined, one more after an
  // interruption; throws the integer 2269 when the pass could not be completed. Detection mode,
  // once.
  std::int64_t PerformAutoDetection(TxtWzVar* const* variables, std::size_t count,
                                    DetectionEvidence* evidence = nullptr);

 private:
  // Outlives the manager: the workers read numbers by the character until they have ended.
  const DecimalCharacterPin fSavedDecimalChar;
  std::unique_ptr<QANT_TextWizardMultiThreadedManager> fManager;
};

}  // namespace textwizard
