#include "library/import/Advice.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <unicode/uchar.h>

#include "HostFramework/Text.h"
#include "command/TxtWzParser.h"
#include "library/outputs/Utf8Converter.h"
#include "model/FormatCode.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"

namespace library {
namespace {

using textwizard::ImportSettings;
using textwizard::ImportSource;

// One character of a host text; of bytes that are none, one byte and no code.
struct Character {
  std::string_view bytes;
  std::uint32_t code;
};

Character FirstOf(std::string_view text) {
  constexpr std::size_t kLongest = 8;
  std::uint32_t code = 0;
  const int length =
      QANTMBU32Get_A(&code, text.data(), 0, static_cast<int>(std::min(text.size(), kLongest)));
  if (length <= 0) return {text.substr(0, 1), 0};
  return {text.substr(0, static_cast<std::size_t>(length)), code};
}

std::string NameOf(const Character& character) {
  switch (character.code) {
    case ' ':
      return "blank";
    case '\t':
      return "tab";
    case '\\':
      return "backslash";
    case ',':
      return "comma";
    case '\'':
      return "apostrophe";
    case '"':
      return "quotation mark";
    default:
      break;
  }
  if (u_isalpha(static_cast<UChar32>(character.code))) {
    return "the letter " + std::string(character.bytes);
  }
  return std::string(character.bytes);
}

// "a, b and c".
std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) list += i + 1 < names.size() ? ", " : " and ";
    list += names[i];
  }
  return list;
}

std::string Lines(std::int64_t count) {
  return fmt::format("{} line{}", count, count == 1 ? "" : "s");
}

// The lines of the file, as far as the data goes.
struct LineCounts {
  std::int64_t all = 0;
  std::int64_t beforeData = 0;
  std::int64_t emptyInData = 0;
};

LineCounts CountLines(const ImportSource& source) {
  textwizard::RecordReader reader(source.stream());
  reader.SeekBegin();
  reader.HandleByteOrderMark();
  LineCounts lines;
  while (reader.Read(true)) {
    ++lines.all;
    if (lines.all < source.settings().firstCase) {
      ++lines.beforeData;
    } else if (reader.record().empty()) {
      ++lines.emptyInData;
    }
  }
  return lines;
}

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

bool IsAsciiFile(const QANT_FileStream& opened) {
  QANT_FileStream stream(opened);
  if (stream.Seek(0, QANT_FileStream::kFromStart) != 0) return true;
  for (std::string_view block = stream.Buffered(); !block.empty(); block = stream.Buffered()) {
    if (!IsAscii(block)) return false;
    stream.Consume(block.size());
  }
  return true;
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
      const std::string_view character = FirstOf(record.substr(at)).bytes;
      if (at + character.size() > edge.byte) return Split{edge, std::string(character)};
      at += character.size();
    }
  }
  return std::nullopt;
}

}  // namespace

std::string DelimiterAdvice(const CommandOutline& outline) {
  const OutlinedSubcommand* delimiters = outline.Find("DELIMITERS");
  if (delimiters == nullptr || !delimiters->accepted) return {};
  // What the parser makes of the text, and how much of that an escape at its start stands for.
  std::string value = delimiters->value;
  textwizard::TxtWzParser::ConvertSlashTab(value);
  const std::size_t announced = delimiters->value.size() - value.size();
  bool suspicious = false;
  std::vector<std::string> names;
  for (std::string_view left = value; !left.empty();) {
    const Character character = FirstOf(left);
    const auto place = static_cast<std::size_t>(left.data() - value.data());
    const bool isBackslash = character.code == '\\' && place >= announced;
    suspicious |= isBackslash || u_isalpha(static_cast<UChar32>(character.code));
    names.push_back(NameOf(character));
    left.remove_prefix(character.bytes.size());
  }
  if (!suspicious) return {};
  return fmt::format(
      "{} means {}; a tab is \\t and a backslash \\\\, and only at the start of the text",
      delimiters->place.words, Listed(names));
}

std::string NoCaseAdvice(const ImportSource& source, const std::string& file) {
  const LineCounts lines = CountLines(source);
  const std::int64_t firstCase = source.settings().firstCase;
  if (lines.all == 0) return file + " is empty: there are no cases";
  if (firstCase > lines.all) {
    return fmt::format("FIRSTCASE is {}, but {} has only {}: there are no cases", firstCase, file,
                       Lines(lines.all));
  }
  const std::int64_t inData = lines.all - lines.beforeData;
  const std::string from = firstCase > 1 ? fmt::format(" from line {} on", firstCase) : "";
  if (lines.emptyInData == inData) {
    return fmt::format("{} has only empty lines{}: there are no cases", file, from);
  }
  return fmt::format("none of the {} of {}{} gave a case", Lines(inData), file, from);
}

std::string ColumnEdgeAdvice(const ImportSource& source, std::int64_t cases) {
  const ImportSettings& settings = source.settings();
  if (settings.arrangement != textwizard::kFixedColumns || cases == 0) return {};
  textwizard::RecordReader reader(source.stream());
  reader.SeekBegin();
  reader.HandleByteOrderMark();
  if (!HasLongCharacters() || (!reader.isUtf16() && IsAsciiFile(source.stream()))) return {};

  std::vector<std::vector<Edge>> edges;
  for (std::uint32_t line = 1; line <= settings.recordsPerCase; ++line) {
    edges.push_back(EdgesOf(source, line));
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
