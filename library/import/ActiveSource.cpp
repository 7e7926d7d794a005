#include "library/import/ActiveSource.h"

#include "entry/CommandEntry.h"
#include "source/QANT_TextWizardSrc.h"

namespace library {

ActiveSource::ActiveSource(DACAdapterBase& adapter) {
  if (!ProcessDACSyntax(&adapter)) return;
  source_ = ServerDataManager::GetInstance()->Find("");
  const auto& made = dynamic_cast<const textwizard::QANT_TextWizardSrc&>(*source_);
  if (made.settings().importMode == textwizard::kImportPercent) {
    sampleFraction_ = made.settings().sampleFraction;
  }
}

ActiveSource::~ActiveSource() { ServerDataManager::GetInstance()->Remove(""); }

}  // namespace library
