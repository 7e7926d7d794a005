#include "cli/import/FileImport.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/messages/Catalogue.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/import/SideOutput.h"
#include "cli/run/CommandFile.h"
#include "cli/run/MessageSink.h"
#include "cli/run/SingleCommand.h"
#include "cli/run/StatsLine.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/Interrupt.h"
#include "cli/terminal/Progress.h"
#include "cli/terminal/SniffScreen.h"
#include "library/import/Explanation.h"
#include "library/import/RemarkText.h"
#include "library/import/RunLine.h"
#include "library/outputs/OutputFile.h"

namespace cli {
namespace {

using library::BareImport;
using library::OutputFile;

// The command of an import that writes none, as its run line names it.
constexpr char kUnwrittenCommand[] = "import.sps";

class FileImport {
 public:
  FileImport(const ImportOptions& options, Console& console)
      : options_(options),
        run_(options.run),
        console_(console),
        messages_(console),
        decompressing_(console, "decompressing"),
        files_([this](std::int64_t read, std::int64_t size) { decompressing_.Tick(read, size); }) {}

  int Run();

 private:
  int Understand();
  int Import();
  int WriteCommand();
  int Failed(const std::string& problem);
  int StatusOf(CommandEnd end) const;
  void SetRunOptions();
  std::string CommandName() const;
  std::string FileText();
  bool shows() const { return !run_.quiet && !WritesStandardOutput(run_); }

  const ImportOptions& options_;
  RunOptions run_;
  Console& console_;
  MessageSink messages_;
  StageProgress decompressing_;
  library::InputFiles files_;
  BareImport import_;
  std::unique_ptr<OutputFile> messagesFile_;
  std::unique_ptr<OutputFile> commandFile_;
  double seconds_ = 0;  // of understanding
};

int FileImport::Failed(const std::string& problem) {
  console_.ClearProgress();
  if (embedded::AttentionRequested()) {
    console_.Note("interrupted: nothing was imported");
    return kExitInterrupted;
  }
  messages_.PostError(fmt::format("{}: {}", options_.file, problem));
  return kExitCommandFailed;
}

// Where the file is not what its name says.
std::string FileImport::FileText() {
  const library::InputFiles::Input& input = files_.Open(options_.file);
  std::string name = options_.file == "-" ? "standard input" : options_.file;
  if (input.compression == library::Compression::kNone) return name;
  return fmt::format("{} ({})", name, library::CompressionName(input.compression));
}

std::string FileImport::CommandName() const {
  return run_.commandOutput.empty() ? kUnwrittenCommand : NameForCommand(run_.commandOutput, 1);
}

int FileImport::Understand() {
  library::BareImportSettings settings = options_.settings;
  settings.nulls = run_.report.nullTexts;
  settings.threads = run_.workers;
  settings.partBytes = run_.parts.partBytes;
  StageProgress progress(console_, "finding types");
  settings.progress = [&](std::int64_t bytes, std::int64_t size) { progress.Tick(bytes, size); };
  std::string problem;
  const auto start = std::chrono::steady_clock::now();
  const bool understood =
      library::UnderstandFile(options_.file, files_, settings, &import_, &problem);
  seconds_ = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return understood ? kExitSuccess : Failed(problem);
}

// What the import has found out that a run is told by options.
void FileImport::SetRunOptions() {
  run_.joinQuotedLines = import_.rewriting.joinQuotedLines;
  run_.backslashEscapes = import_.rewriting.backslashEscapes;
  import_.rewriting.keepStrayQualifiers |= run_.report.keepStrayQualifiers;
  run_.report.keepStrayQualifiers = import_.rewriting.keepStrayQualifiers;
  run_.byteOrderMark = import_.shownMark;
  for (const library::BareColumn& column : import_.columns) {
    if (column.skipped) continue;
    run_.labels.push_back(column.label);
    // Values that nobody has looked at may be anything.
    run_.integerVariables.push_back(column.type.wholeNumbers && options_.settings.sampleLines == 0);
  }
}

int FileImport::WriteCommand() {
  if (commandFile_ == nullptr) return kExitSuccess;
  commandFile_->Append(import_.command);
  return PublishSideOutput(*commandFile_, console_);
}

int FileImport::StatusOf(CommandEnd end) const {
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

int FileImport::Import() {
  embedded::CommandReader reader(import_.command);
  embedded::ParsedCommand command;
  if (!reader.Next(command) || !command.ok) return Failed("the command cannot be read back");
  const RunContext::Found found{files_, import_.standIns, library::RemarksOf(import_),
                                run_.report.explain ? library::ExplanationOf(import_) : ""};
  const RunContext context{run_, import_.command, console_, messages_, &found};
  library::ImportStats stats;
  const CommandEnd end = RunSingleCommand(context, 1, command, &stats);
  stats.dictionarySeconds += seconds_;
  if (end == CommandEnd::kInterrupted) {
    console_.Note(fmt::format("interrupted: {} case{} read; unfinished outputs were removed",
                              stats.cases, stats.cases == 1 ? "" : "s"));
  }
  int status = StatusOf(end);
  if (status == kExitSuccess) status = WriteCommand();
  if (status == kExitSuccess && !run_.quiet) {
    const std::string line =
        library::RunLine(library::RunOptionsFor(import_, run_.report.nullTexts), CommandName());
    if (commandFile_ == nullptr) {
      console_.Print(fmt::format("\nThe same again, once --command {} has written the command:",
                                 kUnwrittenCommand));
    } else {
      console_.Print("\nThe same again:");
    }
    console_.Print(line);
  }
  if (end == CommandEnd::kFailed || end == CommandEnd::kOutputFailed) stats.cases = 0;
  if (run_.stats) console_.PrintResult(StatsLine(stats));
  return status;
}

int FileImport::Run() {
  const std::vector<ListedCommand> commands = {{true, options_.file}};
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
  if (const std::string problems = embedded::CatalogueProblems(); !problems.empty()) {
    messages_.Post(problems, kMessageWarning);
  }
  status = Understand();
  if (status == kExitSuccess) {
    SetRunOptions();
    if (shows()) {
      const std::size_t width = ScreenWidth(STDOUT_FILENO);
      const Style style = Style::Of(STDOUT_FILENO);
      console_.Print(SniffSettingsText(FileText(), import_.sniff, width, style) + "\n");
    }
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

int ImportFile(const ImportOptions& options) {
  Console::Settings settings;
  settings.outputIsData = WritesStandardOutput(options.run);
  settings.progress = !options.run.quiet && !options.run.noProgress && isatty(STDERR_FILENO) != 0;
  Console console(settings);
  HandleInterrupts();
  embedded::SetCodePage(nullptr);
  return FileImport(options, console).Run();
}

}  // namespace cli
