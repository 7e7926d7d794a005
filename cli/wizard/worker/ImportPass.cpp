#include "cli/wizard/worker/ImportPass.h"

#include <utility>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "cli/wizard/WizardServer.h"
#include "library/outputs/Utf8Converter.h"

namespace cli {
namespace {

library::WatchSettings WatchFor(const library::BareImport& import,
                                const std::vector<std::string>& nulls) {
  library::WatchSettings settings;
  settings.nullTexts = nulls;
  settings.keepStrayQualifiers = import.rewriting.keepStrayQualifiers;
  return settings;
}

library::ImportOptions OptionsFor(const library::BareImport& import, library::InputFiles& files,
                                  library::ImportWatch& watch, int workers) {
  library::ImportOptions options;
  options.workers = workers;
  options.watch = &watch;
  options.rewriting = import.rewriting;
  options.shownMark = import.shownMark;
  options.standIns = import.standIns;
  options.files = &files;
  return options;
}

}  // namespace

void ImportPass::LastError::Post(std::string_view hostText, int kind) {
  if (kind == kMessageError) text = library::Utf8Converter().ToUtf8(hostText);
}

ImportPass::ImportPass(const library::BareImport& import, library::InputFiles& files,
                       const std::vector<std::string>& nulls, int workers)
    : watch_(WatchFor(import, nulls)),
      running_(OptionsFor(import, files, watch_, workers), messages_) {
  embedded::CommandReader reader(import.command);
  embedded::ParsedCommand command;
  if (!reader.Next(command) || !command.ok ||
      running_.Open(std::move(command.tokens)) != library::ImportEnd::kDone) {
    throw RequestRefused("The file cannot be read so: " + messages_.text);
  }
}

void ImportPass::Read(library::CaseReceiver& receiver) {
  watch_.Prepare(running_.source(), {}, {});
  const library::ImportEnd end = running_.Read(receiver);
  if (end == library::ImportEnd::kFailed || end == library::ImportEnd::kInterrupted) {
    throw RequestRefused(messages_.text);
  }
}

}  // namespace cli
