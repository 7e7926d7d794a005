#include "library/capi/PartWork.h"

#include <atomic>
#include <memory>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "HostFramework/embedded/messages/Attention.h"
#include "library/capi/Failure.h"
#include "library/import/BareParts.h"
#include "library/import/HostSettings.h"
#include "library/parts/SummaryMerge.h"

namespace library {
namespace {

// More parts than that are no parts of any file.
constexpr std::int64_t kMostParts = 1'000'000'000;

Failure Usage(std::string text) { return {.status = TEXTWIZARD_USAGE, .text = std::move(text)}; }

}  // namespace

std::string SummarizedPart(const std::string& path, std::int64_t number, std::int64_t count,
                           BareImportSettings settings, const SessionOptions& options) {
  if (number < 1 || number > count || count > kMostParts) {
    throw Usage(fmt::format("there is no part {} of {}: parts are counted from 1", number, count));
  }
  if (settings.sampleLines > 0) {
    throw Usage("types from a sample of lines need no parts: leave sample_lines out");
  }
  const std::unique_ptr<HostUse> host = HostUse::Alone();
  if (host == nullptr) {
    throw Failure{.status = TEXTWIZARD_BUSY,
                  .text = "another import is being opened or read; wait until it is read"};
  }
  std::atomic<bool> cancelled = false;
  settings.nulls = options.nullTexts;
  settings.threads = options.workers;
  const auto tell = [&](std::int64_t bytes, std::int64_t all) {
    if (options.progress && !options.progress(0, bytes, all)) cancelled = true;
  };
  settings.progress = tell;
  InputFiles files(tell);
  const embedded::AttentionScope scope(cancelled);
  FilePartSummary summary;
  std::string problem;
  if (SummarizeFilePart(path, number, count, files, settings, &summary, &problem)) {
    return SummaryBytes(summary);
  }
  if (embedded::AttentionRequested()) {
    throw Failure{.status = TEXTWIZARD_CANCELLED, .text = "the import was cancelled"};
  }
  throw Failure{.status = TEXTWIZARD_FILE, .text = path + ": " + problem};
}

FilePartSummary SummaryFrom(std::string_view bytes) {
  FilePartSummary summary;
  if (ReadSummary(bytes, &summary)) return summary;
  throw Usage("the bytes are no summary of a part, or one of another version of the library");
}

std::string MergedSummary(std::vector<FilePartSummary> summaries, bool linesOnly) {
  FilePartSummary merged;
  std::size_t wrong = 0;
  std::string problem;
  if (!MergeSummaries(std::move(summaries), &merged, &wrong, &problem)) {
    throw Usage(fmt::format("summary {}: {}", wrong + 1, problem));
  }
  return SummaryBytes(linesOnly ? LinesAlone(std::move(merged)) : merged);
}

std::string SummaryText(const FilePartSummary& summary) {
  const nlohmann::ordered_json text = {{"file", summary.file},
                                       {"file_bytes", summary.state.bytes},
                                       {"modified", summary.state.modified},
                                       {"data_bytes", summary.fileBytes},
                                       {"from", summary.range.from},
                                       {"to", summary.range.to},
                                       {"lines", summary.lines.lines},
                                       {"records", summary.values.records},
                                       {"columns", summary.values.columns.size()}};
  return text.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace library
