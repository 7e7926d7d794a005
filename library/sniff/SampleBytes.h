// The bytes of a source that are looked at: all of a small one, of a large one its head, eight
// blocks spread over the rest, and its tail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "library/input/ByteSource.h"

namespace library {

class SampleBytes {
 public:
  static constexpr std::uint64_t kWholeBelow = 4 << 20;
  static constexpr std::size_t kHead = 256 << 10;
  static constexpr std::size_t kBlock = 32 << 10;
  static constexpr std::size_t kSpreadBlocks = 8;
  static constexpr std::size_t kTail = 64 << 10;
  // A head with fewer line ends than this is read on, up to so many bytes.
  static constexpr std::size_t kFewestLineEnds = 20;
  static constexpr std::uint64_t kLongestHead = 32 << 20;

  struct Region {
    std::uint64_t offset;
    std::string bytes;
  };

  // False when a read failed; *problem says how.
  bool Read(ByteSource& source, std::string* problem);

  // By offset; they do not overlap. The first begins at 0 (and may be empty).
  const std::vector<Region>& regions() const { return regions_; }
  const std::string& head() const { return regions_.front().bytes; }
  // Everything there is was read.
  bool whole() const { return whole_; }
  // The last region ends where the data ends.
  bool reachesEnd() const { return reachesEnd_; }
  std::uint64_t sourceSize() const { return sourceSize_; }

 private:
  bool Add(ByteSource& source, std::uint64_t offset, std::size_t count, std::string* problem);

  std::vector<Region> regions_;
  bool whole_ = true;
  bool reachesEnd_ = true;
  std::uint64_t sourceSize_ = 0;
};

}  // namespace library
