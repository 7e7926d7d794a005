// The adapter of an import: it hands over the command, and looks at the data file first.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "library/input/InputFiles.h"
#include "library/report/ObservedAdapter.h"

namespace library {

// As ObservedAdapter. Standard input, pipes and compressed files are read to their end first. A
// data file that is known to be no text is not given to the component: its path becomes one that
// does not exist and says what the file is.
class ImportAdapter : public ObservedAdapter {
 public:
  // `files` outlives the adapter and every data source made from it.
  ImportAdapter(std::vector<embedded::CommandToken> tokens, ErrorCallback callback, int workers,
                ImportObserver* observer, InputFiles& files)
      : ObservedAdapter(std::move(tokens), callback, workers, observer), files_(files) {}

  const std::string& ConvertFilePath(std::string& result, const std::string& input,
                                     bool unquoted) override;

  // What would help with a file that is no text: a sentence without a full stop; else empty.
  const std::string& fileWayOut() const { return fileWayOut_; }
  // A sentence (host text) on a file that hardly is a text; empty for others.
  const std::string& fileAdvice() const { return fileAdvice_; }

 private:
  InputFiles& files_;
  std::string fileWayOut_;
  std::string fileAdvice_;
};

}  // namespace library
