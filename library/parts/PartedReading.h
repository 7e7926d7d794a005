// Reads the cases of a data file stretch after stretch.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "library/parts/CasePlan.h"
#include "library/parts/PartOptions.h"
#include "library/parts/StretchDevice.h"
#include "library/parts/StretchObserver.h"
#include "reading/ImportSource.h"

namespace library {

// Goes with one data source, whose file is opened under ScopedStretches of view() and whose
// observer is observer(). Host's thread.
class PartedReading {
 public:
  // `observer` may be null and outlives this object.
  PartedReading(const PartOptions& options, ImportObserver* observer)
      : options_(options), view_(std::make_shared<StretchView>()), observer_(observer) {}

  std::shared_ptr<const StretchView> view() const { return view_; }
  ImportObserver& observer() { return observer_; }

  // Finds the stretches; once the source is there and before its first iterator. False when the
  // file cannot be read or the command cannot be read in parts; *problem is then a sentence
  // (UTF-8), empty when the file is at fault.
  bool Plan(const textwizard::ImportSource& source, std::string* problem);
  // Why all cases are read as one part though there are several: a sentence (UTF-8); else empty.
  const std::string& uncut() const { return plan_.uncut; }
  // There is more than one stretch, or one that is not the whole.
  bool isCut() const;

  // A pass over all stretches begins. No iterator of the source lives.
  void Begin();
  // There is a stretch to read, once the iterator that reads the one before has come to its end.
  bool HasNext() const { return next_ < plan_.stretches.size() && observer_.complete(); }
  // The next iterator of the source reads the next stretch. No iterator of the source lives.
  void BeginNext();

 private:
  bool PlanSingle(const textwizard::ImportSource& source, std::string* problem);

  const PartOptions options_;
  const std::shared_ptr<StretchView> view_;
  StretchObserver observer_;
  CasePlan plan_;
  StretchObserver::Whole whole_;
  StretchView::Head head_;
  std::size_t next_ = 0;
};

}  // namespace library
