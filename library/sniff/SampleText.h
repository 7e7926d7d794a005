// The sample as text: lines of UTF-8 with their numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "library/sniff/SampleBytes.h"
#include "library/sniff/SniffResult.h"

namespace library {

class SampleText {
 public:
  // A run of lines that follow one another in the file.
  struct Region {
    std::string text;
    // Without their line ends; views of `text`.
    std::vector<std::string_view> lines;
    // Line ends at its beginning that belong to no line of it: 1 where a cut line was left out.
    std::int64_t skippedLines = 0;
  };

  // Decodes the sample. NUL characters are dropped, bytes that are no character become U+FFFD. A
  // region that begins or ends within a line leaves that line out. The bytes outlive it.
  // `skip`: bytes of the byte-order mark. False when ICU does not know the encoding.
  bool Decode(const SampleBytes& bytes, const std::string& encoding, std::size_t skip);

  // The first region begins with line 1.
  const std::vector<Region>& regions() const { return regions_; }
  const std::vector<std::string_view>& head() const { return regions_.front().lines; }
  // The head holds all lines there are.
  bool headIsWhole() const { return headIsWhole_; }
  LineEnd lineEnd() const { return lineEnd_; }
  std::int64_t lineEnds(LineEnd kind) const { return counts_[static_cast<std::size_t>(kind)]; }
  // Offset in the file where line `index` (from 0) of a region begins; where its last line ends for
  // one more than there are lines.
  std::uint64_t OffsetOfLine(std::size_t region, std::size_t index) const;
  // The byte (ASCII) occurs in the sample.
  bool Holds(char byte) const;
  // Keeps the first `count` lines of the head only.
  void KeepLines(std::size_t count);

 private:
  void SplitLines(Region& region, bool cutFront, bool cutBack);

  const SampleBytes* bytes_ = nullptr;
  std::vector<Region> regions_;
  bool headIsWhole_ = true;
  LineEnd lineEnd_ = LineEnd::kLf;
  std::int64_t counts_[3] = {0, 0, 0};
  // Bytes of a code unit, and the place of the one that holds an ASCII character.
  std::size_t unit_ = 1;
  std::size_t low_ = 0;
  std::size_t skip_ = 0;
};

}  // namespace library
