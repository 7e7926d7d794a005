#include "cli/files/AsOneRun.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "cli/ExitStatus.h"
#include "cli/files/DataSetRun.h"
#include "cli/files/FileReadings.h"
#include "cli/run/CommandFile.h"
#include "cli/run/StatsLine.h"
#include "cli/terminal/Interrupt.h"
#include "library/outputs/OutputFile.h"
#include "library/outputs/Utf8Converter.h"

namespace cli {
namespace {

// How a file is read that --with says nothing of.
FileReading UsualReading(const RunOptions& options) {
  FileReading reading;
  reading.host.codePage = options.host.codePage;
  reading.host.localeCodePage = options.host.localeCodePage;
  reading.host.decimal = options.host.decimalComma ? library::DecimalCharacter::kComma
                                                   : library::DecimalCharacter::kPoint;
  reading.rewriting = RewritingOf(options);
  reading.shownMark = options.byteOrderMark;
  reading.transcoding = options.transcoding;
  reading.paddedAt = options.paddedAt;
  return reading;
}

// The commands of the text. False when one is in error; *error says where.
bool ReadCommands(const RunOptions& options, const std::string& text,
                  std::vector<library::DataSetCommand>* commands, std::string* error) {
  library::Utf8Converter utf8;
  embedded::CommandReader reader(text);
  embedded::ParsedCommand parsed;
  const std::vector<ListedCommand> listed = CommandsOf(text);
  for (std::size_t i = 0; reader.Next(parsed); ++i) {
    if (!parsed.ok) {
      *error =
          fmt::format("{}, {}", CommandFileName(options.commandFile), utf8.ToUtf8(parsed.error));
      return false;
    }
    const std::string file = i < listed.size() ? listed[i].dataFile : std::string();
    commands->push_back({std::string(utf8.ToUtf8(file)), file, parsed.tokens, {}, {}, {}, {}, {}});
  }
  if (!commands->empty()) return true;
  *error = CommandFileName(options.commandFile) + " holds no command";
  return false;
}

bool SetReadings(const RunOptions& options, std::vector<library::DataSetCommand>* commands,
                 library::InputFiles& files, std::string* error) {
  std::vector<FileReading> readings(commands->size(), UsualReading(options));
  for (const std::string& text : options.with) {
    if (ApplyReading(text, &readings, error)) continue;
    *error = "--with: " + *error;
    return false;
  }
  for (std::size_t i = 0; i < readings.size(); ++i) {
    library::DataSetCommand& command = (*commands)[i];
    command.host = readings[i].host;
    command.rewriting = readings[i].rewriting;
    command.shownMark = readings[i].shownMark;
    // What cannot be converted is said when the file is opened.
    if (!readings[i].transcoding.empty()) files.Transcode(command.file, readings[i].transcoding);
    if (!readings[i].paddedAt.empty()) files.PadColumns(command.file, readings[i].paddedAt, {});
  }
  return true;
}

int StatusOf(CommandEnd end) {
  if (end == CommandEnd::kInterrupted || embedded::AttentionRequested()) return kExitInterrupted;
  if (end == CommandEnd::kOutputFailed) return kExitUsage;
  return end == CommandEnd::kFailed ? kExitCommandFailed : kExitSuccess;
}

}  // namespace

int RunAsOne(const RunOptions& options) {
  Console::Settings settings;
  settings.outputIsData = WritesStandardOutput(options);
  settings.progress = !options.quiet && !options.noProgress && isatty(STDERR_FILENO) != 0;
  Console console(settings);
  HandleInterrupts();
  const auto wrong = [&console](const std::string& error) {
    if (embedded::AttentionRequested()) return static_cast<int>(kExitInterrupted);
    console.Error(error);
    return static_cast<int>(kExitUsage);
  };
  std::string error;
  std::string text;
  if (!SetHost(options.host, &error) || !ReadCommandFile(options.commandFile, &text, &error)) {
    return wrong(error);
  }
  error = WhatIsWrong(options, CommandsOf(text));
  if (!error.empty()) return wrong(error);
  std::unique_ptr<library::OutputFile> messagesFile;
  if (!options.messages.empty()) {
    messagesFile = library::OutputFile::Open(NameForCommand(options.messages, 1), &error);
    if (messagesFile == nullptr) return wrong(error);
  }
  MessageSink messages(console);
  messages.WriteTo(messagesFile.get());
  std::vector<library::DataSetCommand> commands;
  library::ImportStats stats;
  int status = kExitCommandFailed;
  library::InputFiles files;
  if (!ReadCommands(options, text, &commands, &error)) {
    messages.PostError(error);
  } else if (!SetReadings(options, &commands, files, &error)) {
    status = wrong(error);
  } else {
    const std::string name =
        commands.size() == 1 ? commands[0].file : CommandFileName(options.commandFile);
    const CommandEnd end =
        RunDataSet({options, console, messages, files, std::move(commands), name}, &stats);
    if (end == CommandEnd::kFailed || end == CommandEnd::kOutputFailed) stats.cases = 0;
    status = StatusOf(end);
  }
  messages.WriteTo(nullptr);
  if (messagesFile != nullptr && !(messagesFile->Finish() && messagesFile->Publish())) {
    status = wrong(messagesFile->error());
  }
  if (options.stats) console.PrintResult(StatsLine(stats));
  if (!console.Flush() && status == kExitSuccess) status = kExitUsage;
  return status;
}

}  // namespace cli
