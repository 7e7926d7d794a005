// How far one word is from another, for messages that name what may have been meant.
#pragma once

#include <cstddef>
#include <string_view>

namespace embedded {

// The fewest bytes to put in, leave out, exchange or swap with their neighbour that make `to` of
// `from`. Takes time in proportion to the product of their lengths. Throws std::bad_alloc.
std::size_t EditDistance(std::string_view from, std::string_view to);

}  // namespace embedded
