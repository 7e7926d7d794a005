#include "library/files/DataSetImport.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "library/files/FileLook.h"
#include "library/files/FileSinks.h"
#include "library/import/UndecodableWarnings.h"

namespace library {
namespace {

// Bytes of a block in a second reading, where there is one way to read: a number that no block size
// of the first one divides.
constexpr std::size_t kOtherBlockBytes = 65521;

// A file of fewer is not worth a thread.
constexpr long long kFewBytes = 256 * 1024;

}  // namespace

// Messages of one file, with its name in front.
class DataSetImport::FileMessages : public ImportMessages {
 public:
  FileMessages(const std::string& file, ImportMessages& messages)
      : file_(file), messages_(messages) {}
  ~FileMessages() override {
    if (const std::string rest = undecodable_.Rest(); !rest.empty() && passes_ > 0) {
      Tell(rest, kMessageWarning);
    }
  }
  // What is told before was of another look at the same file, unless it is an error.
  void BeginReading() {
    if (++passes_ > 1) undecodable_.BeginNextPass();
  }
  void Post(std::string_view hostText, int kind) override {
    if (kind == kMessageProgress) return;
    if (kind != kMessageError && passes_ == 0) return;
    const bool undecodable = UndecodableWarnings::IsOne(hostText);
    if (undecodable && !undecodable_.Take(hostText)) return;
    // The component numbers its texts from the first characters on.
    Tell(hostText, kind);
  }

 private:
  void Tell(std::string_view text, int kind) {
    messages_.Post(fmt::format("{}: {}", file_, text), kind);
  }

  const std::string& file_;
  ImportMessages& messages_;
  UndecodableWarnings undecodable_;
  int passes_ = 0;
};

// One file's pass.
class DataSetImport::FileReading : public CaseReceiver {
 public:
  FileReading(DataSetImport& data, std::size_t file, const PartOptions& parts,
              std::int64_t casesBefore, const Outputs& outputs)
      : data_(data),
        command_(data.commands_[file]),
        outputs_(outputs),
        casesBefore_(casesBefore),
        place_(command_.name, data.options_.sourceColumn.empty()
                                  ? std::nullopt
                                  : std::optional<std::string>(command_.file)),
        problems_(outputs.problems, place_.variables(), casesBefore),
        messages_(command_.file, data.messages_),
        watch_(SettingsOf(data.options_, command_)),
        import_(OptionsOf(parts), messages_) {}

  ImportEnd Run(FileAccount* account);
  std::int64_t problemsWritten() const { return problems_.written(); }
  const ImportStats& stats() const { return import_.stats(); }
  std::string uncut() const { return import_.uncut(); }
  double sinkSeconds() const { return watch_.sinkSeconds(); }

  void Begin(const QANT_DataSource& /*source*/) override {}
  void Take(const OBS* /*obs*/) override {}
  bool GoesOn(long long taken) override {
    return !outputs_.goesOn || outputs_.goesOn(casesBefore_ + taken);
  }

 private:
  static WatchSettings SettingsOf(const DataSetImportOptions& options,
                                  const DataSetCommand& command) {
    WatchSettings settings = options.watch;
    settings.keepStrayQualifiers = command.rewriting.keepStrayQualifiers;
    settings.rejects = settings.evidence = false;
    settings.trail = options.verify;
    return settings;
  }
  ImportOptions OptionsOf(const PartOptions& parts) {
    const RewritingOptions& rewriting = command_.rewriting;
    return {.workers = data_.options_.workers,
            .seed = std::nullopt,
            .watch = &watch_,
            .rewriting = rewriting,
            .shownMark = command_.shownMark,
            .standIns = command_.standIns,
            .files = data_.options_.files,
            .parts = parts};
  }
  // The file's cases have as many variables as all do.
  PassAccount TakeAccount();
  ImportEnd Verify(const PassAccount& first);
  void Post(const std::string& text) { messages_.Post(text, kMessageError); }

  DataSetImport& data_;
  const DataSetCommand& command_;
  const Outputs& outputs_;
  const std::int64_t casesBefore_;
  FilePlace place_;
  FileProblems problems_;
  FileMessages messages_;
  ImportWatch watch_;
  CommandImport import_;
  std::optional<DigestSink> digest_;  // once the file is open
};

PassAccount DataSetImport::FileReading::TakeAccount() {
  PassAccount account = watch_.TakeAccount();
  if (digest_) account.digest = digest_->digest();
  return account;
}

ImportEnd DataSetImport::FileReading::Run(FileAccount* account) {
  messages_.BeginReading();
  ImportEnd end = import_.Open(command_.tokens);
  if (end != ImportEnd::kDone) return end;
  if (!place_.Open(import_.source(), data_.source_)) {
    Post("the command gives other variables than before");
    return ImportEnd::kFailed;
  }
  std::vector<CaseSink*> sinks = outputs_.cases;
  if (data_.options_.digest || data_.options_.verify) {
    sinks.push_back(&digest_.emplace(data_.source_));
  }
  FileCases cases(place_.layout(), sinks, casesBefore_);
  watch_.Use(cases);
  ImportWatch::Outputs outputs;
  if (!outputs_.problems.empty()) outputs.problems.push_back(&problems_);
  watch_.Prepare(import_.source(), outputs,
                 {.batches = true, .oneThread = import_.stats().bytes < kFewBytes});
  messages_.BeginReading();
  end = import_.Read(*this);
  if (end != ImportEnd::kDone) return end;
  account->account = TakeAccount();
  if (data_.options_.verify) {
    end = Verify(account->account);
    if (end != ImportEnd::kDone) return end;
  }
  place_.Place(&account->account);
  return ImportEnd::kDone;
}

ImportEnd DataSetImport::FileReading::Verify(const PassAccount& first) {
  const bool threads = import_.stats().threads > 1;
  const std::vector<CaseSink*> sinks = {&digest_.emplace(data_.source_)};
  FileCases cases(place_.layout(), sinks, casesBefore_);
  watch_.UseNone();
  watch_.Use(cases);
  watch_.Prepare(import_.source(), {}, {.batches = true, .oneThread = threads});
  const ImportEnd end = import_.ReadAgain(threads ? 0 : kOtherBlockBytes);
  if (end != ImportEnd::kDone) return end;
  const std::vector<std::string> differences =
      Differences(first, TakeAccount(), ReportVariablesOf(import_.source()));
  if (differences.empty()) return ImportEnd::kDone;
  std::string text = "--verify: the two readings differ";
  for (const std::string& difference : differences) text += "; " + difference;
  Post(text);
  return ImportEnd::kFailed;
}

std::vector<DataSetCommand> CommandsOf(const DataSetPlan& plan) {
  std::vector<DataSetCommand> commands;
  for (std::size_t i = 0; i < plan.files.size(); ++i) {
    const DataSetFile& file = plan.files[i];
    if (!file.isRead()) continue;
    embedded::CommandReader reader(file.import.command);
    embedded::ParsedCommand parsed;
    reader.Next(parsed);
    commands.push_back({plan.names[i], file.name, std::move(parsed.tokens), file.import.host,
                        file.import.rewriting, file.import.shownMark, file.import.standIns,
                        file.state});
  }
  return commands;
}

DataSetImport::DataSetImport(std::vector<DataSetCommand> commands,
                             const DataSetImportOptions& options, ImportMessages& messages)
    : commands_(std::move(commands)), options_(options), messages_(messages) {}

DataSetImport::~DataSetImport() = default;

void DataSetImport::PostError(const std::string& text) { messages_.Post(text, kMessageError); }

bool DataSetImport::StaysAsItWas(const DataSetCommand& command) {
  if (!command.state) return true;
  const std::string change = ChangeOf(command.file, *command.state);
  if (!change.empty()) PostError(change);
  return change.empty();
}

bool DataSetImport::Prepare(const DataSetCommand& command) {
  std::string problem;
  if (!StaysAsItWas(command)) return false;
  if (SetHost(command.host, &problem)) return true;
  PostError(fmt::format("{}: {}", command.file, problem));
  return false;
}

ImportEnd DataSetImport::Open() {
  std::string problem;
  std::size_t longest = 1;
  for (const DataSetCommand& command : commands_) {
    if (embedded::AttentionRequested()) return ImportEnd::kInterrupted;
    if (!Prepare(command)) return ImportEnd::kFailed;
    FileMessages messages(command.file, messages_);
    CommandImport import({.workers = options_.workers,
                          .seed = std::nullopt,
                          .watch = nullptr,
                          .rewriting = command.rewriting,
                          .shownMark = command.shownMark,
                          .standIns = command.standIns,
                          .files = options_.files,
                          .parts = {}},
                         messages);
    const ImportEnd end = import.Open(command.tokens);
    if (end != ImportEnd::kDone) return end;
    if (import.isSampled()) {
      PostError(
          fmt::format("{}: a command that draws its cases cannot be one of several that "
                      "make one data set",
                      command.file));
      return ImportEnd::kFailed;
    }
    if (!source_.Add(import.source(), &problem)) {
      PostError(fmt::format("{}: {}", command.file, problem));
      return ImportEnd::kFailed;
    }
    longest = std::max(longest, command.file.size());
    if (options_.files != nullptr) LetGo(*options_.files, command.file, commands_.size());
  }
  if (!options_.sourceColumn.empty() &&
      !source_.AddText(options_.sourceColumn, longest, &problem)) {
    PostError(problem);
    return ImportEnd::kFailed;
  }
  source_.Make();
  stats_.variables = static_cast<long long>(source_.GetNVariables());
  return ImportEnd::kDone;
}

ImportEnd DataSetImport::ReadFile(std::size_t file, const PartOptions& parts,
                                  std::int64_t casesBefore, const Outputs& outputs,
                                  FileAccount* account) {
  const DataSetCommand& command = commands_[file];
  if (!Prepare(command)) return ImportEnd::kFailed;
  account->name = command.name;
  account->casesBefore = casesBefore;
  for (ProblemSink* sink : outputs.problems) sink->BeginFile(command.name);
  FileReading reading(*this, file, parts, casesBefore, outputs);
  const ImportEnd end = reading.Run(account);
  ImportStats stats = reading.stats();
  stats.variables = 0;
  stats.writeSeconds = reading.sinkSeconds();
  stats.readSeconds -= stats.writeSeconds;
  stats_.Add(stats);
  if (const std::string why = reading.uncut(); !why.empty() && uncut_.empty()) {
    uncut_ = fmt::format("{}: {}", command.name, why);
  }
  if (end != ImportEnd::kDone) return end;
  // What was read is what was looked at.
  return StaysAsItWas(command) ? end : ImportEnd::kFailed;
}

ImportEnd DataSetImport::Read(const Outputs& outputs) {
  std::int64_t cases = 0;
  for (std::size_t i = 0; i < commands_.size(); ++i) {
    if (embedded::AttentionRequested()) return ImportEnd::kInterrupted;
    FileAccount account;
    PartOptions parts;
    parts.partBytes = options_.partBytes;
    const ImportEnd end = ReadFile(i, parts, cases, outputs, &account);
    if (end != ImportEnd::kDone) return end;
    cases += account.account.cases;
    account.account.trail = {};
    accounts_.push_back(std::move(account));
    if (options_.files != nullptr) LetGo(*options_.files, commands_[i].file, commands_.size());
  }
  return ImportEnd::kDone;
}

PassAccount DataSetImport::TotalAccount() const {
  PassAccount total;
  total.complete = true;
  Ledger::Counts counts;
  counts.variables = static_cast<std::int64_t>(source_.GetNVariables());
  total.ledger.SetCounts(counts);
  if (options_.digest || options_.verify) total.digest.emplace();
  for (const FileAccount& file : accounts_) {
    const PassAccount& account = file.account;
    total.cases += account.cases;
    total.problems.Add(account.problems);
    total.ledger += account.ledger;
    if (total.digest && account.digest) *total.digest += *account.digest;
    if (account.textsBeyondColumn.empty()) continue;
    total.textsBeyondColumn.resize(source_.GetNVariables());
    for (std::size_t i = 0; i < account.textsBeyondColumn.size(); ++i) {
      total.textsBeyondColumn[i] += account.textsBeyondColumn[i];
    }
  }
  return total;
}

}  // namespace library
