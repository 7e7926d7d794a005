// Cuts of a file at any of its bytes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "library/parts/CasePlan.h"

namespace library {

// How many a test tries of each file: the number in the environment, else a tenth of what proves
// it.
inline int RandomCuts() {
  const char* const number = std::getenv("TEXTWIZARD_RANDOM_CUTS");
  return number != nullptr ? std::max(std::atoi(number), 1) : 100;
}

// All of `bytes` bytes in up to seven parts, some of them empty.
inline std::vector<PartRange> RandomParts(std::int64_t bytes, std::mt19937_64& random) {
  std::vector<std::int64_t> ends = {0, bytes};
  for (std::uint64_t i = random() % 7; i > 0; --i) {
    ends.push_back(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(bytes + 1)));
  }
  std::sort(ends.begin(), ends.end());
  std::vector<PartRange> parts;
  for (std::size_t i = 1; i < ends.size(); ++i) parts.push_back({ends[i - 1], ends[i]});
  return parts;
}

}  // namespace library
