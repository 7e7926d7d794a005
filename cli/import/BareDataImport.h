// What `textwizard import` does whether its data is one file or several: side files are opened, the
// data is understood, shown and read, the line that repeats it told.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cli/import/ImportOptions.h"
#include "cli/run/MessageSink.h"
#include "cli/run/SingleCommand.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/Progress.h"
#include "library/import/BareColumns.h"
#include "library/import/ImportStats.h"
#include "library/input/InputFiles.h"
#include "library/outputs/OutputFile.h"

namespace cli {

class BareDataImport {
 public:
  virtual ~BareDataImport() = default;
  BareDataImport(const BareDataImport&) = delete;
  BareDataImport& operator=(const BareDataImport&) = delete;

  // Imports the data and returns the exit status (ExitStatus.h). Once, on the main thread.
  int Run();

 protected:
  // `options` outlive the import; their `run` is copied.
  explicit BareDataImport(const ImportOptions& options);

  const ImportOptions& options() const { return options_; }
  RunOptions& run() { return run_; }
  Console& console() { return console_; }
  MessageSink& messages() { return messages_; }
  library::InputFiles& files() { return files_; }
  // Whether a person is shown what is done.
  bool shows() const { return !run_.quiet && !WritesStandardOutput(run_); }

  // The label of each column, and whether its numbers are whole, for the outputs.
  void AddColumns(const std::vector<library::BareColumn>& columns);

 private:
  // The names of the data's files (host text): no output may be one of them.
  virtual std::vector<std::string> Names() const = 0;
  // Finds out how the data is built; *problem is a sentence where that fails.
  virtual bool Understand(std::string* problem) = 0;
  // Sets the run's options by what was found, and shows it.
  virtual void SetRunOptions() = 0;
  virtual void ShowFindings() = 0;
  // Reads the cases. Adds to *stats.
  virtual CommandEnd Read(library::ImportStats* stats) = 0;
  // The command text that the import came to (UTF-8), what it is called ("the command"), and the
  // line that runs it from the file `name`.
  virtual std::string CommandText() const = 0;
  virtual const char* CommandWord() const = 0;
  virtual std::string RunLineFor(const std::string& name) const = 0;

  int TimedUnderstand();
  int Import();
  void TellHowToRepeat();

  const ImportOptions& options_;
  RunOptions run_;
  Console console_;
  MessageSink messages_;
  StageProgress decompressing_;
  library::InputFiles files_;
  std::unique_ptr<library::OutputFile> messagesFile_;
  std::unique_ptr<library::OutputFile> commandFile_;
  double seconds_ = 0;  // of understanding
};

}  // namespace cli
