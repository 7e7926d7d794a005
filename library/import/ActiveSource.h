// The data source that one command makes.
#pragma once

#include <optional>
#include <string>

#include "HostFramework/DACAdapter.h"
#include "reading/ImportSource.h"

namespace library {

// Runs one command and is its data source, which the host keeps under a name of its own as long as
// this object lives. Commands that are run on several threads wait for one another.
class ActiveSource {
 public:
  // Runs the command whose tokens `adapter` has; its messages go to the adapter's callback. The
  // adapter outlives this object.
  explicit ActiveSource(DACAdapterBase& adapter);
  // Destroys the data source.
  ~ActiveSource();
  ActiveSource(const ActiveSource&) = delete;
  ActiveSource& operator=(const ActiveSource&) = delete;

  // The name of the source in the host.
  std::string Name() const;
  // The source; null when the command failed, and then an error was posted.
  const textwizard::ImportSource* get() const { return source_; }
  // The share of the cases (0 to 1) that the command keeps by IMPORTCASE PERCENT, which iterators
  // leave to whoever reads them; nothing when it keeps them all.
  std::optional<double> sampleFraction() const { return sampleFraction_; }

 private:
  const textwizard::ImportSource* source_ = nullptr;
  std::optional<double> sampleFraction_;
};

}  // namespace library
