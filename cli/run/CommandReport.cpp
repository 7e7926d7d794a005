#include "cli/run/CommandReport.h"

#include <array>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "cli/run/RunOptions.h"
#include "cli/terminal/ProblemTable.h"
#include "library/report/EvidenceJson.h"
#include "library/report/Warnings.h"

namespace cli {
namespace {

using library::OutputFile;

// The kind of the problem that a file is left out.
constexpr char kLeftOutKind[] = "left-out";

library::WatchSettings SettingsOf(const ReportOptions& options,
                                  const CommandReport::Wanted& wanted) {
  // Without a reader for them, and without a second pass to be compared, the first problem of each
  // kind is all that is shown.
  const bool told = !options.problems.empty() || options.verify || wanted.problems;
  return {.problemLimit = told ? options.problemLimit : 0,
          .rejects = !options.rejects.empty(),
          .evidence = wanted.evidence || options.explain,
          .trail = options.verify,
          .keepStrayQualifiers = options.keepStrayQualifiers,
          .nullTexts = library::HostTexts(options.nullTexts)};
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : "; ") + part;
  return text;
}

}  // namespace

CommandReport::CommandReport(const ReportOptions& options, int number, const Wanted& wanted)
    : options_(options), number_(number), wanted_(wanted), watch_(SettingsOf(options, wanted)) {}

library::WatchSettings CommandReport::watchSettings() const {
  return SettingsOf(options_, wanted_);
}

bool CommandReport::Open(std::string* error) {
  return Open(options_.problems, &problemsFile_, error) &&
         Open(options_.rejects, &rejectsFile_, error);
}

bool CommandReport::Open(const std::string& name, std::unique_ptr<OutputFile>* file,
                         std::string* error) const {
  if (name.empty()) return true;
  *file = OutputFile::Open(NameForCommand(name, number_), error);
  return *file != nullptr;
}

library::ImportWatch::Outputs CommandReport::MakeProblemSinks(
    const std::vector<library::CasesFile*>& tables, library::ProblemWriter::Files files) {
  library::ImportWatch::Outputs outputs;
  if (problemsFile_ != nullptr) {
    problems_ = std::make_unique<library::ProblemWriter>(
        *ProblemFormatOf(options_), variables_, options_.problemLimit, *problemsFile_, files);
    problems_->WriteHeader();
    outputs.problems.push_back(problems_.get());
  }
  for (library::CasesFile* table : tables) {
    tables_.push_back(std::make_unique<library::ProblemRowSink>(
        variables_, options_.problemLimit,
        [table](const library::ProblemRow& row) { table->AddProblem(row); }));
    outputs.problems.push_back(tables_.back().get());
  }
  return outputs;
}

bool CommandReport::Begin(const QANT_DataSource& source,
                          const library::CommandImport::DataFile& file, bool sampled,
                          const std::vector<library::CasesFile*>& tables, std::string* error) {
  source_ = &source;
  variables_ = library::ReportVariablesOf(source);
  library::ImportWatch::Outputs outputs =
      MakeProblemSinks(tables, library::ProblemWriter::Files::kOne);
  if (rejectsFile_ != nullptr) {
    library::ByteSource* data = file.bytes;
    library::LineEndBytes lineEnds = file.lineEnds;
    if (data == nullptr) {
      data_ = library::FileSource::Open(source.GetFileSpec(), error);
      if (data_ == nullptr) return false;
      data = data_.get();
      std::array<char, 2> head{};
      std::size_t read = 0;
      if (!data->ReadAt(0, head.data(), head.size(), &read, error)) return false;
      // A mark of the file's own tells them, too.
      if (read == head.size()) {
        const library::LineEndBytes told = library::LineEndsOf({head.data(), head.size()});
        if (told.feed.size() > 1) lineEnds = told;
      }
    }
    rejects_ = std::make_unique<library::RejectsFile>(*data, *rejectsFile_, std::move(lineEnds));
    outputs.rejects = rejects_.get();
  }
  Prepare(outputs, {.batches = true, .sampled = sampled});
  return true;
}

void CommandReport::BeginFiles(const QANT_DataSource& source,
                               const std::vector<library::CasesFile*>& tables,
                               std::vector<LeftOutFile> leftOut) {
  source_ = &source;
  variables_ = library::ReportVariablesOf(source);
  MakeProblemSinks(tables, library::ProblemWriter::Files::kSeveral);
  leftOut_ = std::move(leftOut);
  for (const LeftOutFile& file : leftOut_) {
    const library::ProblemRow row{.kind = kLeftOutKind,
                                  .caseNumber = 0,
                                  .line = 0,
                                  .byte = -1,
                                  .variable = {},
                                  .format = {},
                                  .text = {},
                                  .detail = file.why,
                                  .file = file.name};
    if (problems_ != nullptr) problems_->WriteRow(row);
    for (library::CasesFile* table : tables) table->AddProblem(row);
  }
}

std::vector<library::ProblemSink*> CommandReport::problemSinks() const {
  std::vector<library::ProblemSink*> sinks;
  if (problems_ != nullptr) sinks.push_back(problems_.get());
  for (const auto& table : tables_) sinks.push_back(table.get());
  return sinks;
}

void CommandReport::EndFiles(library::PassAccount account, std::string files, std::string drift) {
  account_ = std::move(account);
  files_ = std::move(files);
  drift_ = std::move(drift);
  if (problems_ != nullptr) problems_->Flush();
}

void CommandReport::Prepare(const library::ImportWatch::Outputs& outputs,
                            const library::ImportWatch::Mode& mode) {
  watch_.UseNone();
  if (options_.digest || options_.verify) watch_.Use(digest_.emplace(*source_));
  watch_.Prepare(*source_, outputs, mode);
}

void CommandReport::Add(std::vector<library::Misfit> misfits) {
  misfits_ = std::move(misfits);
  if (problems_ == nullptr) return;
  for (const library::Misfit& misfit : misfits_) problems_->WriteRow(library::RowOf(misfit));
}

void CommandReport::End() {
  account_ = TakeAccount();
  if (problems_ != nullptr) problems_->Flush();
  if (rejects_ != nullptr) rejects_->Finish();
}

void CommandReport::BeginSecond(bool sampled, bool oneThread) {
  Prepare({}, {.batches = true, .sampled = sampled, .oneThread = oneThread});
}

std::string CommandReport::EndSecond() {
  const library::PassAccount second = TakeAccount();
  const std::vector<std::string> differences = library::Differences(account_, second, variables_);
  return differences.empty() ? std::string()
                             : "--verify: the two readings differ: " + Joined(differences);
}

library::PassAccount CommandReport::TakeAccount() {
  library::PassAccount account = watch_.TakeAccount();
  if (digest_) account.digest = digest_->digest();
  return account;
}

std::string CommandReport::Forbidden() const {
  if (!options_.strict) return {};
  if (account_.problems.total() > 0) return "--strict: " + library::InShort(account_.problems);
  if (!leftOut_.empty()) {
    return fmt::format("--strict: {} is left out: {}", leftOut_.front().name, leftOut_.front().why);
  }
  return misfits_.empty() ? std::string() : "--strict: " + misfits_.front().detail;
}

std::string CommandReport::Explained() const {
  if (!options_.explain) return {};
  std::string text;
  for (std::size_t index = 0; index < variables_.size(); ++index) {
    if (const ImportEvidence* evidence = watch_.EvidenceOf(index)) {
      text += library::EvidenceText(*evidence, variables_[index]);
    }
  }
  return text.empty() ? "no variable is AUTO: there is nothing to explain\n" : text;
}

std::vector<std::string> CommandReport::Warnings() const {
  const auto evidenceOf = [this](std::size_t index) { return watch_.EvidenceOf(index); };
  std::vector<std::string> warnings = library::WarningsOf(account_, variables_, evidenceOf);
  for (const library::Misfit& misfit : misfits_) warnings.push_back(misfit.detail);
  return warnings;
}

std::string CommandReport::Text(std::size_t terminalWidth) const {
  const bool clean = account_.problems.total() == 0;
  std::string text = clean ? "" : "\n";
  text += ProblemTable(account_.problems, variables_, terminalWidth);
  if (!clean) text += "\n";
  for (const std::string& warning : Warnings()) text += "warning: " + warning + "\n";
  return text + account_.ledger.Line() + "\n";
}

std::string CommandReport::DigestLine() const {
  return options_.digest && account_.digest ? "digest: " + account_.digest->Hex() : std::string();
}

library::DictionaryReport CommandReport::ForDictionary() const {
  return {account_.ledger.Json().dump(),
          [this](std::size_t index) {
            const ImportEvidence* evidence = watch_.EvidenceOf(index);
            return evidence == nullptr ? std::string()
                                       : library::EvidenceJson(*evidence, variables_[index]).dump();
          },
          files_, drift_};
}

std::string CommandReport::RejectsProblem() const {
  return rejects_ == nullptr || rejects_->problem().empty() ? std::string()
                                                            : "--rejects: " + rejects_->problem();
}

const OutputFile* CommandReport::failed() const {
  for (const OutputFile* file : {problemsFile_.get(), rejectsFile_.get()}) {
    if (file != nullptr && !file->ok()) return file;
  }
  return nullptr;
}

std::vector<OutputFile*> CommandReport::Files() const {
  std::vector<OutputFile*> files;
  for (OutputFile* file : {problemsFile_.get(), rejectsFile_.get()}) {
    if (file != nullptr) files.push_back(file);
  }
  return files;
}

}  // namespace cli
