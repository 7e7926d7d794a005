#include "library/sniff/CharacterRanges.h"

#include <charconv>
#include <cstdint>

#include <fmt/format.h>

namespace library {
namespace {

bool TakeNumber(std::string_view* text, std::int64_t* number) {
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), *number);
  if (error != std::errc() || *number < 1) return false;
  text->remove_prefix(static_cast<std::size_t>(end - text->data()));
  return true;
}

// "9-20", "25" or "30-".
bool ParseRange(std::string_view text, CharacterRange* range) {
  if (!TakeNumber(&text, &range->from)) return false;
  range->to = range->from;
  if (text.empty()) return true;
  if (text.front() != '-') return false;
  text.remove_prefix(1);
  range->to = 0;
  return text.empty() ||
         (TakeNumber(&text, &range->to) && text.empty() && range->to >= range->from);
}

}  // namespace

std::optional<std::vector<CharacterRange>> ParseCharacterRanges(std::string_view text,
                                                                std::string* problem) {
  std::vector<CharacterRange> ranges;
  while (true) {
    const std::size_t comma = text.find(',');
    const std::string_view part = text.substr(0, comma);
    CharacterRange range;
    if (!ParseRange(part, &range)) {
      *problem = fmt::format("\"{}\" is no column: write columns such as 1-8,9-20", part);
      return std::nullopt;
    }
    if (!ranges.empty() && (ranges.back().to == 0 || range.from <= ranges.back().to)) {
      *problem = fmt::format("column {} begins before the one in front of it ends", part);
      return std::nullopt;
    }
    ranges.push_back(range);
    if (comma == std::string_view::npos) return ranges;
    text.remove_prefix(comma + 1);
  }
}

}  // namespace library
