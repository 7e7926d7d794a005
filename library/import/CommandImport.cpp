#include "library/import/CommandImport.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <sys/stat.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/threads/ThreadStarts.h"

namespace library {
namespace {

// Cases between two questions whether to go on: a mask.
constexpr long long kQuestionMask = 0xFF;
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

std::string CannotRun(const std::exception& failure) {
  // A case too large for the memory there is, for one.
  return std::string("the command cannot be run: ") + failure.what();
}

}  // namespace

CommandImport::CommandImport(const ImportOptions& options, ImportMessages& messages)
    : options_(options), messages_(messages), route_(*this), monitor_(MessageRoute::Callback()) {}

CommandImport::~CommandImport() = default;

void CommandImport::Post(std::string_view hostText, int kind) {
  if (kind == kMessageError) ++errors_;
  messages_.Post(hostText, kind);
}

ImportEnd CommandImport::Open(std::vector<embedded::CommandToken> tokens) {
  try {
    adapter_ = std::make_unique<ImportAdapter>(std::move(tokens), MessageRoute::Callback(),
                                               options_.workers, options_.observer);
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
  stats_.bytes = FileBytes(source().GetFileSpec());
  return ImportEnd::kDone;
}

ImportEnd CommandImport::Read(CaseReceiver& receiver) {
  if (finished_) return ImportEnd::kDone;
  const long long errorsBefore = errors_;
  const Clock::time_point start = Clock::now();
  bool ended = true;
  try {
    if (iterator_ != nullptr || StartReading(receiver)) ended = ReadOn(receiver);
  } catch (const int message) {
    // The one exception that the component's iterators throw: the number of a message on the file.
    PostError(std::string(QantServerErrorText(kCatalogue, message).GetText()) + " " +
              source().GetFileSpec());
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
  sampler_.emplace(source_->sampleFraction(), options_.seed);
  threadsBefore_ = embedded::ThreadsStarted();
  iterator_.reset(source().MakeIterator(buffer_->obs()));
  iterator_->SetErrorMonitor(&monitor_);
  return true;
}

bool CommandImport::ReadOn(CaseReceiver& receiver) {
  long long& taken = stats_.cases;
  while (iterator_->Next()) {
    ++casesRead_;
    if (sampler_->Keep()) {
      ++taken;
      receiver.Take(iterator_->GetObsPointer());
    }
    if ((casesRead_ & kQuestionMask) == 0 &&
        (embedded::AttentionRequested() || !receiver.GoesOn(taken))) {
      return false;
    }
  }
  return true;
}

void CommandImport::EndReading() {
  finished_ = true;
  if (iterator_ == nullptr) return;
  iterator_.reset();
  // An iterator without threads reads on the caller's.
  stats_.threads = std::max(1, embedded::ThreadsStarted() - threadsBefore_);
}

}  // namespace library
