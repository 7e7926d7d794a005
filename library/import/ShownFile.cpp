#include "library/import/ShownFile.h"

#include <array>
#include <limits>
#include <utility>

#include "library/import/Controls.h"

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

}  // namespace

ShownFile::ShownFile(std::string path, std::string mark)
    : path_(std::move(path)), mark_(std::move(mark)) {}

std::unique_ptr<ShownFile> ShownFile::Show(const Settings& settings,
                                           const textwizard::ImportSettings& import,
                                           std::string* problem) {
  std::unique_ptr<ShownFile> shown(new ShownFile(settings.path, settings.mark));
  ShownFile* const file = shown.get();
  file->before_ =
      embedded::SetStreamDeviceOpener([file](const char* path) { return file->Open(path); });
  if (!settings.rewriting.RewritesBytes()) return shown;

  std::unique_ptr<StreamDevice> device = file->Open(settings.path.c_str());
  if (!device) {
    *problem = "the file cannot be opened";
    return nullptr;
  }
  QuoteRules rules;
  if (!MakeQuoteRules(import, MarkOf(*device), settings.rewriting, &rules, problem)) return nullptr;
  const std::optional<StandIns> standIns =
      settings.standIns ? settings.standIns : Choose(*device, rules.units, problem);
  if (!standIns) return nullptr;
  auto index = std::make_shared<QuoteIndex>(QuoteRewriter(std::move(rules), *standIns));
  file->joined_ = std::make_unique<JoinedLines>(std::move(device), index);
  file->index_ = std::move(index);
  return shown;
}

ShownFile::~ShownFile() { embedded::SetStreamDeviceOpener(std::move(before_)); }

std::unique_ptr<StreamDevice> ShownFile::Open(const char* path) const {
  std::unique_ptr<StreamDevice> device = before_ ? before_(path) : embedded::OpenPosixDevice(path);
  if (!device || path != path_) return device;
  if (!mark_.empty()) device = std::make_unique<MarkedDevice>(std::move(device), mark_);
  if (index_) device = std::make_unique<RewritingDevice>(std::move(device), index_);
  return device;
}

bool ShownFile::Totals(QuotePosition* totals) const {
  *totals = {};
  return !joined_ || joined_->AtEnd(totals);
}

}  // namespace library
