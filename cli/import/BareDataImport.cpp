#include "cli/import/BareDataImport.h"

#include <chrono>

#include <fmt/format.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/messages/Catalogue.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/import/SideOutput.h"
#include "cli/run/CommandFile.h"
#include "cli/run/StatsLine.h"
#include "cli/terminal/Interrupt.h"

namespace cli {
namespace {

// The command of an import that writes none, as its run line names it.
constexpr char kUnwrittenCommand[] = "import.sps";

Console::Settings ConsoleSettings(const RunOptions& run) {
  Console::Settings settings;
  settings.outputIsData = WritesStandardOutput(run);
  settings.progress = !run.quiet && !run.noProgress && isatty(STDERR_FILENO) != 0;
  return settings;
}

int StatusOf(CommandEnd end) {
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

}  // namespace

BareDataImport::BareDataImport(const ImportOptions& options)
    : options_(options),
      run_(options.run),
      console_(ConsoleSettings(options.run)),
      messages_(console_),
      decompressing_(console_, "decompressing"),
      files_([this](std::int64_t read, std::int64_t size) { decompressing_.Tick(read, size); }) {}

void BareDataImport::AddColumns(const std::vector<library::BareColumn>& columns) {
  for (const library::BareColumn& column : columns) {
    if (column.skipped) continue;
    run_.labels.push_back(column.label);
    // Values that nobody has looked at may be anything.
    run_.integerVariables.push_back(column.type.wholeNumbers && options_.settings.sampleLines == 0);
  }
}

int BareDataImport::TimedUnderstand() {
  std::string problem;
  const auto start = std::chrono::steady_clock::now();
  const bool understood = Understand(&problem);
  seconds_ = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  if (understood) return kExitSuccess;
  console_.ClearProgress();
  if (embedded::AttentionRequested()) {
    console_.Note("interrupted: nothing was imported");
    return kExitInterrupted;
  }
  messages_.PostError(problem);
  return kExitCommandFailed;
}

void BareDataImport::TellHowToRepeat() {
  const bool written = commandFile_ != nullptr;
  console_.Print(written ? "\nThe same again:"
                         : fmt::format("\nThe same again, once --command {} has written {}:",
                                       kUnwrittenCommand, CommandWord()));
  console_.Print(RunLineFor(written ? NameForCommand(run_.commandOutput, 1) : kUnwrittenCommand));
}

int BareDataImport::Import() {
  library::ImportStats stats;
  const CommandEnd end = Read(&stats);
  stats.dictionarySeconds += seconds_;
  if (end == CommandEnd::kInterrupted) {
    console_.Note(fmt::format("interrupted: {} case{} read; unfinished outputs were removed",
                              stats.cases, stats.cases == 1 ? "" : "s"));
  }
  int status = StatusOf(end);
  if (status == kExitSuccess && commandFile_ != nullptr) {
    commandFile_->Append(CommandText());
    status = PublishSideOutput(*commandFile_, console_);
  }
  if (status == kExitSuccess && !run_.quiet) TellHowToRepeat();
  if (end == CommandEnd::kFailed || end == CommandEnd::kOutputFailed) stats.cases = 0;
  if (run_.stats) console_.PrintResult(StatsLine(stats));
  return status;
}

int BareDataImport::Run() {
  HandleInterrupts();
  embedded::SetCodePage(nullptr);
  std::vector<ListedCommand> commands;
  for (const std::string& name : Names()) commands.push_back({true, name});
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
  status = TimedUnderstand();
  if (status == kExitSuccess) {
    SetRunOptions();
    ShowFindings();
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

}  // namespace cli
