// The files that one command writes.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "HostFramework/DataSource.h"
#include "cli/run/RunOptions.h"
#include "library/outputs/CaseBatch.h"
#include "library/outputs/CasesFile.h"
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
  // Begins the files of cases; after Open. Throws std::runtime_error with a sentence for what one
  // of them cannot hold.
  void Begin(const QANT_DataSource& source);
  void Write(const OBS* obs) {
    for (library::CaseBatch& batch : batches_) batch.Add(obs);
  }
  // Hands over what is still kept of the cases.
  void Flush();
  // Time that was spent in the writers of the cases.
  double seconds() const;
  // A file of cases that can no longer be written; null while all is well.
  const library::OutputFile* failed() const;
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
  std::vector<std::unique_ptr<library::CasesFile>> cases_;
  std::unique_ptr<library::OutputFile> dictionary_;
  std::vector<library::CaseSink*> sinks_;
  std::vector<library::CaseBatch> batches_;
};

}  // namespace cli
