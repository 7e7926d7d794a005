#include "library/import/CommandImport.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <sys/stat.h>

#include "HostFramework/embedded/data/StreamDevice.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/threads/ThreadStarts.h"
#include "command/TxtWzParser.h"
#include "library/command/CommandWords.h"
#include "model/MessageText.h"

namespace library {
namespace {

// Cases between two questions whether to go on: a mask.
constexpr long long kQuestionMask = 0xFF;

// What is said where none could be made.
constexpr char kNoIterator[] = "no memory to read the cases";

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

long long FileBytes(const std::string& path) {
  struct stat file {};
  return stat(path.c_str(), &file) == 0 ? file.st_size : 0;
}

std::string CannotRun(const std::exception& failure) {
  // A case too large for the memory there is, for one.
  return std::string("the command cannot be run: ") + failure.what();
}

// Passes on nothing but errors.
class ErrorsOnly : public ErrorMonitor {
 public:
  explicit ErrorsOnly(std::function<void(const std::string&)> post) : post_(std::move(post)) {}
  void Report(const ErrorText& message) override {
    if (message.kind == kMessageError) post_(message.text);
  }
  void AttentionCheck(bool* attention) override { *attention = embedded::AttentionRequested(); }

 private:
  const std::function<void(const std::string&)> post_;
};

}  // namespace

CommandImport::CommandImport(const ImportOptions& options, ImportMessages& messages)
    : options_(options),
      messages_(messages),
      monitor_(MessageRoute::Callback()),
      files_(options.files != nullptr ? *options.files : ownFiles_) {}

CommandImport::~CommandImport() = default;

void CommandImport::Post(std::string_view hostText, int kind) {
  if (kind == kMessageError) ++errors_;
  messages_.Post(hostText, kind);
}

// What whoever counted the lines before a part knows of the quotes behind them.
std::optional<QuoteAnchor> CommandImport::KnownQuotes() const {
  const std::optional<PartOptions::Single>& part = options_.parts.single;
  if (!part || !part->before || !part->quotes) return std::nullopt;
  if (part->before->end < 0 || part->before->dataEnds) return std::nullopt;
  return QuoteAnchor{part->before->end, *part->quotes};
}

// Shows the component the file of the command as the options ask. A command with a fault of its own
// is the component's to refuse.
bool CommandImport::ShowFile(const std::vector<embedded::CommandToken>& tokens) {
  if (!options_.transcoding.empty() || !options_.paddedAt.empty()) {
    files_.ConvertAll(options_.transcoding, options_.paddedAt);
  }
  const RewritingOptions& rewriting = options_.rewriting;
  const bool rewrites = rewriting != RewritingOptions() || !options_.shownMark.empty();
  if (!rewrites && !files_.converts()) return true;
  const CommandWords words(tokens, {});
  textwizard::TxtWzParser parser(words.text().c_str(), nullptr);
  const std::unique_ptr<textwizard::TxtWzExecFile> plan = parser.ParseToExecutor();
  if (plan == nullptr) return true;
  const InputFiles::Input& input = files_.Open(parser.GetFile());
  ImportObserver* observer = options_.watch;
  if (!input.copies.empty()) {
    const std::optional<PartOptions::Single>& part = options_.parts.single;
    original_ =
        std::make_unique<OriginalObserver>(observer, input.copies, !part || part->range.from == 0);
    observer = original_.get();
  }
  if (!rewrites) return true;
  std::string problem;
  shown_ =
      ShownFile::Show({input.path, options_.shownMark, rewriting, options_.standIns, KnownQuotes()},
                      plan->settings, &problem);
  if (shown_ == nullptr) {
    PostError(fmt::format("{}: line breaks and escapes within quotes cannot be kept: {}",
                          parser.GetFile(), problem));
    return false;
  }
  restoring_ =
      std::make_unique<RestoringObserver>(observer, *shown_, rewriting.keepStrayQualifiers);
  return true;
}

CommandImport::DataFile CommandImport::dataFile() const {
  if (original_) return {&original_->file(), original_->lineEnds()};
  return {nullptr, LineEndsOf(options_.shownMark)};
}

ImportEnd CommandImport::Open(std::vector<embedded::CommandToken> tokens) {
  const MessageRoute route(*this);
  try {
    if (!ShowFile(tokens)) return ImportEnd::kFailed;
    ImportObserver* observer = options_.watch;
    if (original_) observer = original_.get();
    if (restoring_) observer = restoring_.get();
    std::optional<ScopedStretches> stretches;
    if (options_.parts.cuts()) {
      PartOptions parts = options_.parts;
      if (parts.single) {
        // The mark that is shown stands in front of the file's first byte.
        const auto mark = static_cast<std::int64_t>(options_.shownMark.size());
        PartRange& range = parts.single->range;
        range = {range.from == 0 ? 0 : range.from + mark, range.to + mark};
      }
      parted_ = std::make_unique<PartedReading>(parts, observer);
      observer = &parted_->observer();
      stretches.emplace(parted_->view());
    }
    adapter_ = std::make_unique<ImportAdapter>(std::move(tokens), MessageRoute::Callback(),
                                               options_.workers, observer, files_);
    const Clock::time_point start = Clock::now();
    source_.emplace(*adapter_);
    stats_.dictionarySeconds = SecondsSince(start);
  } catch (const std::exception& failure) {
    PostError(CannotRun(failure));
    return ImportEnd::kFailed;
  }
  if (embedded::AttentionRequested()) return ImportEnd::kInterrupted;
  if (source_->get() == nullptr) return ImportEnd::kFailed;
  stats_.variables = static_cast<long long>(source().GetNVariables());
  stats_.bytes = original_ ? static_cast<long long>(original_->file().Size())
                           : FileBytes(source().GetFileSpec());
  return ImportEnd::kDone;
}

ImportEnd CommandImport::Read(CaseReceiver& receiver) {
  const MessageRoute route(*this);
  if (finished_) return ImportEnd::kDone;
  const long long errorsBefore = errors_;
  const Clock::time_point start = Clock::now();
  bool ended = true;
  try {
    if (iterator_ != nullptr || StartReading(receiver)) ended = ReadOn(receiver);
  } catch (const std::exception& failure) {
    PostError(CannotRun(failure));
  }
  if (ended || embedded::AttentionRequested()) EndReading();
  stats_.readSeconds += SecondsSince(start);
  if (embedded::AttentionRequested()) return ImportEnd::kInterrupted;
  if (errors_ > errorsBefore) return ImportEnd::kFailed;
  return ended ? ImportEnd::kDone : ImportEnd::kStopped;
}

bool CommandImport::StartReading(CaseReceiver& receiver) {
  buffer_ = std::make_unique<embedded::CaseBuffer>(source());
  if (buffer_->obs() == nullptr) {
    PostError(fmt::format("no memory for a case of {} bytes", source().GetObsAreaSize()));
    return false;
  }
  receiver.Begin(source());
  if (restoring_) restoring_->SetSource(source());
  seed_ = options_.seed.value_or(static_cast<unsigned>(std::time(nullptr)));
  sampler_.emplace(source_->sampleFraction(), seed_);
  threadsBefore_ = embedded::ThreadsStarted();
  if (parted_) {
    std::string problem;
    if (!parted_->Plan(source(), &problem)) {
      if (!problem.empty()) throw std::runtime_error(problem);
      throw int{textwizard::kReadFailed};
    }
    if (parted_->isCut()) {
      partMonitor_ = std::make_unique<ErrorsOnly>(
          [this](const std::string& text) { Post(text, kMessageError); });
    }
    parted_->Begin();
    if (!parted_->HasNext()) return false;
  }
  return MakeIterator();
}

// Of the next stretch, where cases are read in parts.
bool CommandImport::MakeIterator() {
  iterator_.reset();
  if (parted_) parted_->BeginNext();
  iterator_.reset(source().MakeIterator(buffer_->obs()));
  if (iterator_ == nullptr) {
    PostError(kNoIterator);
    return false;
  }
  iterator_->SetErrorMonitor(partMonitor_ ? partMonitor_.get() : &monitor_);
  return true;
}

bool CommandImport::NextCase() {
  while (!iterator_->Next()) {
    if (!parted_ || !parted_->HasNext() || !MakeIterator()) return false;
  }
  return true;
}

bool CommandImport::KeepsCase() {
  const bool keeps = sampler_->Keep();
  ImportWatch* const watch = options_.watch;
  if (watch != nullptr && watch->TakesCases()) {
    if (keeps) {
      watch->Keep(buffer_->obs());
    } else {
      watch->Drop();
    }
  }
  return keeps;
}

bool CommandImport::ReadBatches(CaseReceiver& receiver) {
  const ImportWatch& watch = *options_.watch;
  while (NextCase()) {
    casesRead_ = stats_.cases = watch.cases();
    watch.Rethrow();
    if (embedded::AttentionRequested() || !receiver.GoesOn(stats_.cases)) return false;
  }
  casesRead_ = stats_.cases = watch.cases();
  watch.Rethrow();
  return true;
}

bool CommandImport::ReadOn(CaseReceiver& receiver) {
  if (options_.watch != nullptr && options_.watch->WantsBatches()) return ReadBatches(receiver);
  long long& taken = stats_.cases;
  while (NextCase()) {
    if (restoring_) restoring_->Restore(iterator_->GetObsPointer());
    ++casesRead_;
    if (KeepsCase()) {
      ++taken;
      receiver.Take(iterator_->GetObsPointer());
    }
    if ((casesRead_ & kQuestionMask) != 0) continue;
    if (embedded::AttentionRequested() || !receiver.GoesOn(taken)) return false;
    if (options_.watch != nullptr) options_.watch->Rethrow();
  }
  if (options_.watch != nullptr) options_.watch->Rethrow();
  return true;
}

ImportEnd CommandImport::ReadAgain(std::size_t blockBytes) {
  const MessageRoute route(*this);
  const long long errorsBefore = errors_;
  embedded::SetStreamBlockSize(blockBytes);
  try {
    ReadAllAgain();
  } catch (const std::exception& failure) {
    PostError(CannotRun(failure));
  }
  embedded::SetStreamBlockSize(0);
  if (embedded::AttentionRequested()) return ImportEnd::kInterrupted;
  return errors_ > errorsBefore ? ImportEnd::kFailed : ImportEnd::kDone;
}

void CommandImport::ReadAllAgain() {
  ErrorsOnly monitor([this](const std::string& text) { Post(text, kMessageError); });
  // The draw starts where it started before.
  sampler_.emplace(source_->sampleFraction(), seed_);
  if (parted_) parted_->Begin();
  if (parted_ && !parted_->HasNext()) return;
  do {
    if (parted_) parted_->BeginNext();
    if (!ReadPassAgain(monitor)) return;
  } while (parted_ && parted_->HasNext());
}

// False when it failed or the user asked to interrupt it.
bool CommandImport::ReadPassAgain(ErrorMonitor& monitor) {
  const std::unique_ptr<QANT_InputCaseIterator> iterator(source().MakeIterator(buffer_->obs()));
  if (iterator == nullptr) {
    PostError(kNoIterator);
    return false;
  }
  iterator->SetErrorMonitor(&monitor);
  const bool batches = options_.watch->WantsBatches();
  for (long long read = 1; iterator->Next(); ++read) {
    if (!batches && restoring_) restoring_->Restore(buffer_->obs());
    if (!batches) KeepsCase();
    if (!batches && (read & kQuestionMask) != 0) continue;
    if (embedded::AttentionRequested()) return false;
    options_.watch->Rethrow();
  }
  options_.watch->Rethrow();
  return true;
}

void CommandImport::Restart() {
  const MessageRoute route(*this);
  iterator_.reset();
  casesRead_ = stats_.cases = 0;
  stats_.readSeconds = 0;
  finished_ = false;
}

void CommandImport::EndReading() {
  finished_ = true;
  if (iterator_ == nullptr) return;
  iterator_.reset();
  // An iterator without threads reads on the caller's.
  stats_.threads = std::max(1, embedded::ThreadsStarted() - threadsBefore_);
}

}  // namespace library
