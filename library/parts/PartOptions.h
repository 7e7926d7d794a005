// How the reading of a data file is cut into parts.
#pragma once

#include <cstdint>
#include <optional>

#include "library/parts/CasePlan.h"
#include "library/parts/PartLines.h"
#include "library/rewriting/QuoteRewriter.h"

namespace library {

// One part alone, and what stands before it in the file.
struct SinglePart {
  PartRange range;
  // The parts before; null: the file is read to find it.
  std::optional<PartLines> before;
  // The walk over their lines, where bytes are replaced and it is known.
  std::optional<QuotePosition> quotes = std::nullopt;
};

struct PartOptions {
  using Single = SinglePart;

  // Part after part, of so many bytes each, as if by as many machines; 0: all at once.
  std::int64_t partBytes = 0;
  std::optional<Single> single;

  bool cuts() const { return partBytes > 0 || single.has_value(); }
};

}  // namespace library
