#include "library/input/ColumnPadder.h"

#include <charconv>

#include <fmt/ranges.h>

namespace library {
namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";

bool Continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

}  // namespace

// Pads up to the place that the line has come to, if it is one.
void ColumnPadder::Reach(std::string* copy) {
  if (next_ == places_.size() || places_[next_] != characters_) return;
  const std::int64_t wanted = places_[next_++] * kBytesPerCharacter;
  copy->append(static_cast<std::size_t>(wanted - bytes_), ' ');
  bytes_ = wanted;
}

void ColumnPadder::BeginLine() {
  next_ = 0;
  characters_ = bytes_ = 0;
}

void ColumnPadder::Copy(std::string_view bytes, std::string* copy) {
  for (const char byte : bytes) {
    if (markBytes_ >= 0) {
      const bool isMark = byte == kMark[static_cast<std::size_t>(markBytes_)];
      // What only began like the mark is one character, too, and the first.
      if (!isMark && markBytes_ > 0) characters_ = 1, bytes_ = markBytes_;
      markBytes_ = isMark ? markBytes_ + 1 : -1;
      if (markBytes_ == static_cast<int>(kMark.size())) markBytes_ = -1;
      if (isMark) {
        *copy += byte;
        continue;
      }
    }
    if (byte == '\n' || byte == '\r') {
      Reach(copy);
      BeginLine();
      *copy += byte;
      continue;
    }
    if (byte == '\0') {
      *copy += byte;
      continue;
    }
    if (!Continues(byte)) {
      Reach(copy);
      ++characters_;
    }
    ++bytes_;
    *copy += byte;
  }
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
