#include "library/import/FixedBorders.h"

#include <algorithm>
#include <cstdint>

#include "library/parts/FilledPlaces.h"

namespace library {
namespace {

// Places from 0, the last one behind.
struct Places {
  std::int64_t begin;
  std::int64_t end;
};

bool HoldsText(std::string_view filled, const Places& places) {
  for (std::int64_t place = places.begin; place < places.end; ++place) {
    if (FilledPlaces::Holds(filled, static_cast<std::size_t>(place))) return true;
  }
  return false;
}

}  // namespace

bool MoveBorders(std::string_view filled, std::vector<SniffColumn>* columns) {
  constexpr auto kMost = static_cast<std::int64_t>(FilledPlaces::kMost);
  const auto holds = [filled](std::int64_t place) {
    return FilledPlaces::Holds(filled, static_cast<std::size_t>(place));
  };
  bool moved = false;
  for (std::size_t i = 1; i < columns->size(); ++i) {
    CharacterRange& left = (*columns)[i - 1].range;
    CharacterRange& right = (*columns)[i].range;
    const std::int64_t border = right.from - 1;
    const std::int64_t end = right.to == 0 ? kMost : std::min(right.to, kMost);
    if (left.to != border || border >= end || !holds(border - 1) || !holds(border)) continue;
    // Nearer ones first, those behind the border before those in front of it.
    for (std::int64_t distance = 1; distance < end - left.from; ++distance) {
      const auto moveTo = [&](std::int64_t blank) {
        if (blank < left.from || blank + 1 >= end || holds(blank)) return false;
        if (!HoldsText(filled, {left.from - 1, blank})) return false;
        if (!HoldsText(filled, {blank + 1, end})) return false;
        left.to = blank + 1;
        right.from = blank + 2;
        return true;
      };
      if (moveTo(border + distance) || moveTo(border - 1 - distance)) {
        moved = true;
        break;
      }
    }
  }
  return moved;
}

}  // namespace library
