// The files that one command writes.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "HostFramework/DataSource.h"
#include "cli/run/CommandReport.h"
#include "cli/run/RunOptions.h"
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
  // Who takes the cases; after Begin.
  const std::vector<library::CaseSink*>& sinks() const { return sinks_; }
  // The files of cases that have a place for problems; after Open.
  std::vector<library::CasesFile*> problemTables() const;
  // All cases were taken. What columns could not hold, which is also noted in the files that have a
  // place for it. Throws as Begin does.
  std::vector<library::Misfit> End();
  // A file of cases that can no longer be written; null while all is well.
  const library::OutputFile* failed() const;
  // After End. Writes the dictionary, also into the files of cases that have a place for it, and
  // gives all files their names, those of the report too, once all are complete. The file that
  // failed; null when none did. Throws as Begin does.
  const library::OutputFile* Publish(const QANT_DataSource& source, const std::string& dataFile,
                                     long long cases, const CommandReport& report);
  // The same of these files.
  static const library::OutputFile* Publish(const std::vector<library::OutputFile*>& files);

 private:
  bool Open(const std::string& name, std::unique_ptr<library::OutputFile>* file,
            std::string* error) const;

  const RunOptions& options_;
  const int number_;
  // Each uses those before it.
  std::vector<std::unique_ptr<library::CasesFile>> cases_;
  std::unique_ptr<library::OutputFile> dictionary_;
  std::vector<library::CaseSink*> sinks_;
};

}  // namespace cli
