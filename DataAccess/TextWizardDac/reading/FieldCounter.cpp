#include "reading/FieldCounter.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace textwizard {
namespace {

constexpr ByteSet kLineEnds = {{'\n', '\r'}, 2};

constexpr bool IsLineEnd(char byte) { return byte == '\n' || byte == '\r'; }

// Each bit becomes whether an odd number of bits is set up to it.
constexpr std::uint64_t PrefixParity(std::uint64_t bits) {
  for (int shift = 1; shift < 64; shift *= 2) bits ^= bits << shift;
  return bits;
}

}  // namespace

struct FieldCounter::MarkedLines {
  // The stretch that is marked.
  std::string_view text;
  // Where the first of the lines begins.
  const char* begin = nullptr;
  // The latest qualifier that is only a character of its field.
  const char* kept = nullptr;
  // Of the byte before the word in hand: it ended a field or a line, or is a qualifier that stands
  // between no others; what follows it is inside qualifiers.
  std::uint64_t before = 1;
  std::uint64_t inside = 0;
};

FieldCounter::FieldCounter(const FieldRules& rules)
    : splitter_(rules, SplitUse::kReading, nullptr),
      keepsStrayQualifiers_(rules.keepsStrayQualifiers()) {
  const CharacterKinds& kinds = splitter_.kinds();
  const ByteSet& cutting = kinds.cutting();
  for (std::size_t i = 0; i < cutting.count; ++i) {
    const auto byte = static_cast<char>(cutting.bytes[i]);
    // No record has one.
    if (IsLineEnd(byte)) continue;
    const bool isQualifier = kinds.OfByte(byte) == CharacterKind::kQualifier;
    ByteSet& set = isQualifier ? qualifier_ : delimiters_;
    set.bytes[set.count++] = cutting.bytes[i];
  }
  // Else blanks are held or dropped.
  const bool blanksCut = rules.IsDelimiter(' ');
  delimitersEndFields_ = !blanksCut || (!rules.leadingSpaces() && !rules.multipleSpaces());
}

std::size_t FieldCounter::CountLines(std::string_view lines) {
  const CharacterKinds& kinds = splitter_.kinds();
  if (delimitersEndFields_ && (kinds.CutsBrokenTextByBytes(lines) || kinds.CutsByBytes(lines))) {
    return CountMarks(lines);
  }
  std::size_t count = 0;
  while (!lines.empty()) {
    const std::size_t length = FindLineEnd8(lines);
    count += CountLine(lines.substr(0, length));
    lines.remove_prefix(std::min(length + 1, lines.size()));
  }
  return count;
}

// A field ends at each delimiter outside qualifiers, and at a line end behind a byte that is
// neither of the two.
std::size_t FieldCounter::CountMarks(std::string_view text) {
  std::size_t count = 0;
  MarkedLines lines;
  lines.begin = text.data();
  std::uint64_t endsBefore = 1;
  while (!text.empty()) {
    lines.text = text.substr(0, 64 * kMarkWords);
    text.remove_prefix(lines.text.size());
    MarkBytes(lines.text, delimiters_, ends_.data());
    MarkBytes(lines.text, kLineEnds, lineEnds_.data());
    if (qualifier_.count > 0) MarkBytes(lines.text, qualifier_, qualifiers_.data());
    for (std::size_t word = 0; word < (lines.text.size() + 63) / 64; ++word) {
      std::uint64_t ends = ends_[word];
      if ((qualifiers_[word] | lines.inside) != 0) {
        ends &= ~InsideQualifiers(lines, word);
      }
      const std::uint64_t marks = ends | lineEnds_[word];
      const std::uint64_t last = lineEnds_[word] & ~(marks << 1 | endsBefore);
      count += static_cast<std::size_t>(std::popcount(ends | last));
      endsBefore = marks >> 63;
      lines.before = endsBefore | qualifiers_[word] >> 63;
    }
  }
  return count;
}

// The bytes of a word from a qualifier on up to the next one or the line's end. Any qualifier opens
// or closes, two of them in a row both: but for those that are kept, which lose their marks.
std::uint64_t FieldCounter::InsideQualifiers(MarkedLines& lines, std::size_t word) {
  std::uint64_t& qualifiers = qualifiers_[word];
  const std::uint64_t lineEnds = lineEnds_[word];
  std::uint64_t inside = PrefixParity(qualifiers) ^ (lines.inside != 0 ? ~std::uint64_t{0} : 0);
  std::uint64_t opening = 0;
  for (;;) {
    std::uint64_t turns = inside & lineEnds;
    if (keepsStrayQualifiers_) {
      // At a field's start, or behind a closing one, a qualifier opens for certain.
      const std::uint64_t starts = (ends_[word] & ~inside) | lineEnds | qualifiers;
      turns |= inside & qualifiers & ~(starts << 1 | lines.before | opening);
    }
    if (turns == 0) break;
    const std::uint64_t turn = turns & -turns;
    if ((turn & lineEnds) == 0) {
      const auto bit = static_cast<std::size_t>(std::countr_zero(turn));
      const char* const qualifier = lines.text.data() + 64 * word + bit;
      if (!KeepsQualifier(lines, qualifier)) {
        opening |= turn;
        continue;
      }
      lines.kept = qualifier;
      qualifiers &= ~turn;
    }
    inside ^= ~(turn - 1);
  }
  lines.inside = inside >> 63;
  return inside;
}

// A qualifier that may be a stray one, outside others: whether its field, which begins with none,
// has other text than blanks before it.
bool FieldCounter::KeepsQualifier(const MarkedLines& lines, const char* qualifier) const {
  const CharacterKinds& kinds = splitter_.kinds();
  const char* at = qualifier;
  bool isBlank = true;
  for (; at != lines.begin && !IsLineEnd(at[-1]); --at) {
    const CharacterKind kind = kinds.OfByte(at[-1]);
    if (kind == CharacterKind::kQualifier) return at - 1 == lines.kept;
    if (kind != CharacterKind::kData) break;
    isBlank = isBlank && at[-1] == ' ';
  }
  return !isBlank;
}

std::size_t FieldCounter::CountLine(std::string_view record) {
  splitter_.SetRecord(record);
  std::size_t count = 0;
  while (splitter_.offset() < record.size()) {
    const std::size_t cut = splitter_.Cut(fields_.data(), fields_.size());
    count += static_cast<std::size_t>(
        std::count_if(fields_.begin(), fields_.begin() + static_cast<std::ptrdiff_t>(cut),
                      [](std::string_view field) { return field.data() != nullptr; }));
  }
  return count;
}

std::size_t FieldCounter::CountRecord(std::string_view record, std::size_t most,
                                      std::size_t* offset) {
  splitter_.SetRecord(record);
  splitter_.SetOffset(*offset);
  std::size_t count = 0;
  for (std::string_view field; count < most && splitter_.Next(field);) ++count;
  *offset = splitter_.offset();
  return count;
}

}  // namespace textwizard
