#include "library/parts/FileSummary.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "HostFramework/FileStream.h"
#include "HostFramework/Threads.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "library/parts/PartReader.h"

namespace library {
namespace {

// Time between two looks at the user's wishes.
constexpr std::chrono::milliseconds kPatience{50};
// Parts that may wait for an earlier one, for each thread.
constexpr std::int64_t kPartsAhead = 4;

constexpr char kNoMemory[] = "there is not enough memory";
constexpr char kNotRead[] = "reading the file failed";

// Parts on their way into one summary, in their order.
class Gathering {
 public:
  Gathering(std::int64_t begin, std::int64_t end, std::int64_t partBytes, PartSummary* summary)
      : begin_(begin),
        partBytes_(partBytes),
        parts_((end - begin + partBytes - 1) / partBytes),
        summary_(summary) {}

  std::int64_t parts() const { return parts_; }
  std::int64_t BeginOf(std::int64_t part) const { return begin_ + part * partBytes_; }

  // The next part that nobody has taken; -1 when there is none or the work is given up. Waits
  // while too many parts before it are missing.
  std::int64_t Take(std::int64_t ahead) {
    const sfGuard guard(mutex_);
    while (stop_.load() == 0 && taken_ >= gathered_ + ahead) room_.wait(mutex_);
    return stop_.load() != 0 || taken_ == parts_ ? -1 : taken_++;
  }
  void Give(std::int64_t part, PartSummary summary) {
    const sfGuard guard(mutex_);
    waiting_.emplace(part, std::move(summary));
    for (auto next = waiting_.begin(); next != waiting_.end() && next->first == gathered_;
         next = waiting_.begin()) {
      summary_->Append(next->second);
      waiting_.erase(next);
      ++gathered_;
    }
    room_.notify_all();
    done_.notify_all();
  }
  // Nothing more is taken; `problem` says why unless another one was there before.
  void GiveUp(const char* problem) {
    const sfGuard guard(mutex_);
    if (stop_.exchange(1) == 0) problem_ = problem;
    room_.notify_all();
    done_.notify_all();
  }
  // Waits some time for the end; true when all parts are gathered or it was given up.
  bool WaitForEnd() {
    const sfGuard guard(mutex_);
    const auto ended = [this]()
                           SF_REQUIRES(mutex_) { return stop_.load() != 0 || gathered_ == parts_; };
    return done_.wait_for(mutex_, kPatience, ended);
  }
  // Copies what is gathered, unless it is what the latest call copied.
  bool Look(PartSummary* soFar) {
    const sfGuard guard(mutex_);
    if (gathered_ == looked_) return false;
    looked_ = gathered_;
    *soFar = *summary_;
    return true;
  }
  const std::atomic<std::int32_t>* stop() const { return &stop_; }
  const char* problem() {
    const sfGuard guard(mutex_);
    return problem_;
  }

 private:
  const std::int64_t begin_;
  const std::int64_t partBytes_;
  const std::int64_t parts_;
  sfMutex mutex_;
  std::condition_variable_any room_;
  std::condition_variable_any done_;
  PartSummary* const summary_ SF_PT_GUARDED_BY(mutex_);
  std::map<std::int64_t, PartSummary> waiting_ SF_GUARDED_BY(mutex_);
  std::int64_t taken_ SF_GUARDED_BY(mutex_) = 0;
  std::int64_t gathered_ SF_GUARDED_BY(mutex_) = 0;
  std::int64_t looked_ SF_GUARDED_BY(mutex_) = 0;
  const char* problem_ SF_GUARDED_BY(mutex_) = nullptr;
  std::atomic<std::int32_t> stop_{0};
};

class Summarizer : public sfThread {
 public:
  Summarizer(const FileSummarySettings& settings, const textwizard::NullTexts& nulls,
             const QANT_FileStream& stream, Gathering& gathering, std::int64_t ahead)
      : sfThread(1),
        end_(settings.end),
        beginsInLine_(settings.beginsInLine),
        reader_(stream, settings.cut, nulls, settings.standIns),
        gathering_(gathering),
        ahead_(ahead) {
    reader_.SetStop(gathering.stop());
  }
  ~Summarizer() override { join(); }

  std::int64_t bytesRead() const { return reader_.bytesRead(); }

  void threadMain() override {
    try {
      for (std::int64_t part; (part = gathering_.Take(ahead_)) >= 0;) {
        PartSummary summary;
        const std::int64_t from = gathering_.BeginOf(part);
        const std::int64_t to = std::min(end_, gathering_.BeginOf(part + 1));
        if (!reader_.Summarize(from, to, part == 0 && !beginsInLine_, &summary)) {
          gathering_.GiveUp(kNotRead);
          return;
        }
        gathering_.Give(part, std::move(summary));
      }
    } catch (const std::bad_alloc&) {
      gathering_.GiveUp(kNoMemory);
    }
  }

 private:
  const std::int64_t end_;
  const bool beginsInLine_;
  PartReader reader_;
  Gathering& gathering_;
  const std::int64_t ahead_;
};

// The end of line `lastLine`, or `end` when that comes first.
std::int64_t EndOfLine(const QANT_FileStream& stream, const FileSummarySettings& settings) {
  textwizard::RecordReader reader(stream);
  reader.SeekBegin();
  reader.HandleByteOrderMark();
  reader.SeekTo(settings.begin);
  std::int64_t line = settings.linesBefore;
  while (line < settings.lastLine && reader.position() < settings.end && reader.Read(true)) ++line;
  return std::min(reader.position(), settings.end);
}

bool Run(const FileSummarySettings& settings, PartSummary* summary, std::string* problem) {
  QANT_FileStream stream;
  if (!stream.Open(settings.path.c_str(), "", "rb")) {
    *problem = "the file cannot be opened";
    return false;
  }
  FileSummarySettings bounded = settings;
  if (settings.lastLine > 0) bounded.end = EndOfLine(stream, settings);
  const textwizard::NullTexts nulls(settings.nulls);
  *summary = PartSummary(ColumnsOf(settings.cut));
  summary->lines = settings.linesBefore;
  Gathering gathering(bounded.begin, std::max(bounded.begin, bounded.end), settings.partBytes,
                      summary);

  const int processors = settings.threads > 0 ? settings.threads : getLogicalCPUCount();
  const auto threads = static_cast<int>(std::min<std::int64_t>(processors, gathering.parts()));
  std::vector<std::unique_ptr<Summarizer>> summarizers;
  summarizers.reserve(static_cast<std::size_t>(threads));
  for (int thread = 0; thread < threads; ++thread) {
    summarizers.push_back(
        std::make_unique<Summarizer>(bounded, nulls, stream, gathering, kPartsAhead * threads));
  }
  // One part is not worth a thread.
  bool started = false;
  for (std::size_t i = 0; gathering.parts() > 1 && i < summarizers.size(); ++i) {
    started = summarizers[i]->activate() || started;
  }
  if (!started && !summarizers.empty()) summarizers[0]->threadMain();
  while (gathering.parts() > 0 && !gathering.WaitForEnd()) {
    if (embedded::AttentionRequested()) gathering.GiveUp("");
    std::int64_t bytes = 0;
    for (const auto& summarizer : summarizers) bytes += summarizer->bytesRead();
    if (settings.progress) settings.progress(bytes);
    PartSummary soFar;
    if (settings.grown && gathering.Look(&soFar)) settings.grown(soFar);
  }
  summarizers.clear();
  if (gathering.problem() == nullptr) return true;
  *problem = gathering.problem();
  return false;
}

}  // namespace

bool SummarizeFile(const FileSummarySettings& settings, PartSummary* summary,
                   std::string* problem) {
  try {
    return Run(settings, summary, problem);
  } catch (const std::bad_alloc&) {
    *problem = kNoMemory;
    return false;
  }
}

}  // namespace library
