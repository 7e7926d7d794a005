// Where a record lies in its file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace textwizard {

struct RecordPlace {
  // Physical line, from 1.
  std::int64_t line = 1;
  // Offsets in bytes: of its first byte, and behind its line end.
  std::int64_t begin = 0;
  std::int64_t end = 0;
  // NUL bytes, and what follows one in a 16-bit line.
  std::int64_t droppedBytes = 0;
  std::uint32_t lineEndBytes = 0;
  // The last of its 16-bit units has only one byte in the file.
  bool halfUnit = false;
};

// NUL bytes that were dropped before byte `at` of an 8-bit record; how many so far, these included.
struct NulRun {
  std::size_t at;
  std::int64_t dropped;
};
using NulRuns = std::vector<NulRun>;

}  // namespace textwizard
