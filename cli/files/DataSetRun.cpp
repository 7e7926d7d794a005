#include "cli/files/DataSetRun.h"

#include <exception>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "cli/run/CommandOutputs.h"
#include "cli/terminal/ImportTables.h"
#include "cli/terminal/Progress.h"
#include "cli/terminal/VisibleText.h"

namespace cli {
namespace {

using library::ImportEnd;

CommandReport::Wanted WantedOf(const RunOptions& options) {
  CommandReport::Wanted wanted;
  for (const CasesTarget& target : CasesTargets(options)) {
    wanted.problems = wanted.problems || (target.format && library::HoldsProblems(*target.format));
  }
  return wanted;
}

CommandEnd EndOf(ImportEnd end) {
  switch (end) {
    case ImportEnd::kDone:
      return CommandEnd::kDone;
    case ImportEnd::kInterrupted:
      return CommandEnd::kInterrupted;
    case ImportEnd::kFailed:
    case ImportEnd::kStopped:
      break;
  }
  return CommandEnd::kFailed;
}

class Running {
 public:
  explicit Running(DataSetRun run)
      : run_(std::move(run)),
        options_(run_.options),
        outputs_(options_, 1),
        report_(options_.report, 1, WantedOf(options_)),
        import_(run_.commands, OptionsOf(), run_.messages) {}

  CommandEnd Run();
  const library::ImportStats& stats() const { return import_.stats(); }

 private:
  library::DataSetImportOptions OptionsOf() {
    library::DataSetImportOptions options;
    options.workers = WorkersOf(options_);
    options.files = &run_.files;
    options.partBytes = options_.parts.partBytes;
    options.sourceColumn = options_.sourceColumn;
    options.watch = report_.watchSettings();
    options.digest = options_.report.digest;
    options.verify = options_.report.verify;
    return options;
  }
  CommandEnd OpenOutputs();
  CommandEnd Read();
  CommandEnd Check();
  CommandEnd Publish();
  void Show(FirstCases& firstCases, std::size_t width) const;
  std::string FilesJson() const;
  CommandEnd Fail(const std::string& error);
  CommandEnd OutputFailure(const library::OutputFile& file);
  bool shows() const { return !options_.quiet && !WritesStandardOutput(options_); }

  DataSetRun run_;
  const RunOptions& options_;
  CommandOutputs outputs_;
  CommandReport report_;
  library::DataSetImport import_;
};

CommandEnd Running::Fail(const std::string& error) {
  run_.messages.PostError(error);
  return CommandEnd::kFailed;
}

CommandEnd Running::OutputFailure(const library::OutputFile& file) {
  if (file.interrupted()) return CommandEnd::kInterrupted;
  run_.console.Error(file.error());
  return CommandEnd::kOutputFailed;
}

CommandEnd Running::OpenOutputs() {
  std::string error;
  if (outputs_.Open(&error) && report_.Open(&error)) return CommandEnd::kDone;
  if (embedded::AttentionRequested()) return CommandEnd::kInterrupted;
  run_.console.Error(error);
  return CommandEnd::kOutputFailed;
}

// What each file came to.
std::string Running::FilesJson() const {
  nlohmann::ordered_json files = nlohmann::ordered_json::array();
  for (const library::FileAccount& file : import_.accounts()) {
    files.push_back(library::FileJson(file.name, file.casesBefore, file.account));
  }
  for (const LeftOutFile& file : run_.leftOut) {
    files.push_back({{"file", file.name}, {"left_out", file.why}});
  }
  return files.dump();
}

CommandEnd Running::Read() {
  const QANT_DataSource& source = import_.source();
  const std::size_t width = run_.typed ? ScreenWidth(STDOUT_FILENO) : TerminalWidth(STDOUT_FILENO);
  if (shows() && !run_.typed) run_.console.Print(VariableTable(source, width) + "\n");
  outputs_.Begin(source);
  report_.BeginFiles(source, outputs_.problemTables(), run_.leftOut);
  FirstCases firstCases(source, options_.values, shows() ? options_.show : 0, width,
                        run_.typed ? FirstCases::Layout::kTyped : FirstCases::Layout::kPlain);
  ImportEnd read;
  {
    long long bytes = 0;
    for (const library::DataSetCommand& command : run_.commands) {
      if (command.state) bytes += command.state->bytes;
    }
    Progress progress(run_.console, bytes);
    library::DataSetImport::Outputs outputs;
    outputs.cases = outputs_.sinks();
    if (firstCases.wanted()) outputs.cases.push_back(&firstCases);
    outputs.problems = report_.problemSinks();
    outputs.goesOn = [&](long long cases) {
      if (outputs_.failed() != nullptr || report_.failed() != nullptr) return false;
      progress.Tick(cases);
      return true;
    };
    read = import_.Read(outputs);
  }
  if (!import_.uncut().empty()) {
    run_.messages.Post("the cases are read as one part: " + import_.uncut(), kMessageWarning);
  }
  if (read == ImportEnd::kDone) report_.Add(outputs_.End());
  report_.EndFiles(import_.TotalAccount(), FilesJson(), run_.drift);
  for (const library::OutputFile* failed : {outputs_.failed(), report_.failed()}) {
    if (failed != nullptr) return OutputFailure(*failed);
  }
  if (read != ImportEnd::kDone) return EndOf(read);
  CommandEnd end = Check();
  if (end == CommandEnd::kDone) end = Publish();
  Show(firstCases, width);
  if (end == CommandEnd::kDone) {
    if (const std::string line = report_.DigestLine(); !line.empty()) run_.console.Print(line);
    if (!options_.quiet && options_.report.verify) {
      run_.console.Print(
          "verified: a second reading of each file gave the same cases, problems "
          "and ledger");
    }
  }
  return end;
}

void Running::Show(FirstCases& firstCases, std::size_t width) const {
  if (shows()) {
    if (const std::string table = firstCases.Text(); !table.empty()) {
      run_.console.Print(table + "\n");
    }
    run_.console.Print(fmt::format("{} of {} file{}",
                                   Counts(report_.cases(), import_.source().GetNVariables()),
                                   run_.commands.size(), run_.commands.size() == 1 ? "" : "s"));
    for (const std::string& remark : run_.remarks) {
      run_.console.Print(WrappedText(VisibleText(remark), width));
    }
    run_.console.Print(report_.Text(width));
  } else if (!options_.quiet) {
    for (const std::string& warning : report_.Warnings()) run_.console.Warning(warning);
  }
}

CommandEnd Running::Check() {
  for (const library::FileAccount& file : import_.accounts()) {
    if (const std::string error = file.account.ledger.Imbalance(); !error.empty()) {
      return Fail(fmt::format("{}: {}", file.name, error));
    }
  }
  if (const std::string error = report_.Imbalance(); !error.empty()) return Fail(error);
  if (const std::string error = report_.Forbidden(); !error.empty()) {
    // Cases and dictionary do not exist, what is wrong with them does.
    const library::OutputFile* failed = CommandOutputs::Publish(report_.Files());
    return failed != nullptr ? OutputFailure(*failed) : Fail(error);
  }
  return CommandEnd::kDone;
}

CommandEnd Running::Publish() {
  const library::OutputFile* failed =
      outputs_.Publish(import_.source(), run_.dataName, report_.cases(), report_);
  return failed != nullptr ? OutputFailure(*failed) : CommandEnd::kDone;
}

CommandEnd Running::Run() {
  if (const CommandEnd end = OpenOutputs(); end != CommandEnd::kDone) return end;
  if (const ImportEnd end = import_.Open(); end != ImportEnd::kDone) return EndOf(end);
  return Read();
}

}  // namespace

CommandEnd RunDataSet(DataSetRun run, library::ImportStats* stats) {
  MessageSink& messages = run.messages;
  CommandEnd end = CommandEnd::kFailed;
  messages.BeginCommand();
  try {
    Running running(std::move(run));
    end = running.Run();
    stats->Add(running.stats());
  } catch (const std::exception& failure) {
    messages.PostError(std::string("the files cannot be read: ") + failure.what());
  }
  messages.EndCommand();
  return end;
}

}  // namespace cli
