#include "cli/run/CommandFileRunner.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/messages/Catalogue.h"
#include "cli/ExitStatus.h"
#include "cli/run/CommandFile.h"
#include "cli/run/MessageSink.h"
#include "cli/run/SingleCommand.h"
#include "cli/run/StatsLine.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/Interrupt.h"
#include "library/outputs/Utf8Converter.h"

namespace cli {
namespace {

class CommandFileRunner {
 public:
  CommandFileRunner(const RunOptions& options, std::string text, Console& console)
      : options_(options), text_(std::move(text)), console_(console), messages_(console) {}

  int Run();

 private:
  CommandEnd RunOne(const embedded::ParsedCommand& command, int number);
  bool OpenMessages(int number);
  bool CloseMessages();
  void Finish();

  const RunOptions& options_;
  const std::string text_;  // the command file
  Console& console_;
  MessageSink messages_;
  std::unique_ptr<library::OutputFile> messagesFile_;
  bool several_ = false;
  bool failed_ = false;
  bool outputFailed_ = false;
  library::ImportStats stats_;
};

int CommandFileRunner::Run() {
  const std::vector<ListedCommand> listed = CommandsOf(text_);
  several_ = SeveralRun(listed);
  if (const std::string error = WhatIsWrong(options_, listed); !error.empty()) {
    console_.Error(error);
    return kExitUsage;
  }
  const bool perCommand = IsPerCommand(options_.messages);
  if (!perCommand && !OpenMessages(0)) {
    return embedded::AttentionRequested() ? kExitInterrupted : kExitUsage;
  }
  if (const std::string problems = embedded::CatalogueProblems(); !problems.empty()) {
    messages_.Post(problems, kMessageWarning);
  }

  embedded::CommandReader reader(text_);
  embedded::ParsedCommand command;
  int number = 0;
  bool interrupted = embedded::AttentionRequested();
  while (!interrupted && !outputFailed_ && reader.Next(command)) {
    ++number;
    if (perCommand && !OpenMessages(number)) {
      outputFailed_ = !embedded::AttentionRequested();
      interrupted = !outputFailed_;
      break;
    }
    const CommandEnd end = RunOne(command, number);
    failed_ = failed_ || end == CommandEnd::kFailed;
    outputFailed_ = end == CommandEnd::kOutputFailed;
    interrupted = end == CommandEnd::kInterrupted;
    if (perCommand && !CloseMessages()) outputFailed_ = true;
  }
  if (number == 0 && !interrupted) {
    console_.Warning(CommandFileName(options_.commandFile) + " holds no command");
  }
  if (!perCommand && !CloseMessages()) outputFailed_ = true;
  if (interrupted) {
    console_.Note(fmt::format("interrupted: {} case{} read; unfinished outputs were removed",
                              stats_.cases, stats_.cases == 1 ? "" : "s"));
  }
  Finish();
  // The user may also have given up a write of what was left at the end.
  if (interrupted || (outputFailed_ && embedded::AttentionRequested())) return kExitInterrupted;
  if (outputFailed_) return kExitUsage;
  return failed_ ? kExitCommandFailed : kExitSuccess;
}

CommandEnd CommandFileRunner::RunOne(const embedded::ParsedCommand& command, int number) {
  if (!command.ok) {
    std::string error = CommandFileName(options_.commandFile) + ", ";
    error += library::Utf8Converter().ToUtf8(command.error);
    messages_.PostError(error);
    return CommandEnd::kFailed;
  }
  if (several_ && !options_.quiet && !WritesStandardOutput(options_)) {
    console_.Print(
        fmt::format("{}Command {} (line {})\n\n", number > 1 ? "\n" : "", number, command.line));
  }
  library::ImportStats stats;
  const RunContext context{options_, text_, console_, messages_};
  const CommandEnd end = RunSingleCommand(context, number, command, &stats);
  // What a failed command delivered before it failed counts for nothing.
  if (end == CommandEnd::kFailed || end == CommandEnd::kOutputFailed) stats.cases = 0;
  stats_.Add(stats);
  return end;
}

bool CommandFileRunner::OpenMessages(int number) {
  if (options_.messages.empty()) return true;
  std::string error;
  messagesFile_ = library::OutputFile::Open(NameForCommand(options_.messages, number), &error);
  messages_.WriteTo(messagesFile_.get());
  if (messagesFile_ == nullptr && !embedded::AttentionRequested()) console_.Error(error);
  return messagesFile_ != nullptr;
}

bool CommandFileRunner::CloseMessages() {
  if (messagesFile_ == nullptr) return true;
  messages_.WriteTo(nullptr);
  const bool written = messagesFile_->Finish() && messagesFile_->Publish();
  if (!written && !messagesFile_->interrupted()) console_.Error(messagesFile_->error());
  messagesFile_.reset();
  return written;
}

void CommandFileRunner::Finish() {
  if (options_.stats) console_.PrintResult(StatsLine(stats_));
  if (!console_.Flush()) outputFailed_ = true;
}

}  // namespace

int RunCommandFile(const RunOptions& options) {
  Console::Settings settings;
  settings.outputIsData = WritesStandardOutput(options);
  settings.progress = !options.quiet && !options.noProgress && isatty(STDERR_FILENO) != 0;
  Console console(settings);
  HandleInterrupts();
  std::string error;
  std::string commands;
  if (!SetHost(options.host, &error) || !ReadCommandFile(options.commandFile, &commands, &error)) {
    if (embedded::AttentionRequested()) return kExitInterrupted;
    console.Error(error);
    return kExitUsage;
  }
  return CommandFileRunner(options, std::move(commands), console).Run();
}

}  // namespace cli
