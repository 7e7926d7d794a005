#include "cli/run/SingleCommand.h"

#include <string>
#include <utility>

#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "cli/run/CommandOutputs.h"
#include "cli/terminal/ImportTables.h"
#include "cli/terminal/Progress.h"
#include "library/import/CommandImport.h"
#include "library/import/CommandOutline.h"

namespace cli {
namespace {

using library::CommandImport;
using library::ImportEnd;

// Takes the cases: the first ones to be shown, all to be written.
class Reader : public library::CaseReceiver {
 public:
  Reader(FirstCases& firstCases, CommandOutputs& outputs, Progress& progress)
      : firstCases_(firstCases), outputs_(outputs), progress_(progress) {}
  void Begin(const QANT_DataSource& source) override { outputs_.Begin(source); }
  void Take(const OBS* obs) override {
    firstCases_.Take(obs);
    outputs_.Write(obs);
  }
  bool GoesOn(long long taken) override {
    if (outputs_.failed() != nullptr) return false;
    progress_.Tick(taken);
    return true;
  }

 private:
  FirstCases& firstCases_;
  CommandOutputs& outputs_;
  Progress& progress_;
};

class SingleCommand {
 public:
  SingleCommand(const RunContext& context, int number)
      : context_(context),
        options_(context.options),
        outputs_(options_, number),
        import_({options_.workers, options_.seed, nullptr}, context.messages) {}

  CommandEnd Run(std::vector<embedded::CommandToken> tokens);
  library::ImportStats Stats() const;

 private:
  CommandEnd OpenOutputs();
  CommandEnd ReadSource();
  CommandEnd ReadCases(FirstCases& firstCases);
  CommandEnd OutputFailure(const library::OutputFile& file);
  bool shows() const { return !options_.quiet && !WritesStandardOutput(options_); }

  const RunContext& context_;
  const RunOptions& options_;
  std::string dataFile_;  // as the command names it
  CommandOutputs outputs_;
  CommandImport import_;
};

CommandEnd SingleCommand::Run(std::vector<embedded::CommandToken> tokens) {
  if (const CommandEnd end = OpenOutputs(); end != CommandEnd::kDone) return end;
  dataFile_ = library::OutlineOf(tokens, context_.text).DataFile();
  const ImportEnd opened = import_.Open(std::move(tokens));
  context_.console.ClearProgress();
  if (opened == ImportEnd::kInterrupted) return CommandEnd::kInterrupted;
  if (opened == ImportEnd::kFailed) return CommandEnd::kFailed;
  context_.messages.BeginNextPass();
  return ReadSource();
}

library::ImportStats SingleCommand::Stats() const {
  library::ImportStats stats = import_.stats();
  stats.writeSeconds = outputs_.seconds();
  stats.readSeconds -= stats.writeSeconds;
  return stats;
}

CommandEnd SingleCommand::OpenOutputs() {
  std::string error;
  if (outputs_.Open(&error)) return CommandEnd::kDone;
  // Opening a pipe waits for its reader.
  if (embedded::AttentionRequested()) return CommandEnd::kInterrupted;
  context_.console.Error(error);
  return CommandEnd::kOutputFailed;
}

CommandEnd SingleCommand::ReadSource() {
  const QANT_DataSource& source = import_.source();
  const std::size_t width = TerminalWidth(STDOUT_FILENO);
  if (shows()) context_.console.Print(VariableTable(source, width) + "\n");

  FirstCases firstCases(source, options_.values, shows() ? options_.show : 0, width);
  const CommandEnd end = ReadCases(firstCases);
  if (shows() && end != CommandEnd::kFailed) {
    if (const std::string table = firstCases.Text(); !table.empty()) {
      context_.console.Print(table + "\n");
    }
    context_.console.Print(Counts(import_.stats().cases, source.GetNVariables()));
  }
  return end;
}

CommandEnd SingleCommand::ReadCases(FirstCases& firstCases) {
  ImportEnd read;
  {
    Progress progress(context_.console, import_.stats().bytes);
    Reader reader(firstCases, outputs_, progress);
    read = import_.Read(reader);
  }
  context_.messages.EndCommand();
  outputs_.Flush();
  if (const library::OutputFile* failed = outputs_.failed()) return OutputFailure(*failed);
  if (read == ImportEnd::kInterrupted) return CommandEnd::kInterrupted;
  if (read == ImportEnd::kFailed) return CommandEnd::kFailed;
  const library::OutputFile* failed =
      outputs_.Publish(import_.source(), dataFile_, import_.stats().cases);
  return failed != nullptr ? OutputFailure(*failed) : CommandEnd::kDone;
}

CommandEnd SingleCommand::OutputFailure(const library::OutputFile& file) {
  if (file.interrupted()) return CommandEnd::kInterrupted;
  context_.console.Error(file.error());
  return CommandEnd::kOutputFailed;
}

}  // namespace

CommandEnd RunSingleCommand(const RunContext& context, int number,
                            std::vector<embedded::CommandToken> tokens,
                            library::ImportStats* stats) {
  context.messages.BeginCommand();
  SingleCommand command(context, number);
  const CommandEnd end = command.Run(std::move(tokens));
  context.messages.EndCommand();
  stats->Add(command.Stats());
  return end;
}

}  // namespace cli
