// A stretch of a data file that holds whole cases, and what stands before it.
#pragma once

#include <cstdint>

namespace library {

// From the first byte of a case's first line to that of a later case, or to the file's end; the
// first one also has what stands before the data. Offsets in bytes.
struct Stretch {
  std::int64_t begin = 0;
  std::int64_t end = 0;
  // Physical lines and cases of the file before `begin`.
  std::int64_t lines = 0;
  std::int64_t cases = 0;
  bool operator==(const Stretch&) const = default;
};

}  // namespace library
