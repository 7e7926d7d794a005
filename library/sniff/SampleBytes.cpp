#include "library/sniff/SampleBytes.h"

#include <algorithm>

namespace library {

bool SampleBytes::Add(ByteSource& source, std::uint64_t offset, std::size_t count,
                      std::string* problem) {
  Region region{offset, std::string(count, '\0')};
  std::size_t read = 0;
  if (!source.ReadAt(offset, region.bytes.data(), count, &read, problem)) return false;
  region.bytes.resize(read);
  regions_.push_back(std::move(region));
  return true;
}

bool SampleBytes::Read(ByteSource& source, std::string* problem) {
  regions_.clear();
  sourceSize_ = source.Size();
  reachesEnd_ = source.IsWhole();
  if (sourceSize_ < kWholeBelow) {
    whole_ = source.IsWhole();
    return Add(source, 0, static_cast<std::size_t>(sourceSize_), problem);
  }
  whole_ = false;
  if (!Add(source, 0, kHead, problem)) return false;
  const std::string& head = regions_.front().bytes;
  const auto ends = std::count_if(head.begin(), head.end(),
                                  [](char byte) { return byte == '\n' || byte == '\r'; });
  if (ends < static_cast<std::ptrdiff_t>(kFewestLineEnds)) {
    // Lines so long that parts of the file would hold none.
    const std::uint64_t size = std::min(sourceSize_, kLongestHead);
    regions_.clear();
    whole_ = source.IsWhole() && size == sourceSize_;
    reachesEnd_ = whole_;
    return Add(source, 0, static_cast<std::size_t>(size), problem);
  }
  // The blocks stand at even distances between head and tail, on multiples of 4 bytes so that units
  // of two and four bytes stay whole.
  const std::uint64_t gap = (sourceSize_ - kHead - kTail) / (kSpreadBlocks + 1);
  for (std::size_t i = 1; i <= kSpreadBlocks; ++i) {
    if (!Add(source, (kHead + i * gap) & ~std::uint64_t{3}, kBlock, problem)) return false;
  }
  return Add(source, (sourceSize_ - kTail) & ~std::uint64_t{3}, kTail + 4, problem);
}

}  // namespace library
