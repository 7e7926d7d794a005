// The import component, loaded the way a host loads it: by its exported entry.
#pragma once

#include <string>

#include "HostFramework/DACAdapter.h"

namespace cli {

// Loads the library once; it stays loaded as long as the process, because data sources and their
// iterators are its code.
class ComponentLibrary {
 public:
  // Looks in the lib folder beside the program's own folder, then where the loader searches. False
  // when it cannot be loaded; then *error says why.
  bool Load(std::string* error);
  // Runs one command. After Load; host's thread.
  bool ProcessCommand(DACAdapterBase* adapter) const { return entry_(adapter); }

 private:
  bool (*entry_)(DACAdapterBase*) = nullptr;
};

}  // namespace cli
