#include "library/report/SaidProblems.h"

#include <algorithm>

namespace library {

void SaidProblems::Keep(const Key& key, std::string_view written) {
  if (written.size() > UINT16_MAX) return;
  if (known_.empty()) {
    tags_.resize(kRows);
    longTexts_.resize(kRows * kWays);
    known_.resize(kRows * kWays);
  }
  const std::size_t wanted = LinesOf(written.size());
  if (lines_.size() + wanted > kMostLines) {
    // Much of what takes the room is known no more; all of it makes way.
    std::fill(tags_.begin(), tags_.end(), 0);
    std::fill(known_.begin(), known_.end(), Known{});
    lines_.clear();
  }
  std::uint64_t& tags = tags_[RowOf(key.hash_)];
  const auto find = [&tags](std::uint64_t tag) {
    std::size_t way = 0;
    while (way < kWays && (tags >> way * kTagBits & kTag) != tag) ++way;
    return way;
  };
  // Of two with one tag only one would be found.
  std::size_t way = find(TagOf(key.hash_));
  if (way == kWays) way = find(0);
  if (way == kWays) way = nextWay_++ % kWays;
  const std::size_t place = kWays * RowOf(key.hash_) + way;
  // Nothing is known of the place until all of it is there.
  tags &= ~(kTag << way * kTagBits);
  if (key.text_.size() > sizeof(Ends)) longTexts_[place] = key.text_;
  Known& known = known_[place];
  if (LinesOf(known.bytes) < wanted) {
    // The old lines stay its own until there are others.
    const std::size_t line = lines_.size();
    lines_.resize(line + wanted);
    known.line = static_cast<std::uint32_t>(line);
  }
  known.ends = key.ends_;
  known.variable = key.variable_;
  known.kind = static_cast<std::uint16_t>(key.kind_);
  known.bytes = static_cast<std::uint16_t>(written.size());
  written.copy(lines_[known.line].bytes, written.size());
  tags |= TagOf(key.hash_) << way * kTagBits;
}

}  // namespace library
