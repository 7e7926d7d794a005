#include "library/capi/ImportSession.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/messages/Catalogue.h"
#include "library/command/CommandFault.h"
#include "library/import/BareParts.h"
#include "library/import/ColumnReport.h"
#include "library/input/FileKind.h"
#include "library/outputs/DictionaryJson.h"
#include "library/report/EvidenceJson.h"
#include "library/sniff/SniffJson.h"

namespace library {
namespace {

class KeptText : public ByteSink {
 public:
  void Append(std::string_view bytes) override { text += bytes; }
  std::string text;
};

WatchSettings SettingsOf(const SessionOptions& options) {
  return {.problemLimit = options.problemLimit,
          .rejects = false,
          .evidence = true,
          .trail = false,
          .keepStrayQualifiers = options.rewriting.keepStrayQualifiers,
          .nullTexts = HostTexts(options.nullTexts)};
}

Failure Usage(std::string text) { return {.status = TEXTWIZARD_USAGE, .text = std::move(text)}; }

Failure HostIsBusy() {
  return {.status = TEXTWIZARD_BUSY,
          .text =
              "another import is being opened, or read with another code page or decimal "
              "character; wait until it is read"};
}

}  // namespace

ImportSession::ImportSession(std::string text, SessionOptions options)
    : text_(std::move(text)),
      options_(std::move(options)),
      files_([this](std::int64_t read, std::int64_t all) { CountBytes(read, all); }) {
  UseHost();
  hostText_ = HostTexts({text_}).front();
  ImportOptions opened;
  opened.shownMark = options_.shownMark;
  opened.transcoding = options_.transcoding;
  opened.paddedAt = options_.paddedAt;
  Open(opened);
  if (options_.integersOfCommand) columnOptions_.integers = WholeNumberFormats(import_->source());
  fields_ = FieldsOf(import_->source(), columnOptions_);
  recipe_.file = std::string(utf8_->ToUtf8(outline_.DataFile()));
  if (FileState state; GetFileState(recipe_.file, &state)) recipe_.state = state;
  CompleteRecipe(opened);
  use_.reset();
}

ImportSession::ImportSession(const BareSource& source, BareImportSettings settings,
                             SessionOptions options)
    : options_(std::move(options)),
      files_([this](std::int64_t read, std::int64_t all) { CountBytes(read, all); }) {
  if (options_.part) {
    throw Usage(
        "a part of a bare file is read by the file's recipe or command: types come from all of it");
  }
  use_ = HostUse::Alone();
  if (use_ == nullptr) throw HostIsBusy();
  recipe_.file = source.path;
  if (FileState state; GetFileState(source.path, &state)) recipe_.state = state;
  const BareImport found = Understand(source, std::move(settings));
  options_.host = {.decimalComma = found.host.decimal == DecimalCharacter::kComma,
                   .codePage = found.host.codePage,
                   .localeCodePage = found.host.localeCodePage};
  use_->NowShared(options_.host);
  reading_ = SniffJson(source.path, found.sniff)
                 .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  hostText_ = found.command;
  text_ = Utf8Converter().ToUtf8(found.command);
  options_.rewriting = found.rewriting;
  ImportOptions opened;
  opened.shownMark = found.shownMark;
  opened.transcoding = found.transcoding;
  opened.paddedAt = found.paddedAt;
  opened.standIns = found.standIns;
  Open(opened);
  const nlohmann::json evidence = FoundEvidence(found);
  for (std::size_t i = 0; i < found.columns.size(); ++i) {
    const BareColumn& column = found.columns[i];
    if (column.skipped) continue;
    evidence_.push_back(evidence[i].dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    columnOptions_.labels.push_back(column.label);
    columnOptions_.integers.push_back(options_.integersOfFile && column.type.wholeNumbers);
  }
  columnOptions_.namesAsVariables = options_.namesAsVariables;
  fields_ = FieldsOf(import_->source(), columnOptions_);
  CompleteRecipe(opened);
  use_.reset();
}

ImportSession::ImportSession(const ImportRecipe& recipe, SessionOptions options)
    : text_(recipe.command),
      recipe_(recipe),
      checksState_(true),
      options_(std::move(options)),
      files_([this](std::int64_t read, std::int64_t all) { CountBytes(read, all); }) {
  options_.host = recipe.host;
  options_.nullTexts = recipe.nullTexts;
  options_.rewriting = recipe.rewriting;
  if (const std::optional<Failure> changed = Changed()) throw *changed;
  UseHost();
  hostText_ = HostTexts({text_}).front();
  ImportOptions opened;
  opened.shownMark = recipe.shownMark;
  opened.transcoding = recipe.transcoding;
  opened.paddedAt = recipe.paddedAt;
  opened.standIns = recipe.standIns;
  Open(std::move(opened));
  if (recipe.dataSet) {
    placed_ = std::make_unique<PlacedFile>(*recipe.dataSet, import_->source());
    variables_ = ReportVariablesOf(source());
    columnOptions_.severalFiles = true;
  }
  columnOptions_.labels = recipe.labels;
  columnOptions_.integers = recipe.integers;
  columnOptions_.namesAsVariables = recipe.namesAsVariables;
  fields_ = FieldsOf(source(), columnOptions_);
  use_.reset();
}

void ImportSession::CompleteRecipe(const ImportOptions& opened) {
  recipe_.command = text_;
  recipe_.host = options_.host;
  recipe_.rewriting = options_.rewriting;
  recipe_.shownMark = opened.shownMark;
  recipe_.transcoding = opened.transcoding;
  recipe_.paddedAt = opened.paddedAt;
  recipe_.standIns = opened.standIns;
  recipe_.nullTexts = options_.nullTexts;
  recipe_.labels = columnOptions_.labels;
  recipe_.integers = columnOptions_.integers;
  recipe_.namesAsVariables = columnOptions_.namesAsVariables;
}

std::optional<Failure> ImportSession::Changed() const {
  FileState state;
  if (!checksState_ || !recipe_.state) return std::nullopt;
  if (GetFileState(recipe_.file, &state) && state == *recipe_.state) return std::nullopt;
  return Failure{
      .status = TEXTWIZARD_FILE,
      .text = recipe_.file + ": the file changed since its types were found; begin again"};
}

ImportSession::~ImportSession() { Close(); }

void ImportSession::UseHost() {
  std::string problem;
  if (use_ == nullptr) use_ = HostUse::Share(options_.host, &problem);
  if (use_ == nullptr && !problem.empty()) throw Usage(problem);
  if (use_ == nullptr) throw HostIsBusy();
}

BareImport ImportSession::Understand(const BareSource& source, BareImportSettings settings) {
  settings.nulls = options_.nullTexts;
  settings.threads = options_.workers;
  settings.progress = [this](std::int64_t bytes, std::int64_t all) { CountBytes(bytes, all); };
  const embedded::AttentionScope scope(cancelled_, [this] { LookAround(); });
  BareImport found;
  std::string problem;
  const bool understood =
      source.summary == nullptr
          ? UnderstandFile(source.path, files_, settings, &found, &problem)
          : UnderstandParts(*source.summary, files_, settings, &found, &problem);
  if (understood) {
    if (settings.sampleLines > 0) options_.integersOfFile = false;
    found.rewriting.keepStrayQualifiers |= options_.rewriting.keepStrayQualifiers;
    return found;
  }
  if (embedded::AttentionRequested()) throw Cancelled();
  throw Failure{.status = TEXTWIZARD_FILE, .text = source.path + ": " + problem};
}

void ImportSession::Open(ImportOptions settings) {
  utf8_.emplace();
  if (const std::string problems = embedded::CatalogueProblems(); !problems.empty()) {
    Tell(kMessageWarning, problems);
  }
  embedded::CommandReader reader(hostText_);
  embedded::ParsedCommand command;
  if (!reader.Next(command)) throw Usage("the text holds no command");
  if (!command.ok) {
    throw Failure{.text = std::string(utf8_->ToUtf8(command.error)),
                  .line = command.line,
                  .column = command.column};
  }
  if (embedded::ParsedCommand second; reader.Next(second)) {
    throw Usage("the text holds more than one command: open each by itself");
  }
  outline_ = OutlineOf(command.tokens, hostText_);
  watch_.emplace(SettingsOf(options_));
  settings.workers = WorkersWhileWriting(options_.workers);
  settings.watch = &*watch_;
  settings.rewriting = options_.rewriting;
  settings.files = &files_;
  settings.parts.single = options_.part;
  ImportMessages& messages = *this;
  import_ = std::make_unique<CommandImport>(settings, messages);
  const embedded::AttentionScope scope(cancelled_, [this] { LookAround(); });
  switch (import_->Open(command.tokens)) {
    case ImportEnd::kDone:
      break;
    case ImportEnd::kInterrupted:
      throw Cancelled();
    case ImportEnd::kFailed:
    case ImportEnd::kStopped:
      FailOpen(command);
  }
  if (const std::string advice = import_->fileAdvice(); !advice.empty()) {
    Tell(kMessageWarning, std::string(utf8_->ToUtf8(advice)));
  }
  variables_ = ReportVariablesOf(import_->source());
  undecodable_.BeginNextPass();
}

void ImportSession::FailOpen(const embedded::ParsedCommand& command) {
  std::string fileWayOut = import_->fileWayOut();
  if (fileWayOut.empty()) fileWayOut = WhyNotOpened(outline_.DataFile());
  const CommandFault fault =
      FindFault(command.tokens, hostText_, {command.line, command.column, "GET DATA"}, fileWayOut);
  Failure failure = FailureOf(std::string(utf8_->ToUtf8(fault.completion)));
  if (fault.place.line > 0) {
    failure.line = fault.place.line;
    failure.column = fault.place.column;
    failure.text += fmt::format("\nline {}, column {}: {}", failure.line, failure.column,
                                utf8_->ToUtf8(fault.place.words));
  }
  if (!fault.variable.empty()) {
    failure.text += fmt::format("\nvariable {}", utf8_->ToUtf8(fault.variable));
  }
  if (!fault.wayOut.empty()) failure.text += fmt::format("\n{}", utf8_->ToUtf8(fault.wayOut));
  throw failure;
}

Failure ImportSession::FailureOf(const std::string& completion) const {
  Failure failure{.text = "the command failed"};
  if (errors_.empty()) return failure;
  failure.number = MessageNumber(errors_.back());
  failure.text.clear();
  for (const std::string& error : errors_)
    failure.text += (failure.text.empty() ? "" : "\n") + error;
  failure.text += completion;
  return failure;
}

Failure ImportSession::Cancelled() {
  cancelled_ = false;
  return {.status = TEXTWIZARD_CANCELLED, .text = "the import was cancelled"};
}

void ImportSession::Post(std::string_view hostText, int kind) {
  if (kind == kMessageProgress) {
    // Records that were looked at while types are found; a count that is no number ends that.
    const std::string count(hostText);
    const std::int64_t records = std::strtoll(count.c_str(), nullptr, 10);
    if (records > 0 && count != "4294967295" && !TellProgress(records)) cancelled_ = true;
    return;
  }
  if (UndecodableWarnings::IsOne(hostText) && !undecodable_.Take(hostText)) return;
  std::string text(utf8_->ToUtf8(hostText));
  Tell(kind, text);
  if (kind == kMessageError) errors_.push_back(std::move(text));
}

void ImportSession::Tell(int kind, const std::string& text) {
  if (options_.message) options_.message(kind, text);
}

bool ImportSession::TellProgress(std::int64_t cases) {
  const std::int64_t all = import_ == nullptr ? 0 : import_->stats().bytes;
  const bool reads = isReading_ && watch_;
  return Tell(
      {.cases = cases, .bytes = reads ? watch_->bytes() : -1, .allBytes = all > 0 ? all : -1});
}

void ImportSession::CountBytes(std::int64_t bytes, std::int64_t all) {
  if (!Tell({.cases = 0, .bytes = bytes, .allBytes = all})) cancelled_ = true;
}

bool ImportSession::Tell(const Progress& progress) {
  told_ = progress;
  return !options_.progress || options_.progress(progress.cases, progress.bytes, progress.allBytes);
}

void ImportSession::LookAround() {
  if (!Tell(told_)) cancelled_ = true;
}

void ImportSession::CheckOpen() const {
  if (import_ == nullptr) throw Usage("the import was closed");
}

void ImportSession::PreparePass() {
  CheckOpen();
  EndPass(pass_);
  UseHost();
  import_->Restart();
  ready_.clear();
  failure_.reset();
  errors_.clear();
  columns_.reset();
}

std::uint64_t ImportSession::BeginPass() {
  const std::lock_guard guard(mutex_);
  PreparePass();
  columns_ = std::make_unique<ColumnSink>(
      fields_, source().GetObsAreaSize() / sizeof(OBS), ColumnSink::Batches::kWhole,
      [this](ColumnPieces batch) { ready_.push_back(batch.Join(fields_)); });
  StartPass(*columns_, [this](const ProblemRow& row) { problems_.Add(row); });
  return pass_;
}

void ImportSession::StartPass(CaseSink& sink, std::function<void(const ProblemRow&)> problem) {
  problems_ = {};
  problemSink_.emplace(variables_, options_.problemLimit, std::move(problem));
  watch_->UseNone();
  std::vector<CaseSink*> sinks;
  digest_.reset();
  if (options_.digest) sinks.push_back(&digest_.emplace(source()));
  sinks.push_back(&sink);
  ProblemSink* problems = &*problemSink_;
  if (placed_) {
    watch_->Use(placed_->Cases(sinks));
    problems = &placed_->Problems(*problemSink_);
  } else {
    for (CaseSink* taker : sinks) watch_->Use(*taker);
  }
  watch_->Prepare(import_->source(), {.problems = {problems}, .rejects = nullptr},
                  {.batches = true, .sampled = import_->isSampled()});
  sink_ = &sink;
  isReading_ = true;
  ++pass_;
}

void ImportSession::WriteCases(const std::string& target, CaseFormat format, ArrowBody arrowBody) {
  const std::lock_guard guard(mutex_);
  PreparePass();
  std::string error;
  file_ = CasesFile::Open(target, format, &error);
  if (file_ == nullptr) throw Failure{.status = TEXTWIZARD_FILE, .text = error};
  CasesFileOptions options = columnOptions_;
  options.arrowBody = arrowBody;
  options.threads = options_.workers;
  try {
    StartPass(file_->Begin(source(), options), [this](const ProblemRow& row) {
      problems_.Add(row);
      file_->AddProblem(row);
    });
    while (isReading_) {
      ReadOn();
      if (isReading_ && !file_->file().ok()) {
        Conclude(Failure{.status = TEXTWIZARD_FILE, .text = file_->file().error()});
      }
    }
    if (!failure_) FinishFile();
  } catch (const std::runtime_error& refused) {
    // What the format cannot hold.
    failure_ = Failure{.text = target + ": " + refused.what()};
  }
  if (!file_->file().ok()) {
    failure_ = Failure{.status = TEXTWIZARD_FILE, .text = file_->file().error()};
  }
  file_.reset();
  use_.reset();
  if (failure_) throw *failure_;
}

// All cases were taken: the file gets its end and its name.
void ImportSession::FinishFile() {
  for (const Misfit& misfit : PassMisfits()) file_->AddProblem(RowOf(misfit));
  std::vector<std::pair<std::string, std::string>> metadata;
  if (HoldsMetadata(file_->format())) {
    metadata = {{"textwizard.dictionary", Dictionary()}, {"textwizard.ledger", Ledger()}};
  }
  file_->Finish(metadata);
  OutputFile& output = file_->file();
  if (output.Finish()) output.Publish();
}

std::vector<Misfit> ImportSession::PassMisfits() const {
  return file_ != nullptr ? file_->Misfits() : MisfitsOf(fields_, columns_->misfits());
}

bool ImportSession::Next(std::uint64_t pass, ColumnBatch* batch) {
  const std::lock_guard guard(mutex_);
  CheckOpen();
  if (pass != pass_) throw Usage("another reading of the same import has begun");
  while (ready_.empty() && isReading_) ReadOn();
  if (ready_.empty()) {
    if (failure_) throw *failure_;
    return false;
  }
  *batch = std::move(ready_.front());
  ready_.pop_front();
  return true;
}

void ImportSession::ReadOn() {
  const embedded::AttentionScope scope(cancelled_);
  switch (import_->Read(*this)) {
    case ImportEnd::kStopped:
      if (!cancelled_) return;
      Conclude(Cancelled());
      return;
    case ImportEnd::kInterrupted:
      Conclude(Cancelled());
      return;
    case ImportEnd::kFailed:
      Conclude(FailureOf({}));
      return;
    case ImportEnd::kDone:
      break;
  }
  sink_->Finish();
  Conclude(std::nullopt);
  if (!failure_) failure_ = Objection();
}

bool ImportSession::GoesOn(long long taken) {
  if (!TellProgress(taken)) cancelled_ = true;
  const bool canWrite = file_ == nullptr || file_->file().ok();
  return !cancelled_ && canWrite && ready_.empty();
}

void ImportSession::Conclude(std::optional<Failure> failure) {
  // What is told of a pass is complete when its iterator is gone.
  if (failure) import_->Restart();
  isReading_ = false;
  failure_ = std::move(failure);
  if (!failure_ || failure_->status == TEXTWIZARD_COMMAND_FAILED) {
    // Whatever else came of it.
    if (std::optional<Failure> changed = Changed()) failure_ = std::move(changed);
  }
  if (const std::string rest = undecodable_.Rest(); !rest.empty()) Tell(kMessageWarning, rest);
  undecodable_.BeginCommand();
  account_ = watch_->TakeAccount();
  if (digest_) account_->digest = digest_->digest();
  if (placed_) placed_->Place(&*account_);
  for (const Misfit& misfit : PassMisfits()) problems_.Add(RowOf(misfit));
  use_.reset();
}

std::optional<Failure> ImportSession::Objection() const {
  if (const std::string error = account_->ledger.Imbalance(); !error.empty()) {
    return Failure{.text = error};
  }
  if (!options_.strict) return std::nullopt;
  if (const std::string problems = InShort(account_->problems); !problems.empty()) {
    return Failure{.text = "strict: " + problems};
  }
  const std::vector<Misfit> misfits = PassMisfits();
  if (misfits.empty()) return std::nullopt;
  return Failure{.text = "strict: " + misfits.front().detail};
}

void ImportSession::EndPass(std::uint64_t pass) {
  const std::lock_guard guard(mutex_);
  if (pass != pass_ || import_ == nullptr) return;
  ready_.clear();
  if (isReading_) Conclude(Usage("the reading was given up"));
}

std::optional<Failure> ImportSession::PassFailure() {
  const std::lock_guard guard(mutex_);
  return failure_;
}

void ImportSession::Close() {
  const std::lock_guard guard(mutex_);
  EndPass(pass_);
  import_.reset();
}

std::vector<std::shared_ptr<const ColumnBatch>> ImportSession::Problems() {
  const std::lock_guard guard(mutex_);
  return problems_.Batches();
}

std::string ImportSession::EvidenceOf(std::size_t variable) const {
  if (variable < evidence_.size()) return evidence_[variable];
  if (placed_) return {};
  const ImportEvidence* const evidence = watch_->EvidenceOf(variable);
  return evidence == nullptr ? std::string() : EvidenceJson(*evidence, variables_[variable]).dump();
}

std::string ImportSession::Dictionary() {
  const std::lock_guard guard(mutex_);
  CheckOpen();
  // Names are host text.
  const bool used = use_ != nullptr;
  UseHost();
  DictionaryReport report{Ledger(), [this](std::size_t index) { return EvidenceOf(index); }};
  if (placed_ && account_) report.files = placed_->FilesText(*account_);
  KeptText json;
  WriteDictionary(source(), outline_.DataFile(), account_ ? account_->cases : 0, json, &report);
  if (!used) use_.reset();
  json.text.pop_back();
  return json.text;
}

std::string ImportSession::Ledger() {
  const std::lock_guard guard(mutex_);
  return account_ ? account_->ledger.Json().dump() : std::string();
}

std::string ImportSession::Digest() {
  const std::lock_guard guard(mutex_);
  return account_ && account_->digest ? account_->digest->Hex() : std::string();
}

}  // namespace library
