// The embedded host's adapter for a host that watches the import.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "HostFramework/embedded/command/Adapter.h"

namespace library {

// As embedded::Adapter. The observer outlives the adapter.
class ObservedAdapter : public embedded::Adapter, public ImportObserving {
 public:
  ObservedAdapter(std::vector<embedded::CommandToken> tokens, ErrorCallback callback, int workers,
                  ImportObserver* observer)
      : Adapter(std::move(tokens), callback, nullptr, workers, 0), observer_(observer) {}
  ImportObserver* GetImportObserver() override { return observer_; }

 private:
  ImportObserver* const observer_;
};

}  // namespace library
