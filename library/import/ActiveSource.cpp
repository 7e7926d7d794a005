#include "library/import/ActiveSource.h"

#include "entry/CommandEntry.h"

namespace library {

ActiveSource::ActiveSource(DACAdapterBase& adapter) {
  if (!ProcessDACSyntax(&adapter)) return;
  source_ =
      &dynamic_cast<const textwizard::ImportSource&>(*ServerDataManager::GetInstance()->Find(""));
  if (source_->settings().importMode == textwizard::kImportPercent) {
    sampleFraction_ = source_->settings().sampleFraction;
  }
}

ActiveSource::~ActiveSource() { ServerDataManager::GetInstance()->Remove(""); }

}  // namespace library
