// Reads the cases of several data files, each by its own command, as those of one data set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "library/files/DataSetPlan.h"
#include "library/files/DataSetSource.h"
#include "library/files/FilePlace.h"
#include "library/import/CommandImport.h"
#include "library/import/ImportMessages.h"
#include "library/import/ImportStats.h"
#include "library/outputs/CaseSink.h"
#include "library/parts/PartOptions.h"
#include "library/report/ImportWatch.h"
#include "library/report/PassAccount.h"
#include "library/report/ProblemSink.h"

namespace library {

// One of the commands.
struct DataSetCommand {
  // The data file, for people (UTF-8), and as it is named (host text).
  std::string name;
  std::string file;
  std::vector<embedded::CommandToken> tokens;
  // What the host has to be while it is read, and how the file is shown.
  HostNeeds host;
  RewritingOptions rewriting;
  std::string shownMark;
  std::optional<StandIns> standIns;
  // The file has to be as it was, where that is known.
  std::optional<FileState> state;
};

// Those of the files of a plan that are read.
std::vector<DataSetCommand> CommandsOf(const DataSetPlan& plan);

struct DataSetImportOptions {
  int workers = 0;                // conversion threads; below 1 for one per processor
  InputFiles* files = nullptr;    // opens the data files; outlives the import
  std::int64_t partBytes = 0;     // each file part after part; 0: at once
  std::string sourceColumn = {};  // a last variable that has each case's file; empty for none
  WatchSettings watch = {};       // without rejects and evidence; qualifiers as each command says
  bool digest = false;
  // Reads each file once more, on the other engine, and compares.
  bool verify = false;
};

// The variables of all commands in the order in which they are met, and the cases in the order of
// the commands. Sets the host for each command. One thread at a time; nothing is thrown: what goes
// wrong is a message that names the file.
class DataSetImport {
 public:
  // `messages` outlives this object.
  DataSetImport(std::vector<DataSetCommand> commands, const DataSetImportOptions& options,
                ImportMessages& messages);
  ~DataSetImport();

  // Makes the dictionary, for which every command is run without reading cases. Once. Done, failed
  // or interrupted.
  ImportEnd Open();
  // After Open has done.
  const QANT_DataSource& source() const { return source_; }
  const std::vector<DataSetVariable>& variables() const { return source_.variables(); }
  std::size_t files() const { return commands_.size(); }

  struct Outputs {
    // Get cases of source(); those of all files, unless Finish of theirs says otherwise.
    std::vector<CaseSink*> cases;
    std::vector<ProblemSink*> problems;
    // Asked now and then, after so many cases of all files; false stops the reading.
    std::function<bool(long long cases)> goesOn;
  };
  // Reads all cases. After Open has done, once.
  ImportEnd Read(const Outputs& outputs);
  // Reads those of file number `file` (from 0), or of one part of it, which are behind
  // `casesBefore` cases. After Open has done.
  ImportEnd ReadFile(std::size_t file, const PartOptions& parts, std::int64_t casesBefore,
                     const Outputs& outputs, FileAccount* account);

  // What was read: each file, and all of them. Problems name their files.
  const std::vector<FileAccount>& accounts() const { return accounts_; }
  PassAccount TotalAccount() const;
  // Why files are read as one part each though there are several: a sentence; else empty.
  const std::string& uncut() const { return uncut_; }
  const ImportStats& stats() const { return stats_; }

 private:
  class FileMessages;
  class FileReading;

  bool Prepare(const DataSetCommand& command);
  bool StaysAsItWas(const DataSetCommand& command);
  void PostError(const std::string& text);

  const std::vector<DataSetCommand> commands_;
  const DataSetImportOptions options_;
  ImportMessages& messages_;
  DataSetSource source_;
  std::vector<FileAccount> accounts_;
  std::string uncut_;
  ImportStats stats_;
};

}  // namespace library
