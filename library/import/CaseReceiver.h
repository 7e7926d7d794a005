// Who takes the cases of an import one by one.
#pragma once

#include "HostFramework/DataSource.h"

namespace library {

// On the thread of the import. What its operations throw (std::exception) fails the import.
class CaseReceiver {
 public:
  virtual ~CaseReceiver() = default;
  // Reading begins; there is memory for a case.
  virtual void Begin(const QANT_DataSource& /*source*/) {}
  // Takes a case that the command keeps; `obs` is good during the call. Not called where the import
  // has a watch whose sinks get cases by the batch.
  virtual void Take(const OBS* obs) = 0;
  // Asked every few hundred cases, or after every batch, after `taken` ones; false stops the
  // reading there.
  virtual bool GoesOn(long long /*taken*/) { return true; }
};

}  // namespace library
