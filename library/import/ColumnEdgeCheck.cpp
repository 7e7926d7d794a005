#include "library/import/ColumnEdgeCheck.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "HostFramework/Text.h"
#include "library/command/HostCharacter.h"
#include "library/outputs/Utf8Converter.h"
#include "model/FormatCode.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"

namespace library {
namespace {

using textwizard::ImportSettings;
using textwizard::ImportSource;

// Files below this are looked at closely at once.
constexpr std::int64_t kSmallFile = 1 << 20;

// Whether the host's text has characters of several bytes.
bool HasLongCharacters() {
  if (qUTF8mode()) return true;
  for (int lead = 0x81; lead <= 0xFE; ++lead) {
    for (int trail = 0x40; trail <= 0xFE; ++trail) {
      const char text[] = {static_cast<char>(lead), static_cast<char>(trail), '\0'};
      if (QANTMBmbclen_A(text) > 1) return true;
    }
  }
  return false;
}

// An edge of a column in the records of one line of the cases.
struct Edge {
  std::size_t byte;  // of the record, from 0
  const textwizard::TxtWzVar* variable;
  bool isEnd;
};

// The edges in line `line` (from 1) of a case, from left to right.
std::vector<Edge> EdgesOf(const ImportSource& source, std::uint32_t line) {
  std::vector<Edge> edges;
  for (const auto& variable : source.variables()) {
    if (variable->formatType == textwizard::kFormatSkip || variable->recordNumber != line) continue;
    const std::size_t end = std::size_t{variable->startColumn} + variable->width;
    edges.push_back({variable->startColumn, variable.get(), false});
    edges.push_back({end, variable.get(), true});
  }
  std::stable_sort(edges.begin(), edges.end(),
                   [](const Edge& left, const Edge& right) { return left.byte < right.byte; });
  return edges;
}

// The first edge that falls inside a character of `record`, and that character.
struct Split {
  Edge edge;
  std::string character;
};

std::optional<Split> FindSplit(std::string_view record, const std::vector<Edge>& edges) {
  std::size_t at = 0;
  for (const Edge& edge : edges) {
    if (edge.byte >= record.size()) break;
    // A byte of ASCII begins a character in UTF-8, and there what lies before needs no look.
    if (qUTF8mode() && (static_cast<unsigned char>(record[edge.byte]) & 0xC0U) != 0x80U) continue;
    if (qUTF8mode()) {
      constexpr std::size_t kLongest = 4;
      at = std::max(at, edge.byte - std::min(edge.byte, kLongest - 1));
    }
    while (at < edge.byte) {
      const std::string_view character = FirstCharacter(record.substr(at)).bytes;
      if (at + character.size() > edge.byte) return Split{edge, std::string(character)};
      at += character.size();
    }
  }
  return std::nullopt;
}

}  // namespace

ColumnEdgeCheck::ColumnEdgeCheck(const ImportSource& source)
    : source_(source),
      needless_(source.settings().arrangement != textwizard::kFixedColumns || !HasLongCharacters()),
      stream_(source.stream()) {
  // With a limit the cost is the few cases' anyway.
  if (needless_ || source.settings().importMode == textwizard::kImportFirst ||
      stream_.Size() < kSmallFile || stream_.Seek(0, QANT_FileStream::kFromStart) != 0) {
    return;
  }
  try {
    scan_ = std::thread([this] { LookForOtherThanAscii(); });
  } catch (const std::system_error&) {
    // No thread is to be had: everything is looked at closely.
  }
}

ColumnEdgeCheck::~ColumnEdgeCheck() {
  stop_ = true;
  if (scan_.joinable()) scan_.join();
}

void ColumnEdgeCheck::LookForOtherThanAscii() {
  std::string_view block = stream_.Buffered();
  while (!block.empty() && IsAscii(block) && !stop_) {
    stream_.Consume(block.size());
    block = stream_.Buffered();
  }
  allAscii_ = block.empty() && !stream_.ReadFailed();
}

std::string ColumnEdgeCheck::Advice(std::int64_t cases) {
  if (needless_ || cases == 0) return {};
  if (scan_.joinable()) scan_.join();
  if (allAscii_) return {};
  const ImportSettings& settings = source_.settings();
  textwizard::RecordReader reader(source_.stream());
  reader.SeekBegin();
  reader.HandleByteOrderMark();
  std::vector<std::vector<Edge>> edges;
  for (std::uint32_t line = 1; line <= settings.recordsPerCase; ++line) {
    edges.push_back(EdgesOf(source_, line));
  }
  textwizard::RecordDecoder decoder(settings.encoding);
  const std::int64_t last = settings.firstCase - 1 + cases * settings.recordsPerCase;
  for (std::int64_t line = 1; line <= last && reader.Read(true); ++line) {
    if (line < settings.firstCase || IsAscii(reader.record())) continue;
    const auto lineOfCase =
        static_cast<std::size_t>((line - settings.firstCase) % settings.recordsPerCase);
    const std::optional<Split> split =
        FindSplit(decoder.Decode(reader.record(), reader.mark()), edges[lineOfCase]);
    if (!split) continue;
    return fmt::format(
        "in line {} the {} of the columns of {} (byte {}, from 0) falls inside the character {}; "
        "columns count bytes, and one like this has {} of them: count them so in the command, or "
        "work in a code page where each has one",
        line, split->edge.isEnd ? "end" : "start", split->edge.variable->name, split->edge.byte,
        split->character, split->character.size());
  }
  return {};
}

}  // namespace library
