#include "library/import/ActiveSource.h"

#include <fmt/format.h>

#include "HostFramework/Threads.h"
#include "entry/CommandEntry.h"

namespace library {
namespace {

// Guards the host's list of sources.
sfMutex sources;

}  // namespace

ActiveSource::ActiveSource(DACAdapterBase& adapter) {
  const sfGuard guard(sources);
  if (!ProcessDACSyntax(&adapter)) return;
  ServerDataManager& manager = *ServerDataManager::GetInstance();
  QANT_DataSource* const made = manager.Find("");
  source_ = &dynamic_cast<const textwizard::ImportSource&>(*made);
  // Makes room for the source of the next command.
  manager.Add(made, Name().c_str(), false);
  if (source_->settings().importMode == textwizard::kImportPercent) {
    sampleFraction_ = source_->settings().sampleFraction;
  }
}

ActiveSource::~ActiveSource() {
  const sfGuard guard(sources);
  ServerDataManager::GetInstance()->Remove(Name().c_str());
}

std::string ActiveSource::Name() const {
  return fmt::format("import {}", static_cast<const void*>(this));
}

}  // namespace library
