#include "cli/run/SingleCommand.h"

#include <cstddef>
#include <exception>
#include <string>

#include <fmt/format.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "cli/run/CommandFile.h"
#include "cli/run/CommandOutputs.h"
#include "cli/run/CommandReport.h"
#include "cli/terminal/ImportTables.h"
#include "cli/terminal/Progress.h"
#include "cli/terminal/VisibleText.h"
#include "library/command/Advice.h"
#include "library/command/CommandFault.h"
#include "library/command/CommandOutline.h"
#include "library/import/ColumnEdgeCheck.h"
#include "library/import/CommandImport.h"
#include "library/input/FileKind.h"

namespace cli {
namespace {

using library::CommandImport;
using library::ImportEnd;

// Sees to a reading: the cases go to the watch's sinks.
class Reader : public library::CaseReceiver {
 public:
  Reader(FirstCases& firstCases, CommandOutputs& outputs, CommandReport& report, Progress& progress)
      : firstCases_(firstCases), outputs_(outputs), report_(report), progress_(progress) {}
  void Begin(const QANT_DataSource& source) override {
    outputs_.Begin(source);
    for (library::CaseSink* sink : outputs_.sinks()) report_.watch().Use(*sink);
    if (firstCases_.wanted()) report_.watch().Use(firstCases_);
  }
  void Take(const OBS* /*obs*/) override {}
  bool GoesOn(long long taken) override {
    if (outputs_.failed() != nullptr || report_.failed() != nullptr) return false;
    progress_.Tick(taken);
    return true;
  }

 private:
  FirstCases& firstCases_;
  CommandOutputs& outputs_;
  CommandReport& report_;
  Progress& progress_;
};

// Bytes of a block in a second reading, where there is one way to read: a number that no block size
// of the first one divides.
constexpr std::size_t kOtherBlockBytes = 65521;

// The report is for the person who watches, and for the files that have a place for it.
CommandReport::Wanted WantedOf(const RunOptions& options, bool warns) {
  CommandReport::Wanted wanted{.evidence = warns || !options.dictionary.empty()};
  for (const CasesTarget& target : CasesTargets(options)) {
    if (!target.format) continue;
    wanted.evidence = wanted.evidence || library::HoldsMetadata(*target.format);
    wanted.problems = wanted.problems || library::HoldsProblems(*target.format);
  }
  return wanted;
}

class SingleCommand {
 public:
  SingleCommand(const RunContext& context, int number)
      : context_(context),
        options_(context.options),
        outputs_(options_, number),
        report_(options_.report, number, WantedOf(options_, !options_.quiet)),
        import_(
            {.workers = WorkersOf(options_),
             .seed = options_.seed,
             .watch = &report_.watch(),
             .rewriting = RewritingOf(options_),
             .shownMark = options_.byteOrderMark,
             .standIns = context.found != nullptr ? context.found->standIns : std::nullopt,
             .files = context.found != nullptr ? &context.found->files : nullptr,
             .transcoding = context.found != nullptr ? std::string() : options_.transcoding,
             .paddedAt = context.found != nullptr ? std::vector<std::int64_t>() : options_.paddedAt,
             .parts = options_.parts},
            context.messages) {}

  CommandEnd Run(const embedded::ParsedCommand& command);
  library::ImportStats Stats() const;

 private:
  CommandEnd OpenOutputs();
  library::CommandFault FaultOf(const embedded::ParsedCommand& command) const;
  // Warns of what stands in that subcommand.
  void Advise(const std::string& advice, const library::OutlinedSubcommand* subcommand);
  void AdviseOnCases(library::ColumnEdgeCheck& edges);
  CommandEnd ReadSource();
  CommandEnd ReadCases(FirstCases& firstCases);
  CommandEnd Check();
  CommandEnd Verify();
  CommandEnd Fail(const std::string& error);
  CommandEnd Publish();
  CommandEnd OutputFailure(const library::OutputFile& file);
  std::string Verified() const;
  // The first reading was not on this thread alone.
  bool readOnThreads() const { return import_.stats().threads > 1; }
  bool shows() const { return !options_.quiet && !WritesStandardOutput(options_); }

  const RunContext& context_;
  const RunOptions& options_;
  library::CommandOutline outline_;
  CommandOutputs outputs_;
  CommandReport report_;
  CommandImport import_;
  bool allRead_ = false;  // every case was read
  double writeSeconds_ = 0;
};

CommandEnd SingleCommand::Run(const embedded::ParsedCommand& command) {
  if (const CommandEnd end = OpenOutputs(); end != CommandEnd::kDone) return end;
  outline_ = library::OutlineOf(command.tokens, context_.text);
  // What is wrong with a command is told with its place.
  context_.messages.HoldErrors();
  const ImportEnd opened = import_.Open(command.tokens);
  context_.console.ClearProgress();
  if (opened == ImportEnd::kFailed) {
    const library::CommandFault fault = FaultOf(command);
    context_.messages.ReleaseErrors(&fault, CommandFileName(options_.commandFile));
    return CommandEnd::kFailed;
  }
  context_.messages.ReleaseErrors(nullptr, {});
  if (opened == ImportEnd::kInterrupted) return CommandEnd::kInterrupted;
  Advise(library::DelimiterAdvice(outline_), outline_.Find("DELIMITERS"));
  Advise(import_.fileAdvice(), outline_.Find("FILE"));
  context_.messages.BeginNextPass();
  return ReadSource();
}

library::CommandFault SingleCommand::FaultOf(const embedded::ParsedCommand& command) const {
  std::string fileWayOut = import_.fileWayOut();
  if (fileWayOut.empty()) fileWayOut = library::WhyNotOpened(outline_.DataFile());
  return library::FindFault(command.tokens, context_.text,
                            {command.line, command.column, "GET DATA"}, fileWayOut);
}

void SingleCommand::Advise(const std::string& advice,
                           const library::OutlinedSubcommand* subcommand) {
  if (advice.empty()) return;
  if (context_.found != nullptr) {
    // Nobody has written the command: it has no place.
    context_.messages.Post(advice, kMessageWarning);
    return;
  }
  const library::CommandPlace place = subcommand ? subcommand->place : library::CommandPlace();
  context_.messages.Post(
      fmt::format("{}, line {}, column {}: {}", CommandFileName(options_.commandFile), place.line,
                  place.column, advice),
      kMessageWarning);
}

library::ImportStats SingleCommand::Stats() const {
  library::ImportStats stats = import_.stats();
  stats.writeSeconds = writeSeconds_;
  stats.readSeconds -= stats.writeSeconds;
  return stats;
}

CommandEnd SingleCommand::OpenOutputs() {
  std::string error;
  if (outputs_.Open(&error) && report_.Open(&error)) return CommandEnd::kDone;
  // Opening a pipe waits for its reader.
  if (embedded::AttentionRequested()) return CommandEnd::kInterrupted;
  context_.console.Error(error);
  return CommandEnd::kOutputFailed;
}

CommandEnd SingleCommand::ReadSource() {
  const QANT_DataSource& source = import_.source();
  const bool typed = context_.found != nullptr;
  const std::size_t width = typed ? ScreenWidth(STDOUT_FILENO) : TerminalWidth(STDOUT_FILENO);
  if (shows() && !typed) context_.console.Print(VariableTable(source, width) + "\n");
  std::string error;
  if (!report_.Begin(source, import_.dataFile(), import_.isSampled(), outputs_.problemTables(),
                     &error))
    return Fail("--rejects: " + error);
  if (const std::string text = typed ? context_.found->explanation : report_.Explained();
      !text.empty()) {
    context_.console.Print(shows() ? text + "\n" : text);
  }

  FirstCases firstCases(source, options_.values, shows() ? options_.show : 0, width,
                        typed ? FirstCases::Layout::kTyped : FirstCases::Layout::kPlain);
  const CommandEnd end = ReadCases(firstCases);
  if (shows() && (end != CommandEnd::kFailed || allRead_)) {
    const Style style = typed ? Style::Of(STDOUT_FILENO) : Style();
    if (const std::string table = firstCases.Text(style); !table.empty()) {
      context_.console.Print(table + "\n");
    }
    context_.console.Print(Counts(import_.stats().cases, source.GetNVariables()));
    if (typed) {
      for (const std::string& remark : context_.found->remarks) {
        std::string lines = WrappedText(VisibleText(remark), width);
        lines.pop_back();
        context_.console.Print(style.Doubtful(lines));
      }
    }
    context_.console.Print(report_.Text(width));
  } else if (!options_.quiet && allRead_) {
    // Standard output is a file of data; what may be wrong with it is said all the same.
    for (const std::string& warning : report_.Warnings()) context_.console.Warning(warning);
  }
  if (end == CommandEnd::kDone) {
    if (const std::string line = report_.DigestLine(); !line.empty()) context_.console.Print(line);
    if (!options_.quiet && options_.report.verify) context_.console.Print(Verified());
  }
  return end;
}

CommandEnd SingleCommand::ReadCases(FirstCases& firstCases) {
  ImportEnd read;
  library::ColumnEdgeCheck edges(import_.source());
  {
    Progress progress(context_.console, import_.stats().bytes);
    Reader reader(firstCases, outputs_, report_, progress);
    read = import_.Read(reader);
  }
  context_.messages.EndCommand();
  if (const std::string why = import_.uncut(); !why.empty()) {
    context_.messages.Post("the cases are read as one part: " + why, kMessageWarning);
  }
  if (read == ImportEnd::kDone && !options_.parts.single) AdviseOnCases(edges);
  writeSeconds_ = report_.watch().sinkSeconds();
  if (read == ImportEnd::kDone) report_.Add(outputs_.End());
  report_.End();
  for (const library::OutputFile* failed : {outputs_.failed(), report_.failed()}) {
    if (failed != nullptr) return OutputFailure(*failed);
  }
  if (read == ImportEnd::kInterrupted) return CommandEnd::kInterrupted;
  if (read == ImportEnd::kFailed) return CommandEnd::kFailed;
  allRead_ = true;
  const CommandEnd checked = Check();
  return checked == CommandEnd::kDone ? Publish() : checked;
}

// What was read must add up, and may have to be read again.
CommandEnd SingleCommand::Check() {
  for (const std::string& error : {report_.Imbalance(), report_.RejectsProblem()}) {
    if (!error.empty()) return Fail(error);
  }
  if (options_.report.verify) {
    if (const CommandEnd end = Verify(); end != CommandEnd::kDone) return end;
  }
  if (const std::string error = report_.Forbidden(); !error.empty()) {
    // Cases and dictionary do not exist, what is wrong with them does.
    const library::OutputFile* failed = CommandOutputs::Publish(report_.Files());
    return failed != nullptr ? OutputFailure(*failed) : Fail(error);
  }
  return CommandEnd::kDone;
}

CommandEnd SingleCommand::Verify() {
  report_.BeginSecond(import_.isSampled(), readOnThreads());
  const ImportEnd read = import_.ReadAgain(readOnThreads() ? 0 : kOtherBlockBytes);
  if (read == ImportEnd::kInterrupted) return CommandEnd::kInterrupted;
  if (read == ImportEnd::kFailed) return CommandEnd::kFailed;
  const std::string differences = report_.EndSecond();
  return differences.empty() ? CommandEnd::kDone : Fail(differences);
}

std::string SingleCommand::Verified() const {
  return fmt::format("verified: a second reading {} gave the same cases, problems and ledger",
                     readOnThreads() ? "on one thread" : "in blocks of another size");
}

CommandEnd SingleCommand::Fail(const std::string& error) {
  context_.messages.PostError(error);
  return CommandEnd::kFailed;
}

CommandEnd SingleCommand::Publish() {
  const library::OutputFile* failed =
      outputs_.Publish(import_.source(), outline_.DataFile(), import_.stats().cases, report_);
  return failed != nullptr ? OutputFailure(*failed) : CommandEnd::kDone;
}

void SingleCommand::AdviseOnCases(library::ColumnEdgeCheck& edges) {
  if (import_.casesRead() > 0) {
    Advise(edges.Advice(import_.casesRead()), outline_.Find("FILE"));
    return;
  }
  if (context_.found != nullptr) {
    Advise("there is no data in it: no case was read", nullptr);
    return;
  }
  const library::OutlinedSubcommand* firstCase = outline_.Find("FIRSTCASE");
  Advise(library::NoCaseAdvice(import_.source(), outline_.DataFile()),
         firstCase != nullptr ? firstCase : outline_.Find("FILE"));
}

CommandEnd SingleCommand::OutputFailure(const library::OutputFile& file) {
  if (file.interrupted()) return CommandEnd::kInterrupted;
  context_.console.Error(file.error());
  return CommandEnd::kOutputFailed;
}

}  // namespace

CommandEnd RunSingleCommand(const RunContext& context, int number,
                            const embedded::ParsedCommand& command, library::ImportStats* stats) {
  CommandEnd end = CommandEnd::kFailed;
  context.messages.BeginCommand();
  try {
    SingleCommand single(context, number);
    end = single.Run(command);
    stats->Add(single.Stats());
  } catch (const std::exception& failure) {
    // No memory for the tables, for one.
    context.messages.ReleaseErrors(nullptr, {});
    context.messages.PostError(std::string("the command cannot be run: ") + failure.what());
  }
  context.messages.EndCommand();
  return end;
}

}  // namespace cli
