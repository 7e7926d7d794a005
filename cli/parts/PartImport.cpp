#include "cli/parts/PartImport.h"

#include <cstdio>
#include <memory>

#include <fmt/format.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/parts/SummaryInput.h"
#include "cli/run/CommandFileRunner.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/Interrupt.h"
#include "library/import/InputFiles.h"
#include "library/import/RunLine.h"
#include "library/outputs/OutputFile.h"
#include "library/parts/BareParts.h"
#include "library/parts/SummaryMerge.h"

namespace cli {
namespace {

library::BareImportSettings SettingsOf(const ImportOptions& options) {
  library::BareImportSettings settings = options.settings;
  settings.nulls = options.run.report.nullTexts;
  settings.threads = options.run.workers;
  return settings;
}

// A sentence on the file, or that the user interrupted.
int Failed(Console& console, const std::string& file, const std::string& problem) {
  if (embedded::AttentionRequested()) return kExitInterrupted;
  console.Error(fmt::format("{}: {}", file, problem));
  return kExitCommandFailed;
}

bool WriteText(const std::string& text, const std::string& name, std::string* error) {
  const std::unique_ptr<library::OutputFile> file = library::OutputFile::Open(name, error);
  if (file == nullptr) return false;
  file->Append(text);
  if (file->Finish() && file->Publish()) return true;
  *error = file->error();
  return false;
}

}  // namespace

int SummarizePart(const ImportOptions& options, const PartStep& step) {
  Console console({.outputIsData = step.summary == "-"});
  HandleInterrupts();
  embedded::SetCodePage(nullptr);
  library::InputFiles files;
  library::FilePartSummary summary;
  std::string problem;
  if (!library::SummarizeFilePart(options.file, step.summarized.number, step.summarized.count,
                                  files, SettingsOf(options), &summary, &problem)) {
    return Failed(console, options.file, problem);
  }
  if (!WriteSummary(summary, step.summary, &problem)) {
    console.Error(problem);
    return kExitUsage;
  }
  if (!options.run.quiet) {
    console.Print(fmt::format("part {} of {}: bytes {}-{} of {}, {} lines, {} records",
                              step.summarized.number, step.summarized.count, summary.range.from,
                              summary.range.to, summary.fileBytes, summary.values.lines,
                              summary.values.records));
  }
  return console.Flush() ? kExitSuccess : kExitUsage;
}

int RunPart(RunOptions options) {
  if (options.before.empty()) return RunCommandFile(options);
  library::FilePartSummary before;
  std::string problem;
  library::RewritingOptions rewriting;
  if (ReadSummaries(options.before, &before, &problem) &&
      !library::PutBefore(before, &*options.parts.single, &rewriting, &problem)) {
    problem = "--before: " + problem;
  }
  if (!problem.empty()) {
    std::fprintf(stderr, "error: %s\n", problem.c_str());
    return kExitCommandFailed;
  }
  options.joinQuotedLines |= rewriting.joinQuotedLines;
  options.backslashEscapes |= rewriting.backslashEscapes;
  options.report.keepStrayQualifiers |= rewriting.keepStrayQualifiers;
  return RunCommandFile(options);
}

int MergeSummaries(const ImportOptions& options, const PartStep& step) {
  const std::string& commandFile = options.run.commandOutput;
  Console console({.outputIsData = step.merged == "-" || commandFile == "-"});
  HandleInterrupts();
  embedded::SetCodePage(nullptr);
  library::FilePartSummary merged;
  std::string problem;
  if (!ReadSummaries(step.summaries, &merged, &problem)) {
    console.Error(problem);
    return kExitCommandFailed;
  }
  if (!step.merged.empty() && !WriteSummary(merged, step.merged, &problem)) {
    console.Error(problem);
    return kExitUsage;
  }
  // Of some parts there is no command.
  if (!step.merged.empty() && commandFile.empty()) return kExitSuccess;

  library::InputFiles files;
  library::BareImport import;
  if (!library::UnderstandParts(merged, files, SettingsOf(options), &import, &problem)) {
    return Failed(console, merged.file, problem);
  }
  if (!WriteText(import.command, commandFile.empty() ? "-" : commandFile, &problem)) {
    console.Error(problem);
    return kExitUsage;
  }
  if (!commandFile.empty() && !options.run.quiet) {
    console.Print("The import:");
    console.Print(library::RunLine(library::RunOptionsFor(import, options.run.report.nullTexts),
                                   commandFile));
  }
  return console.Flush() ? kExitSuccess : kExitUsage;
}

}  // namespace cli
