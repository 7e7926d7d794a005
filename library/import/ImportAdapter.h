// The adapter of an import: it hands over the command, and looks at the data file first.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "library/report/ObservedAdapter.h"

namespace library {

// As ObservedAdapter. A data file that is known to be no text is not given to the component: its
// path becomes one that does not exist and says what the file is.
class ImportAdapter : public ObservedAdapter {
 public:
  using ObservedAdapter::ObservedAdapter;

  const std::string& ConvertFilePath(std::string& result, const std::string& input,
                                     bool unquoted) override;

  // What would help with a file that is no text: a sentence without a full stop; else empty.
  const std::string& fileWayOut() const { return fileWayOut_; }
  // A sentence (host text) on a file that hardly is a text; empty for others.
  const std::string& fileAdvice() const { return fileAdvice_; }

 private:
  std::string fileWayOut_;
  std::string fileAdvice_;
};

}  // namespace library
