#include "library/parts/SummaryMerge.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <fmt/format.h>

namespace library {

bool MergeSummaries(std::vector<FilePartSummary> summaries, FilePartSummary* merged,
                    std::size_t* wrong, std::string* problem) {
  std::vector<std::size_t> order(summaries.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
    const PartRange& a = summaries[left].range;
    const PartRange& b = summaries[right].range;
    return a.from < b.from || (a.from == b.from && a.to < b.to);
  });
  *merged = std::move(summaries[order.front()]);
  for (std::size_t index = 1; index < order.size(); ++index) {
    *wrong = order[index];
    if (!merged->Append(summaries[*wrong], problem)) return false;
  }
  return true;
}

FilePartSummary LinesAlone(FilePartSummary summary) {
  const std::optional<QuotePosition> quotes = summary.values.quotes;
  summary.values = PartSummary();
  summary.values.quotes = quotes;
  summary.cut.clear();
  return summary;
}

bool PutBefore(const FilePartSummary& before, PartOptions::Single* part,
               RewritingOptions* rewriting, std::string* problem) {
  FileState state;
  if (before.range.from != 0 || before.range.to != part->range.from) {
    *problem = fmt::format("what stands before is of bytes {}-{}, and the part begins at byte {}",
                           before.range.from, before.range.to, part->range.from);
    return false;
  }
  if (!GetFileState(before.file, &state) || state != before.state) {
    *problem = fmt::format("the file {} changed since it was summed up", before.file);
    return false;
  }
  part->before = before.lines;
  part->quotes = before.values.quotes;
  rewriting->joinQuotedLines |= before.rewriting.joinQuotedLines;
  rewriting->backslashEscapes |= before.rewriting.backslashEscapes;
  rewriting->keepStrayQualifiers |= before.rewriting.keepStrayQualifiers;
  return true;
}

}  // namespace library
