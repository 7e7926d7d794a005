#include "library/parts/SummaryFile.h"

#include <concepts>
#include <cstdint>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include <fmt/format.h>
#include <sys/stat.h>
#include <nlohmann/json.hpp>

#include "library/parts/EvidenceFields.h"

namespace library {
namespace {

using nlohmann::json;

// What the bytes begin with, and the version of what follows.
constexpr char kKind[] = "textwizard summary";
constexpr int kVersion = 3;

// Texts are of any bytes: they are written as such.
class Writer {
 public:
  void operator()(std::integral auto number) { list_.push_back(number); }
  void operator()(const std::string& text) {
    list_.push_back(json::binary({text.begin(), text.end()}));
  }
  void operator()(const ReadingSet& readings) { list_.push_back(readings.bits()); }
  template <typename Element>
  void Size(const std::vector<Element>& elements) {
    list_.push_back(elements.size());
  }
  json Take() { return std::move(list_); }

 private:
  json list_ = json::array();
};

// Throws what is thrown where the list holds something else.
class Reader {
 public:
  explicit Reader(const json& list) : list_(list) {}

  template <std::integral Number>
  void operator()(Number& number) {
    const json& next = Next();
    if constexpr (std::same_as<Number, bool>) {
      number = next.get_ref<const bool&>();
    } else {
      if (!next.is_number_integer()) throw std::runtime_error("no number");
      number = next.get<Number>();
    }
  }
  void operator()(std::string& text) {
    const auto& bytes = Next().get_binary();
    text.assign(bytes.begin(), bytes.end());
  }
  void operator()(ReadingSet& readings) {
    std::uint32_t bits = 0;
    (*this)(bits);
    readings = ReadingSet::FromBits(bits);
  }
  template <typename Element>
  void Size(std::vector<Element>& elements) {
    std::size_t size = 0;
    (*this)(size);
    // Each takes a place at least.
    if (size > list_.size() - next_) throw std::runtime_error("too many");
    elements.resize(size);
  }
  bool AtEnd() const { return next_ == list_.size(); }

 private:
  const json& Next() { return list_.at(next_++); }

  const json& list_;
  std::size_t next_ = 0;
};

template <typename Summary, typename Visitor>
void Visit(Summary& summary, Visitor& visit) {
  visit(summary.file);
  visit(summary.state.bytes);
  visit(summary.state.modified);
  visit(summary.fileBytes);
  visit(summary.range.from);
  visit(summary.range.to);
  visit(summary.parts);
  visit(summary.shownMark);
  visit(summary.rewriting.joinQuotedLines);
  visit(summary.rewriting.backslashEscapes);
  visit(summary.rewriting.keepStrayQualifiers);
  visit(summary.cut);
  visit(summary.lines.unitsPerCase);
  visit(summary.lines.lines);
  visit(summary.lines.units);
  visit(summary.lines.dataEnds);
  visit(summary.lines.begin);
  visit(summary.lines.end);
  EvidenceFields::OfPart(summary.values, visit);
}

// Of how the walk stands at the end, what a field that is still open says.
constexpr auto kOpen = QuotePosition::kQualified;

json QuotesJson(const std::optional<QuotePosition>& quotes) {
  if (!quotes) return nullptr;
  return {quotes->IsOpen(),    quotes->joinedLines, quotes->escapes, quotes->strays,
          quotes->longestJoin, quotes->feeds,       quotes->returns, quotes->removed};
}

std::optional<QuotePosition> QuotesOf(const json& list) {
  if (list.is_null()) return std::nullopt;
  QuotePosition quotes;
  quotes.state = list.at(0).get<bool>() ? kOpen : QuotePosition::kStart;
  list.at(1).get_to(quotes.joinedLines);
  list.at(2).get_to(quotes.escapes);
  list.at(3).get_to(quotes.strays);
  list.at(4).get_to(quotes.longestJoin);
  list.at(5).get_to(quotes.feeds);
  list.at(6).get_to(quotes.returns);
  list.at(7).get_to(quotes.removed);
  return quotes;
}

}  // namespace

bool GetFileState(const std::string& path, FileState* state) {
  struct stat file {};
  if (stat(path.c_str(), &file) != 0 || !S_ISREG(file.st_mode)) return false;
  *state = {file.st_size, std::int64_t{file.st_mtim.tv_sec} * 1'000'000'000 + file.st_mtim.tv_nsec};
  return true;
}

bool FilePartSummary::JoinsLines(const FilePartSummary& next) const {
  // Nothing was tried where no byte is replaced, or no line has begun.
  if (!rewriting.RewritesBytes() || lines.dataEnds || lines.end < 0) return true;
  if (next.lines.begin < 0) return lines.end >= next.range.to + shownMark;
  return lines.end == next.lines.begin;
}

bool FilePartSummary::Append(const FilePartSummary& next, std::string* problem) {
  if (file != next.file) {
    *problem = fmt::format("it is of the file {}, not of {}", next.file, file);
  } else if (state != next.state || fileBytes != next.fileBytes) {
    *problem = fmt::format("the file {} changed between the summaries", file);
  } else if (rewriting != next.rewriting || cut != next.cut ||
             values.columns.size() != next.values.columns.size()) {
    *problem = fmt::format("the file {} was read with other settings", file);
  } else if (range.to != next.range.from) {
    *problem = fmt::format("it begins at byte {} of {}, and byte {} is missing", next.range.from,
                           file, range.to);
  } else if (!JoinsLines(next)) {
    *problem = fmt::format(
        "which line ends of {} lie within quotes is not certain at byte {}: the file is one part",
        file, range.to);
  } else {
    lines.Append(next.lines);
    values.Append(next.values);
    range.to = next.range.to;
    parts += next.parts;
    return true;
  }
  return false;
}

std::string SummaryBytes(const FilePartSummary& summary) {
  Writer writer;
  Visit(summary, writer);
  json starts = json::array();
  for (const PartLines::Start& start : summary.lines.starts) {
    starts.push_back({start.units, start.lines, start.byte});
  }
  const std::vector<std::uint8_t> bytes = json::to_cbor(json::array(
      {kKind, kVersion, writer.Take(), std::move(starts), QuotesJson(summary.values.quotes)}));
  return {bytes.begin(), bytes.end()};
}

bool ReadSummary(std::string_view bytes, FilePartSummary* summary) {
  *summary = {};
  try {
    const json read = json::from_cbor(bytes.begin(), bytes.end());
    if (read.at(0) != kKind || read.at(1) != kVersion) return false;
    Reader reader(read.at(2));
    Visit(*summary, reader);
    if (!reader.AtEnd() || summary->lines.unitsPerCase < 1) return false;
    for (const json& start : read.at(3)) {
      const PartLines::Start place{start.at(0).get<std::int64_t>(), start.at(1).get<std::int64_t>(),
                                   start.at(2).get<std::int64_t>()};
      if (place.units < 0) return false;
      summary->lines.AddStart(place);
    }
    summary->values.quotes = QuotesOf(read.at(4));
    return true;
  } catch (const json::exception&) {
    return false;
  } catch (const std::runtime_error&) {
    return false;
  }
}

}  // namespace library
