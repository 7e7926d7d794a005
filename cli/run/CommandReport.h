// What the program finds out about the import of one command besides its cases: where it writes
// that, and how it tells a person.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HostFramework/DataSource.h"
#include "cli/run/ReportOptions.h"
#include "library/import/CommandImport.h"
#include "library/outputs/CasesFile.h"
#include "library/outputs/DictionaryJson.h"
#include "library/outputs/Misfits.h"
#include "library/outputs/OutputFile.h"
#include "library/report/Digest.h"
#include "library/report/ImportWatch.h"
#include "library/report/PassAccount.h"
#include "library/report/ProblemRows.h"
#include "library/report/RejectsFile.h"

namespace cli {

// A file that is no part of a data set, and why: a sentence. UTF-8.
struct LeftOutFile {
  std::string name;
  std::string why;
};

// One thread. In this order: Open; the watch given to an import, and its dictionary made; Begin,
// the pass, End; where it is to be verified BeginSecond, the second pass, EndSecond. Of several
// files that are one data set: Open, BeginFiles, their passes, EndFiles.
class CommandReport {
 public:
  // What is wanted besides what the options ask for.
  struct Wanted {
    bool evidence = false;  // somebody is to see or read what detection saw
    bool problems = false;  // every problem is told, for a table of them
  };
  // Of command `number`.
  CommandReport(const ReportOptions& options, int number, const Wanted& wanted);

  // Opens the files. False when one cannot be written; then *error says so.
  bool Open(std::string* error);
  library::ImportWatch& watch() { return watch_; }

  // The cases of `source`, which outlives this object's use, are about to be read, of `file`.
  // `sampled`: the command keeps a share of them. `tables` get the problems, too. False when the
  // data cannot be read for the rejects; then *error says so.
  bool Begin(const QANT_DataSource& source, const library::CommandImport::DataFile& file,
             bool sampled, const std::vector<library::CasesFile*>& tables, std::string* error);
  // The cases of several files, which are one to `source`, are about to be read; those that are
  // left out are problems.
  void BeginFiles(const QANT_DataSource& source, const std::vector<library::CasesFile*>& tables,
                  std::vector<LeftOutFile> leftOut);
  // Who takes their problems.
  std::vector<library::ProblemSink*> problemSinks() const;
  // What their import wants of its watches.
  library::WatchSettings watchSettings() const;
  // What they all came to; `files` and `drift` are JSON for the dictionary.
  void EndFiles(library::PassAccount account, std::string files, std::string drift);
  // What columns could not hold; before End.
  void Add(std::vector<library::Misfit> misfits);
  // The pass has ended, and its iterator is gone.
  void End();
  // The same cases are about to be read once more, on the host's thread alone where `oneThread`.
  void BeginSecond(bool sampled, bool oneThread);
  // The second pass has ended. What differs, a sentence; empty when nothing does.
  std::string EndSecond();

  // What makes the command fail although its cases were read: a ledger that does not balance,
  // problems where there must be none, rejects that could not be copied. Empty when nothing does.
  std::string Imbalance() const { return account_.ledger.Imbalance(); }
  std::string Forbidden() const;
  std::string RejectsProblem() const;

  // What --explain shows: a few lines for each AUTO variable; empty when it was not asked for.
  std::string Explained() const;
  // Cases that were read.
  std::int64_t cases() const { return account_.cases; }
  // What a person should know about an import that succeeded, a sentence each.
  std::vector<std::string> Warnings() const;
  // Problems, these warnings and the ledger, for a terminal.
  std::string Text(std::size_t terminalWidth) const;
  // "digest: HEX"; empty when none was asked for.
  std::string DigestLine() const;
  // What stands in the dictionary; uses this object.
  library::DictionaryReport ForDictionary() const;

  // The file that can no longer be written; null while all is well.
  const library::OutputFile* failed() const;
  // The files that were opened; complete after End.
  std::vector<library::OutputFile*> Files() const;

 private:
  bool Open(const std::string& name, std::unique_ptr<library::OutputFile>* file,
            std::string* error) const;
  library::ImportWatch::Outputs MakeProblemSinks(const std::vector<library::CasesFile*>& tables,
                                                 library::ProblemWriter::Files files);
  void Prepare(const library::ImportWatch::Outputs& outputs,
               const library::ImportWatch::Mode& mode);
  library::PassAccount TakeAccount();

  const ReportOptions& options_;
  const int number_;
  const Wanted wanted_;
  library::ImportWatch watch_;
  const QANT_DataSource* source_ = nullptr;
  library::ReportVariables variables_;
  // Each uses those before it.
  std::unique_ptr<library::OutputFile> problemsFile_;
  std::unique_ptr<library::OutputFile> rejectsFile_;
  std::unique_ptr<library::FileSource> data_;
  std::unique_ptr<library::ProblemWriter> problems_;
  std::unique_ptr<library::RejectsFile> rejects_;
  std::vector<std::unique_ptr<library::ProblemRowSink>> tables_;
  std::vector<library::Misfit> misfits_;
  std::vector<LeftOutFile> leftOut_;
  std::string files_;
  std::string drift_;
  std::optional<library::DigestSink> digest_;  // of the pass that is read
  library::PassAccount account_;
};

}  // namespace cli
