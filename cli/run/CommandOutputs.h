// The files that one command writes.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "HostFramework/DataSource.h"
#include "cli/run/RunOptions.h"
#include "library/outputs/CaseBatch.h"
#include "library/outputs/CaseWriter.h"
#include "library/outputs/OutputFile.h"

namespace cli {

// Opened before anything is read, so that nobody waits for cases that cannot be written; what was
// not published is removed. One thread.
class CommandOutputs {
 public:
  // The files that the options name for command `number`.
  CommandOutputs(const RunOptions& options, int number) : options_(options), number_(number) {}

  // False when one cannot be written; then *error says so.
  bool Open(std::string* error);
  // Writes the header of the cases; after Open.
  void Begin(const QANT_DataSource& source);
  void Write(const OBS* obs) {
    if (batch_) batch_->Add(obs);
  }
  // Writes what is still kept of the cases.
  void Flush() {
    if (batch_) batch_->Flush();
  }
  // Time that was spent in the writer of the cases.
  double seconds() const { return batch_ ? batch_->seconds() : 0; }
  // The file of cases that can no longer be written; null while all is well.
  const library::OutputFile* failed() const {
    return cases_ != nullptr && !cases_->ok() ? cases_.get() : nullptr;
  }
  // Writes the dictionary and gives all files their names, once all are complete. The file that
  // failed; null when none did.
  const library::OutputFile* Publish(const QANT_DataSource& source, const std::string& dataFile,
                                     long long cases);

 private:
  bool Open(const std::string& name, std::unique_ptr<library::OutputFile>* file,
            std::string* error) const;

  const RunOptions& options_;
  const int number_;
  // Each uses those before it.
  std::unique_ptr<library::OutputFile> cases_;
  std::unique_ptr<library::OutputFile> dictionary_;
  std::unique_ptr<library::CaseWriter> writer_;
  std::optional<library::CaseBatch> batch_;
};

}  // namespace cli
