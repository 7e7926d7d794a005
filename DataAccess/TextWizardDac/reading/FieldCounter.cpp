#include "reading/FieldCounter.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace textwizard {
namespace {

constexpr ByteSet kLineEnds = {{'\n', '\r'}, 2};

constexpr bool IsLineEnd(char byte) { return byte == '\n' || byte == '\r'; }

}  // namespace

FieldCounter::FieldCounter(const FieldRules& rules)
    : splitter_(rules, SplitUse::kReading, nullptr) {
  const CharacterKinds& kinds = splitter_.kinds();
  const ByteSet& cutting = kinds.cutting();
  for (std::size_t i = 0; i < cutting.count; ++i) {
    const auto byte = static_cast<char>(cutting.bytes[i]);
    if (kinds.OfByte(byte) == CharacterKind::kQualifier) {
      qualifier_ = byte;
    } else if (!IsLineEnd(byte)) {
      delimiters_.bytes[delimiters_.count++] = cutting.bytes[i];
    }
  }
  // Else blanks are held or dropped.
  const bool blanksCut = rules.IsDelimiter(' ');
  delimitersEndFields_ = !blanksCut || (!rules.leadingSpaces() && !rules.multipleSpaces());
}

std::size_t FieldCounter::CountLines(std::string_view lines) {
  const CharacterKinds& kinds = splitter_.kinds();
  const bool isMarked = kinds.CutsBrokenTextByBytes(lines) || kinds.CutsByBytes(lines);
  const bool usesMarks = isMarked && delimitersEndFields_;
  std::size_t count = 0;
  while (!lines.empty()) {
    // The next line that is cut field by field.
    std::size_t begin = 0;
    if (usesMarks) {
      begin = qualifier_ == '\0' ? std::string_view::npos : lines.find(qualifier_);
      if (begin == std::string_view::npos) return count + CountMarks(lines);
      while (begin > 0 && !IsLineEnd(lines[begin - 1])) --begin;
    }
    count += CountMarks(lines.substr(0, begin));
    lines.remove_prefix(begin);
    const std::size_t length = FindLineEnd8(lines);
    count += CountLine(lines.substr(0, length));
    lines.remove_prefix(std::min(length + 1, lines.size()));
  }
  return count;
}

// A field ends at each delimiter, and at a line end behind a byte that is neither of the two.
std::size_t FieldCounter::CountMarks(std::string_view lines) {
  std::size_t count = 0;
  std::uint64_t before = 1;
  while (!lines.empty()) {
    const std::string_view stretch = lines.substr(0, 64 * kMarkWords);
    lines.remove_prefix(stretch.size());
    MarkBytes(stretch, delimiters_, ends_.data());
    MarkBytes(stretch, kLineEnds, lineEnds_.data());
    for (std::size_t word = 0; word < (stretch.size() + 63) / 64; ++word) {
      const std::uint64_t marks = ends_[word] | lineEnds_[word];
      const std::uint64_t last = lineEnds_[word] & ~(marks << 1 | before);
      count += static_cast<std::size_t>(std::popcount(ends_[word] | last));
      before = marks >> 63;
    }
  }
  return count;
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
