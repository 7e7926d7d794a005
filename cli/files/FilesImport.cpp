#include "cli/files/FilesImport.h"

#include <chrono>
#include <map>
#include <memory>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/files/AsOneLine.h"
#include "cli/files/DataSetRun.h"
#include "cli/import/SideOutput.h"
#include "cli/run/CommandFile.h"
#include "cli/run/StatsLine.h"
#include "cli/terminal/Interrupt.h"
#include "cli/terminal/Progress.h"
#include "cli/terminal/SniffScreen.h"
#include "cli/terminal/VisibleText.h"
#include "library/outputs/OutputFile.h"

namespace cli {
namespace {

using library::DataSetFile;
using library::OutputFile;

// The commands of an import that writes none, as its run line names them.
constexpr char kUnwrittenCommands[] = "import.sps";
// Lines about how files differ that are shown.
constexpr std::size_t kMostDriftLines = 20;

class FilesImport {
 public:
  FilesImport(const ImportOptions& options, const std::vector<std::string>& names,
              const std::string& dataName, Console& console)
      : options_(options),
        names_(names),
        dataName_(dataName),
        run_(options.run),
        console_(console),
        messages_(console),
        decompressing_(console, "decompressing"),
        files_([this](std::int64_t read, std::int64_t size) { decompressing_.Tick(read, size); }) {
    run_.asOne = true;
    run_.sourceColumn = options.sourceColumn;
  }

  int Run();

 private:
  int Understand();
  int Import();
  int StatusOf(CommandEnd end) const;
  void SetRunOptions();
  void ShowPlan();
  std::string Kinds() const;
  bool shows() const { return !run_.quiet && !WritesStandardOutput(run_); }

  const ImportOptions& options_;
  const std::vector<std::string>& names_;
  const std::string& dataName_;
  RunOptions run_;
  Console& console_;
  MessageSink messages_;
  StageProgress decompressing_;
  library::InputFiles files_;
  library::DataSetPlan plan_;
  std::unique_ptr<OutputFile> messagesFile_;
  std::unique_ptr<OutputFile> commandFile_;
  double seconds_ = 0;  // of understanding
};

int FilesImport::Understand() {
  library::DataSetSettings settings;
  settings.file = options_.settings;
  settings.file.nulls = run_.report.nullTexts;
  settings.file.threads = run_.workers;
  settings.file.partBytes = run_.parts.partBytes;
  settings.by = options_.by.value_or(library::FileAlignment::kAuto);
  settings.skipMisfits = options_.skipMisfits;
  StageProgress progress(console_, "finding types, files");
  settings.progress = [&](std::size_t done, std::size_t files) {
    progress.Tick(static_cast<long long>(done), static_cast<long long>(files));
  };
  std::string problem;
  const auto start = std::chrono::steady_clock::now();
  const bool planned = library::PlanDataSet(names_, files_, settings, &plan_, &problem);
  seconds_ = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  if (planned) return kExitSuccess;
  console_.ClearProgress();
  if (embedded::AttentionRequested()) {
    console_.Note("interrupted: nothing was imported");
    return kExitInterrupted;
  }
  messages_.PostError(problem);
  return kExitCommandFailed;
}

void FilesImport::SetRunOptions() {
  for (const library::BareColumn& column : plan_.columns) {
    if (column.skipped) continue;
    run_.labels.push_back(column.label);
    // Values that nobody has looked at may be anything.
    run_.integerVariables.push_back(column.type.wholeNumbers && options_.settings.sampleLines == 0);
  }
  if (run_.sourceColumn.empty()) return;
  run_.labels.push_back(run_.sourceColumn);
  run_.integerVariables.push_back(false);
}

// "1000 files: 997 with data, 1 with names only, 1 empty, 1 left out".
std::string FilesImport::Kinds() const {
  std::map<DataSetFile::Kind, std::size_t> counts;
  for (const DataSetFile& file : plan_.files) ++counts[file.kind];
  std::string text = fmt::format("{} files", plan_.files.size());
  const char* separator = ": ";
  for (const auto& [kind, count] : counts) {
    const char* name = kind == DataSetFile::Kind::kData         ? "with data"
                       : kind == DataSetFile::Kind::kHeaderOnly ? "with names only"
                       : kind == DataSetFile::Kind::kEmpty      ? "empty"
                                                                : "left out";
    text += fmt::format("{}{} {}", separator, count, name);
    separator = ", ";
  }
  return text;
}

void FilesImport::ShowPlan() {
  const std::size_t width = ScreenWidth(STDOUT_FILENO);
  const DataSetFile& reference = plan_.files[plan_.reference];
  if (shows()) {
    console_.Print(Kinds() + (plan_.by == library::FileAlignment::kName
                                  ? "; columns go by name\n"
                                  : "; columns go by place\n"));
    console_.Print(SniffSettingsText(plan_.names[plan_.reference], reference.import.sniff, width) +
                   "\n");
  }
  if (run_.quiet) return;
  const std::vector<std::string> lines =
      library::DriftLines(plan_.drift, plan_.names, kMostDriftLines);
  if (lines.empty()) return;
  if (shows()) console_.Print("The files differ:");
  for (const std::string& line : lines) {
    const std::string text = VisibleText(line);
    if (shows()) {
      console_.Print(WrappedText("  " + text, width));
    } else {
      console_.Warning(text);
    }
  }
  if (shows()) console_.Print("");
}

int FilesImport::StatusOf(CommandEnd end) const {
  switch (end) {
    case CommandEnd::kDone:
      return kExitSuccess;
    case CommandEnd::kFailed:
      return kExitCommandFailed;
    case CommandEnd::kOutputFailed:
      return embedded::AttentionRequested() ? kExitInterrupted : kExitUsage;
    case CommandEnd::kInterrupted:
      break;
  }
  return kExitInterrupted;
}

int FilesImport::Import() {
  DataSetRun data{run_, console_, messages_, files_, library::CommandsOf(plan_), dataName_};
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    const DataSetFile& file = plan_.files[i];
    if (file.kind == DataSetFile::Kind::kLeftOut) {
      data.leftOut.push_back({plan_.names[i], file.problem});
    }
  }
  data.remarks = library::RemarksOf(plan_);
  if (!plan_.drift.empty()) data.drift = library::DriftJson(plan_.drift, plan_.names).dump();
  data.typed = true;
  library::ImportStats stats;
  const CommandEnd end = RunDataSet(std::move(data), &stats);
  stats.dictionarySeconds += seconds_;
  if (end == CommandEnd::kInterrupted) {
    console_.Note(fmt::format("interrupted: {} case{} read; unfinished outputs were removed",
                              stats.cases, stats.cases == 1 ? "" : "s"));
  }
  int status = StatusOf(end);
  if (status == kExitSuccess && commandFile_ != nullptr) {
    commandFile_->Append(CommandsText(plan_));
    status = PublishSideOutput(*commandFile_, console_);
  }
  if (status == kExitSuccess && !run_.quiet) {
    console_.Print(
        commandFile_ != nullptr
            ? "\nThe same again:"
            : fmt::format("\nThe same again, once --command {} has written the commands:",
                          kUnwrittenCommands));
    console_.Print(AsOneLine(
        plan_, run_.sourceColumn, run_.report.nullTexts,
        run_.commandOutput.empty() ? kUnwrittenCommands : NameForCommand(run_.commandOutput, 1)));
  }
  if (end == CommandEnd::kFailed || end == CommandEnd::kOutputFailed) stats.cases = 0;
  if (run_.stats) console_.PrintResult(StatsLine(stats));
  return status;
}

int FilesImport::Run() {
  std::vector<ListedCommand> commands;
  for (const std::string& name : names_) commands.push_back({true, name});
  run_.commandFile = "the command";
  RunOptions checked = run_;
  checked.commandFile.clear();
  if (const std::string error = WhatIsWrong(checked, commands); !error.empty()) {
    console_.Error(error);
    return kExitUsage;
  }
  int status = OpenSideOutput(run_.messages, console_, &messagesFile_);
  if (status == kExitSuccess) status = OpenSideOutput(run_.commandOutput, console_, &commandFile_);
  if (status != kExitSuccess) return status;
  messages_.WriteTo(messagesFile_.get());
  status = Understand();
  if (status == kExitSuccess) {
    SetRunOptions();
    ShowPlan();
    status = Import();
  }
  messages_.WriteTo(nullptr);
  if (messagesFile_ != nullptr) {
    if (const int written = PublishSideOutput(*messagesFile_, console_); written != kExitSuccess)
      status = written;
  }
  if (!console_.Flush() && status != kExitInterrupted) status = kExitUsage;
  return status;
}

}  // namespace

int ImportFiles(const ImportOptions& options, const std::vector<std::string>& names,
                const std::string& dataName) {
  Console::Settings settings;
  settings.outputIsData = WritesStandardOutput(options.run);
  settings.progress = !options.run.quiet && !options.run.noProgress && isatty(STDERR_FILENO) != 0;
  Console console(settings);
  HandleInterrupts();
  embedded::SetCodePage(nullptr);
  return FilesImport(options, names, dataName, console).Run();
}

}  // namespace cli
