#include "cli/CommandRun.h"

#include <chrono>
#include <exception>
#include <memory>
#include <optional>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostFramework/DataSource.h"
#include "HostFramework/embedded/command/Adapter.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/threads/ThreadStarts.h"
#include "cli/CaseBatch.h"
#include "cli/CaseSampler.h"
#include "cli/DictionaryJson.h"
#include "cli/Progress.h"
#include "cli/RunReport.h"
#include "library/import/ActiveSource.h"
#include "library/import/CommandOutline.h"

namespace cli {
namespace {

// Cases between two looks at the clock for the progress line: a mask.
constexpr long long kProgressMask = 0xFF;
// Where the message has its text whose number an iterator may throw.
constexpr char kCatalogue[] = "lorvane.err";

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

long long FileBytes(const std::string& path) {
  struct stat file {};
  return stat(path.c_str(), &file) == 0 ? file.st_size : 0;
}

class CommandRunner {
 public:
  CommandRunner(const RunContext& context, int number, RunStats* stats)
      : context_(context), options_(context.options), number_(number), stats_(*stats) {}

  CommandEnd Run(std::vector<embedded::CommandToken> tokens);

 private:
  bool OpenOutputs();
  bool Open(const std::string& name, std::unique_ptr<OutputFile>* file);
  CommandEnd ReadSource(const QANT_DataSource& source, std::optional<double> fraction);
  CommandEnd ReadCases(const QANT_DataSource& source, CaseSampler sampler, FirstCases& firstCases);
  void ReadLoop(QANT_InputCaseIterator& iterator, CaseSampler& sampler, FirstCases& firstCases,
                CaseBatch* batch, Progress& progress);
  CommandEnd Publish(const QANT_DataSource& source);
  CommandEnd OutputFailure(const OutputFile& file);
  bool shows() const { return !options_.quiet && !WritesStandardOutput(options_); }

  const RunContext& context_;
  const RunOptions& options_;
  const int number_;
  RunStats& stats_;
  std::string dataFile_;  // as the command names it
  std::unique_ptr<OutputFile> casesFile_;
  std::unique_ptr<OutputFile> dictionaryFile_;
};

CommandEnd CommandRunner::Run(std::vector<embedded::CommandToken> tokens) {
  // Before anything is read, so that nobody waits for cases that cannot be written.
  if (!OpenOutputs()) {
    return embedded::AttentionRequested() ? CommandEnd::kInterrupted : CommandEnd::kOutputFailed;
  }

  dataFile_ = library::OutlineOf(tokens, context_.text).DataFile();
  embedded::Adapter adapter(std::move(tokens), MessageSink::Callback(), nullptr, options_.workers,
                            0);
  // Made after the adapter: the source, which uses it, is destroyed first.
  const Clock::time_point start = Clock::now();
  const library::ActiveSource source(adapter);
  stats_.dictionarySeconds = SecondsSince(start);
  context_.console.ClearProgress();
  if (embedded::AttentionRequested()) return CommandEnd::kInterrupted;
  if (source.get() == nullptr) return CommandEnd::kFailed;
  context_.messages.BeginNextPass();
  return ReadSource(*source.get(), source.sampleFraction());
}

bool CommandRunner::OpenOutputs() {
  return Open(options_.cases, &casesFile_) && Open(options_.dictionary, &dictionaryFile_);
}

bool CommandRunner::Open(const std::string& name, std::unique_ptr<OutputFile>* file) {
  if (name.empty()) return true;
  std::string error;
  *file = OutputFile::Open(NameForCommand(name, number_), &error);
  if (*file != nullptr) return true;
  // Opening a pipe waits for its reader.
  if (!embedded::AttentionRequested()) context_.console.Error(error);
  return false;
}

CommandEnd CommandRunner::ReadSource(const QANT_DataSource& source,
                                     std::optional<double> fraction) {
  stats_.variables = static_cast<long long>(source.GetNVariables());
  stats_.bytes = FileBytes(source.GetFileSpec());
  if (shows()) context_.console.Print(VariableTable(source) + "\n");

  FirstCases firstCases(source, options_.values, shows() ? options_.show : 0,
                        TerminalWidth(STDOUT_FILENO));
  const CommandEnd end = ReadCases(source, CaseSampler(fraction, options_.seed), firstCases);
  if (shows() && end != CommandEnd::kFailed) {
    if (const std::string table = firstCases.Text(); !table.empty()) {
      context_.console.Print(table + "\n");
    }
    context_.console.Print(Counts(stats_.cases, source.GetNVariables()));
  }
  return end;
}

CommandEnd CommandRunner::ReadCases(const QANT_DataSource& source, CaseSampler sampler,
                                    FirstCases& firstCases) {
  const std::size_t caseBytes = source.GetObsAreaSize();
  const embedded::CaseBuffer buffer(source);
  if (buffer.obs() == nullptr) {
    context_.messages.PostError(fmt::format("no memory for a case of {} bytes", caseBytes));
    return CommandEnd::kFailed;
  }

  std::unique_ptr<CaseWriter> writer;
  std::optional<CaseBatch> batch;
  if (casesFile_ != nullptr) {
    writer =
        MakeCaseWriter(*CaseFormatOf(options_), ColumnsOf(source, options_.values), *casesFile_);
    writer->WriteHeader();
    batch.emplace(caseBytes, *writer);
  }

  const long long errorsBefore = context_.messages.errors();
  QantErrorMonitor monitor(MessageSink::Callback());
  const Clock::time_point start = Clock::now();
  try {
    const int threadsBefore = embedded::ThreadsStarted();
    Progress progress(context_.console, stats_.bytes);
    const std::unique_ptr<QANT_InputCaseIterator> iterator(source.MakeIterator(buffer.obs()));
    iterator->SetErrorMonitor(&monitor);
    ReadLoop(*iterator, sampler, firstCases, batch ? &*batch : nullptr, progress);
    // An iterator without threads reads on the caller's.
    stats_.threads = std::max(1, embedded::ThreadsStarted() - threadsBefore);
  } catch (const int message) {
    // The one exception that the component's iterators throw: the number of a message on the file.
    context_.messages.Post(std::string(QantServerErrorText(kCatalogue, message).GetText()) + " " +
                               source.GetFileSpec(),
                           kMessageError);
  }
  context_.messages.EndCommand();
  if (batch) batch->Flush();
  if (batch) stats_.writeSeconds = batch->seconds();
  stats_.readSeconds = SecondsSince(start) - stats_.writeSeconds;

  if (casesFile_ != nullptr && !casesFile_->ok()) return OutputFailure(*casesFile_);
  if (embedded::AttentionRequested()) return CommandEnd::kInterrupted;
  if (context_.messages.errors() > errorsBefore) return CommandEnd::kFailed;
  return Publish(source);
}

void CommandRunner::ReadLoop(QANT_InputCaseIterator& iterator, CaseSampler& sampler,
                             FirstCases& firstCases, CaseBatch* batch, Progress& progress) {
  for (long long read = 1; iterator.Next(); ++read) {
    if (sampler.Keep()) {
      ++stats_.cases;
      firstCases.Take(iterator.GetObsPointer());
      if (batch != nullptr) batch->Add(iterator.GetObsPointer());
    }
    if ((read & kProgressMask) == 0) {
      if (embedded::AttentionRequested() || (casesFile_ != nullptr && !casesFile_->ok())) break;
      progress.Tick(stats_.cases);
    }
  }
}

CommandEnd CommandRunner::Publish(const QANT_DataSource& source) {
  if (dictionaryFile_ != nullptr)
    WriteDictionary(source, dataFile_, stats_.cases, *dictionaryFile_);
  // All are complete before the first takes its name.
  for (const auto& step : {&OutputFile::Finish, &OutputFile::Publish}) {
    for (OutputFile* file : {casesFile_.get(), dictionaryFile_.get()}) {
      if (file != nullptr && !(file->*step)()) return OutputFailure(*file);
    }
  }
  return CommandEnd::kDone;
}

CommandEnd CommandRunner::OutputFailure(const OutputFile& file) {
  if (file.interrupted()) return CommandEnd::kInterrupted;
  context_.console.Error(file.error());
  return CommandEnd::kOutputFailed;
}

}  // namespace

CommandEnd RunCommand(const RunContext& context, int number,
                      std::vector<embedded::CommandToken> tokens, RunStats* stats) {
  CommandEnd end = CommandEnd::kFailed;
  context.messages.BeginCommand();
  try {
    end = CommandRunner(context, number, stats).Run(std::move(tokens));
  } catch (const std::exception& failure) {
    // A case too large for the memory there is, for one.
    context.messages.PostError(std::string("the command cannot be run: ") + failure.what());
  }
  context.messages.EndCommand();
  return end;
}

}  // namespace cli
