// What every fuzz target shares. A target compares two ways to the same result and stops the
// process when they differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

// Ends the process when `same` does not hold.
inline void Require(bool same, const std::string& what) {
  if (same) return;
  std::fprintf(stderr, "difference: %s\n", what.c_str());
  std::abort();
}

}  // namespace fuzz
