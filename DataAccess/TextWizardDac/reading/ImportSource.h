// What an import reads from and works by: the interface that iterators, workers and the map see of
// the data source, so that they need not know the class that makes them.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/DataSource.h"
#include "HostFramework/FileStream.h"
#include "HostFramework/ImportObserver.h"
#include "model/ImportSettings.h"
#include "model/TxtWzVar.h"
#include "reading/CaseFeed.h"

namespace textwizard {

// Outlives all that it is lent to. What the references lead to stays where it is; settings and
// variables are constant once the plan has executed, but for the flags of the variables.
class ImportSource : public QANT_DataSource {
 public:
  using QANT_DataSource::QANT_DataSource;

  virtual const ImportSettings& settings() const = 0;
  // In file order, skipped ones included. Iterators set flags of the variables.
  virtual const std::vector<std::unique_ptr<TxtWzVar>>& variables() const = 0;
  // Not owned, may be null.
  virtual DACAdapterBase* adapter() const = 0;
  // Conversion threads; below 1 for one per processor.
  virtual int workerCount() const = 0;
  // '.' or ',': the host's decimal character when the source was made.
  virtual char decimalCharacter() const = 0;
  // The open file. Readers take copies, which read on their own.
  virtual const QANT_FileStream& stream() const = 0;
  // Who watches imports; not owned, null for nobody.
  virtual ImportObserver* observer() const { return nullptr; }
  // Positions of cases. Synchronises itself.
  virtual QANT_SparseFileIndex& index() const = 0;

  // An iterator for type detection, owned by the caller; `obs` may be null. Throws when memory runs
  // out. Host's thread.
  virtual QANT_InputCaseIterator* MakeAutoDetectIterator(OBS* obs) const = 0;
  // The cases of a whole pass, for an iterator of one thread over the source that has a case buffer
  // and delivers them from the first one on; null when the iterator reads them itself. Throws when
  // memory runs out. Host's thread.
  virtual std::unique_ptr<CaseFeed> MakeCaseFeed(QANT_InputCaseIterator& /*iterator*/) const {
    return nullptr;
  }
  // A pass has reached the end of the data after `cases` cases: when no earlier pass found so many,
  // keeps the count and, when the command asked for it, writes the variable map to `monitor`.
  // Host's thread.
  virtual void NotePassEnd(std::int64_t cases, ErrorMonitor* monitor) const = 0;
};

}  // namespace textwizard
