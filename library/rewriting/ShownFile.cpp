#include "library/rewriting/ShownFile.h"

#include <array>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "HostFramework/Threads.h"
#include "library/rewriting/Controls.h"
#include "library/rewriting/QuoteGuess.h"

namespace library {
namespace {

using embedded::StreamDevice;
using textwizard::ByteOrderMark;

ByteOrderMark MarkOf(StreamDevice& file) {
  std::array<char, 3> head{};
  std::size_t got = 0;
  while (got < head.size()) {
    const std::ptrdiff_t more =
        file.ReadAt(static_cast<std::int64_t>(got), head.data() + got, head.size() - got);
    if (more <= 0) break;
    got += static_cast<std::size_t>(more);
  }
  const std::string_view text(head.data(), got);
  if (text.starts_with("\xEF\xBB\xBF")) return ByteOrderMark::kUtf8;
  if (text.starts_with("\xFE\xFF")) return ByteOrderMark::kUtf16BigEndian;
  if (text.starts_with("\xFF\xFE")) return ByteOrderMark::kUtf16LittleEndian;
  return ByteOrderMark::kNone;
}

// Stand-ins that the file leaves.
std::optional<StandIns> Choose(StreamDevice& file, FileUnits units, std::string* problem) {
  ControlSet held;
  if (!FindControls(file, units, &held)) {
    *problem = "reading the file failed";
    return std::nullopt;
  }
  const std::optional<StandIns> chosen = ChooseStandIns(held);
  if (!chosen) {
    *problem =
        "the file holds so many control characters that none is left to stand for the line "
        "breaks and escapes in its values";
  }
  return chosen;
}

// The files that are shown, which all streams of the process open through one opener.
class ShownPaths {
 public:
  // How a path is shown.
  struct View {
    const void* owner;
    std::string path;
    std::string mark;
    std::shared_ptr<QuoteIndex> index;
  };

  static ShownPaths& Instance() {
    static ShownPaths paths;
    return paths;
  }
  void Add(View view) {
    const sfGuard guard(mutex_);
    if (views_.empty()) {
      before_ =
          embedded::SetStreamDeviceOpener([](const char* path) { return Instance().Open(path); });
    }
    views_.push_back(std::move(view));
  }
  void Remove(const void* owner) {
    const sfGuard guard(mutex_);
    std::erase_if(views_, [owner](const View& view) { return view.owner == owner; });
    if (views_.empty()) embedded::SetStreamDeviceOpener(std::exchange(before_, nullptr));
  }
  std::unique_ptr<StreamDevice> Open(const char* path) {
    embedded::StreamDeviceOpener before;
    std::optional<View> shown;
    {
      const sfGuard guard(mutex_);
      before = before_;
      for (const View& view : views_) {
        if (view.path == path) shown = view;
      }
    }
    std::unique_ptr<StreamDevice> device = before ? before(path) : embedded::OpenPosixDevice(path);
    if (!device || !shown) return device;
    if (!shown->mark.empty()) {
      device = std::make_unique<MarkedDevice>(std::move(device), shown->mark);
    }
    if (shown->index) {
      device = std::make_unique<RewritingDevice>(std::move(device), std::move(shown->index));
    }
    return device;
  }

 private:
  sfMutex mutex_;
  std::vector<View> views_ SF_GUARDED_BY(mutex_);
  embedded::StreamDeviceOpener before_ SF_GUARDED_BY(mutex_);
};

}  // namespace

ShownFile::ShownFile(std::string path, std::string mark)
    : path_(std::move(path)), mark_(std::move(mark)) {}

std::unique_ptr<ShownFile> ShownFile::Show(const Settings& settings,
                                           const textwizard::ImportSettings& import,
                                           std::string* problem) {
  std::unique_ptr<ShownFile> shown(new ShownFile(settings.path, settings.mark));
  ShownPaths& paths = ShownPaths::Instance();
  paths.Add({shown.get(), settings.path, settings.mark, nullptr});
  if (!settings.rewriting.RewritesBytes()) return shown;

  std::unique_ptr<StreamDevice> device = paths.Open(settings.path.c_str());
  if (!device) {
    *problem = "the file cannot be opened";
    return nullptr;
  }
  QuoteRules rules;
  if (!MakeQuoteRules(import, MarkOf(*device), settings.rewriting, &rules, problem)) return nullptr;
  const std::optional<StandIns> standIns =
      settings.standIns ? settings.standIns : Choose(*device, rules.units, problem);
  if (!standIns) return nullptr;
  const QuoteRewriter rewriter(std::move(rules), *standIns);
  std::optional<QuoteAnchor> anchor = settings.known;
  if (!anchor && settings.guessAt > 0) anchor = GuessQuotes(rewriter, *device, settings.guessAt);
  auto index = std::make_shared<QuoteIndex>(rewriter, anchor);
  shown->joined_ = std::make_unique<JoinedLines>(std::move(device), index);
  shown->index_ = index;
  paths.Add({shown.get(), settings.path, settings.mark, std::move(index)});
  return shown;
}

ShownFile::~ShownFile() { ShownPaths::Instance().Remove(this); }

bool ShownFile::PositionAt(std::int64_t shown, QuotePosition* position) const {
  *position = {};
  return !joined_ || joined_->PositionAt(shown, position);
}

bool ShownFile::Totals(QuotePosition* totals) const {
  *totals = {};
  return !joined_ || joined_->AtEnd(totals);
}

}  // namespace library
