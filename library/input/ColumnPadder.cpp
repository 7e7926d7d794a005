#include "library/input/ColumnPadder.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <fmt/ranges.h>

namespace library {
namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";

bool Continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

// Of the first CR or LF from `at` on; the size where there is none.
std::size_t LineEndAt(std::string_view bytes, std::size_t at) {
  const std::size_t feed = std::min(bytes.find('\n', at), bytes.size());
  const std::size_t before = bytes.substr(at, feed - at).find('\r');
  return before == std::string_view::npos ? feed : at + before;
}

}  // namespace

// Of the place that the line has come to, if it is one; the line is there then.
std::int64_t ColumnPadder::MissingBlanks() {
  if (next_ == places_->size() || (*places_)[next_] != characters_) return 0;
  const std::int64_t wanted = (*places_)[next_++] * kBytesPerCharacter;
  return wanted - std::exchange(bytes_, wanted);
}

void ColumnPadder::BeginLine() {
  next_ = 0;
  characters_ = bytes_ = 0;
}

// How many of the bytes belong to a mark at the text's start, or may.
std::size_t ColumnPadder::CopyMark(std::string_view bytes) {
  std::size_t taken = 0;
  for (; taken < bytes.size() && markBytes_ >= 0; ++taken) {
    if (bytes[taken] != kMark[static_cast<std::size_t>(markBytes_)]) {
      // What only began like the mark is one character, too, and the first.
      if (markBytes_ > 0) characters_ = 1, bytes_ = markBytes_;
      markBytes_ = -1;
      return taken;
    }
    if (++markBytes_ == static_cast<int>(kMark.size())) markBytes_ = -1;
  }
  return taken;
}

void ColumnPadder::Copy(std::string_view bytes, std::string* copy, std::vector<Padding>* paddings) {
  std::size_t copied = 0;
  std::size_t at = CopyMark(bytes);
  const auto pad = [&] {
    const std::int64_t blanks = MissingBlanks();
    if (blanks == 0) return;
    copy->append(bytes, copied, at - copied).append(static_cast<std::size_t>(blanks), ' ');
    copied = at;
    if (paddings != nullptr) paddings->push_back({at, blanks});
  };
  while (at < bytes.size()) {
    if (next_ == places_->size()) {
      at = LineEndAt(bytes, at);
      if (at == bytes.size()) break;
    }
    const char byte = bytes[at];
    if (byte == '\n' || byte == '\r') {
      pad();
      BeginLine();
    } else if (byte != '\0') {
      if (!Continues(byte)) {
        pad();
        ++characters_;
      }
      ++bytes_;
    }
    ++at;
  }
  copy->append(bytes, copied, at - copied);
}

std::int64_t ColumnPadder::Finish(std::string* copy) {
  const std::int64_t blanks = MissingBlanks();
  copy->append(static_cast<std::size_t>(blanks), ' ');
  return blanks;
}

std::optional<std::vector<std::int64_t>> ParsePlaces(std::string_view text, std::string* problem) {
  // No line is longer.
  constexpr std::int64_t kMost = INT64_MAX / ColumnPadder::kBytesPerCharacter;
  std::vector<std::int64_t> places;
  for (const char* at = text.data(); at != text.data() + text.size();) {
    const char* const end = text.data() + text.size();
    std::int64_t place = 0;
    const auto [behind, error] = std::from_chars(at, end, place);
    const bool ends = behind == end;
    const std::int64_t least = places.empty() ? 2 : places.back() + 2;
    if (error != std::errc() || place < least || place > kMost || (!ends && *behind != ',') ||
        (!ends && behind + 1 == end)) {
      places.clear();
      break;
    }
    places.push_back(place - 1);
    at = ends ? behind : behind + 1;
  }
  if (!places.empty()) return places;
  *problem = "places are numbers from 2 on with commas between, each above the one before";
  return std::nullopt;
}

std::string PlacesText(const std::vector<std::int64_t>& places) {
  std::vector<std::int64_t> counted = places;
  for (std::int64_t& place : counted) ++place;
  return fmt::format("{}", fmt::join(counted, ","));
}

}  // namespace library
