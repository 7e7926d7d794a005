#include "library/import/BareParts.h"

#include <algorithm>
#include <functional>

#include <fmt/format.h>

#include "HostFramework/FileStream.h"

namespace library {
namespace {

// How the columns of a file are cut: two who say the same count the same.
std::string CutText(const FileSummarySettings& data) {
  const textwizard::ImportSettings& settings = data.cut.settings;
  std::string text =
      fmt::format("{} {} {} {} {} {} {} {}|{}|{}|", static_cast<int>(settings.arrangement),
                  static_cast<int>(settings.encoding), settings.firstCase, data.begin, data.end,
                  data.linesBefore, settings.leadingSpaces, settings.multipleSpaces,
                  settings.delimiters, settings.qualifierSet ? settings.qualifier : "");
  if (data.standIns != nullptr) {
    text += fmt::format("{} {} {}|", static_cast<int>(data.standIns->lineFeed),
                        static_cast<int>(data.standIns->carriageReturn),
                        static_cast<int>(data.standIns->nothing));
  }
  for (const ColumnCut::Field& field : data.cut.fields) {
    text += fmt::format("{} {} {},", field.imported, field.start, field.width);
  }
  for (const std::string& null : data.nulls) text += fmt::format("{}:{}", null.size(), null);
  return text;
}

// Which part, of a file of so many bytes.
using PartOfFile = std::function<PartRange(std::int64_t fileBytes)>;

// The walk over the lines of a part.
bool CountQuotes(const FileSummarySettings& data, const PartLines& lines, PartSummary* values) {
  if (lines.end < 0) return true;
  QuotePosition before;
  QuotePosition behind;
  if (!data.quotesAt(lines.begin, &before) || !data.quotesAt(lines.end, &behind)) return false;
  QuotePosition& quotes = values->quotes.emplace();
  quotes.state = behind.IsOpen() ? QuotePosition::kQualified : QuotePosition::kStart;
  quotes.joinedLines = behind.joinedLines - before.joinedLines;
  quotes.escapes = behind.escapes - before.escapes;
  quotes.strays = behind.strays - before.strays;
  quotes.longestJoin = behind.longestJoin;
  quotes.feeds = behind.feeds - before.feeds;
  quotes.returns = behind.returns - before.returns;
  quotes.removed = behind.removed - before.removed;
  return true;
}

// Reads the lines that begin in one part.
bool ReadPart(const FileSummarySettings& data, const PartOfFile& partOf,
              const RewritingOptions& rewriting, std::int64_t shownMark, FilePartSummary* summary,
              std::string* problem) {
  QANT_FileStream stream;
  if (!stream.Open(data.path.c_str(), "", "rb")) {
    *problem = "the file cannot be opened";
    return false;
  }
  summary->fileBytes = stream.Size() - shownMark;
  summary->range = partOf(summary->fileBytes);
  summary->shownMark = shownMark;
  summary->rewriting = rewriting;
  summary->cut = CutText(data);
  // A mark that the file lacks stands in front of its first byte.
  const PartRange shown{summary->range.from == 0 ? 0 : summary->range.from + shownMark,
                        summary->range.to + shownMark};
  summary->lines = {};
  if (!CountPart(stream, data.cut.settings, 1, shown, &summary->lines)) {
    *problem = "reading the file failed";
    return false;
  }
  summary->values = PartSummary(ColumnsOf(data.cut));
  if (data.quotesAt && !CountQuotes(data, summary->lines, &summary->values)) {
    *problem = "reading the file failed";
    return false;
  }
  // No line begins in it.
  if (summary->lines.lines == 0 && summary->lines.units == 0) return true;
  FileSummarySettings part = data;
  part.begin = std::max(data.begin, shown.from);
  part.end = std::max(part.begin, std::min(data.end, shown.to));
  part.beginsInLine = shown.from > data.begin;
  part.linesBefore = 0;
  part.progress = nullptr;
  const std::optional<QuotePosition> quotes = summary->values.quotes;
  if (!SummarizeFile(part, &summary->values, problem)) return false;
  summary->values.quotes = quotes;
  return true;
}

bool CheckState(const FilePartSummary& summary, std::string* problem) {
  FileState state;
  if (GetFileState(summary.file, &state) && state == summary.state) return true;
  *problem = fmt::format("the file {} changed since it was summed up", summary.file);
  return false;
}

bool Summarize(const std::string& name, const PartOfFile& partOf, InputFiles& files,
               const BareImportSettings& settings, FilePartSummary* summary, std::string* problem) {
  *summary = {};
  summary->file = name;
  if (!GetFileState(name, &summary->state)) {
    *problem = "only a file that keeps its bytes can be read in parts";
    return false;
  }
  BareImportSettings own = settings;
  own.readsFrom = [&](std::int64_t bytes) { return partOf(bytes).from; };
  bool isRead = false;
  own.summarize = [&](const FileSummarySettings& data, const RewritingOptions& rewriting,
                      std::int64_t shownMark, PartSummary* /*values*/, std::string* why) {
    isRead = ReadPart(data, partOf, rewriting, shownMark, summary, why);
    // What comes of it is found by whoever has all parts.
    return false;
  };
  BareImport import;
  UnderstandFile(name, files, own, &import, problem);
  return isRead && CheckState(*summary, problem);
}

}  // namespace

bool SummarizeFilePart(const std::string& name, std::int64_t number, std::int64_t count,
                       InputFiles& files, const BareImportSettings& settings,
                       FilePartSummary* summary, std::string* problem) {
  return Summarize(
      name, [number, count](std::int64_t bytes) { return PartOf(bytes, number, count); }, files,
      settings, summary, problem);
}

bool SummarizeFilePart(const std::string& name, const PartRange& part, InputFiles& files,
                       const BareImportSettings& settings, FilePartSummary* summary,
                       std::string* problem) {
  return Summarize(
      name,
      [&part](std::int64_t bytes) {
        return PartRange{std::min(part.from, bytes), std::min(part.to, bytes)};
      },
      files, settings, summary, problem);
}

bool ValuesOfSummary(const FilePartSummary& summary, const FileSummarySettings& data,
                     const RewritingOptions& rewriting, PartSummary* values) {
  if (rewriting != summary.rewriting || CutText(data) != summary.cut) return false;
  *values = PartSummary(summary.values.columns.size());
  values->lines = data.linesBefore;
  values->Append(summary.values);
  return true;
}

bool HoldsFor(const FilePartSummary& summary, const RewritingOptions& rewriting,
              std::string* problem) {
  const bool joined = summary.values.quotes && summary.values.quotes->joinedLines > 0;
  if (summary.parts == 1 || rewriting.joinQuotedLines || !joined) return true;
  *problem =
      "a quote is never closed, or only far behind it, so its line ends are not within quotes, "
      "which the parts cannot know: the file is one part";
  return false;
}

bool UnderstandParts(const FilePartSummary& summary, InputFiles& files,
                     const BareImportSettings& settings, BareImport* import, std::string* problem) {
  if (!summary.isWhole()) {
    *problem = fmt::format("bytes {} to {} of {} bytes are summed up, not all of them",
                           summary.range.from, summary.range.to, summary.fileBytes);
    return false;
  }
  if (!CheckState(summary, problem)) return false;
  BareImportSettings own = settings;
  own.summarize = [&](const FileSummarySettings& data, const RewritingOptions& rewriting,
                      std::int64_t /*shownMark*/, PartSummary* values, std::string* why) {
    // What was tried in vain by those who read the parts is not in the summaries.
    if (!HoldsFor(summary, rewriting, why)) return false;
    return ValuesOfSummary(summary, data, rewriting, values) || SummarizeFile(data, values, why);
  };
  return UnderstandFile(summary.file, files, own, import, problem);
}

}  // namespace library
