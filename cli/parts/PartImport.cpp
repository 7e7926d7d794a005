#include "cli/parts/PartImport.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/files/AsOneLine.h"
#include "cli/parts/SummaryInput.h"
#include "cli/run/CommandFileRunner.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/Interrupt.h"
#include "library/files/DataSetPlan.h"
#include "library/import/BareParts.h"
#include "library/import/RunLine.h"
#include "library/input/InputFiles.h"
#include "library/outputs/OutputFile.h"
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

// The commands of several files from their summaries.
int MergeFiles(const ImportOptions& options, const std::vector<library::FilePartSummary>& summaries,
               Console& console) {
  std::vector<std::string> names;
  for (const library::FilePartSummary& summary : summaries) {
    names.push_back(summary.file);
    std::string problem = library::ChangeOf(summary.file, summary.state);
    if (problem.empty() && !summary.isWhole()) {
      problem = fmt::format("{}: bytes {} to {} of {} are summed up, not all of them", summary.file,
                            summary.range.from, summary.range.to, summary.fileBytes);
    }
    if (problem.empty()) continue;
    console.Error(problem);
    return kExitCommandFailed;
  }
  library::DataSetSettings settings;
  settings.file = SettingsOf(options);
  settings.by = options.by.value_or(library::FileAlignment::kAuto);
  settings.skipMisfits = options.skipMisfits;
  settings.summarize = [&summaries](std::size_t file, const library::FileSummarySettings& data,
                                    const library::RewritingOptions& rewriting,
                                    std::int64_t /*shownMark*/, library::PartSummary* values,
                                    std::string* why) {
    // Found in another way among the other files: it is read again.
    if (!library::HoldsFor(summaries[file], rewriting, why)) return false;
    return library::ValuesOfSummary(summaries[file], data, rewriting, values) ||
           library::SummarizeFile(data, values, why);
  };
  library::InputFiles files;
  library::DataSetPlan plan;
  std::string problem;
  if (!library::PlanDataSet(names, files, settings, &plan, &problem)) {
    if (embedded::AttentionRequested()) return kExitInterrupted;
    console.Error(problem);
    return kExitCommandFailed;
  }
  const std::string& commandFile = options.run.commandOutput;
  if (!WriteText(library::CommandsText(plan), commandFile.empty() ? "-" : commandFile, &problem)) {
    console.Error(problem);
    return kExitUsage;
  }
  if (!commandFile.empty() && !options.run.quiet) {
    console.Print("The import:");
    console.Print(AsOneLine(plan, options.sourceColumn, options.run.report.nullTexts, commandFile));
  }
  return console.Flush() ? kExitSuccess : kExitUsage;
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
  std::vector<library::FilePartSummary> ofFiles;
  std::string problem;
  if (!ReadSummaries(step.summaries, &ofFiles, &problem)) {
    console.Error(problem);
    return kExitCommandFailed;
  }
  const bool isDataSet = ofFiles.size() > 1;
  if (isDataSet && !step.merged.empty()) {
    console.Error("--output: a summary is of one file, and these are of several");
    return kExitUsage;
  }
  if (isDataSet) return MergeFiles(options, ofFiles, console);
  const library::FilePartSummary& merged = ofFiles.front();
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
