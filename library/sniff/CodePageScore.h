// Which single-byte code page a text is in: the one whose characters make words.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace library {

// How often each byte follows each other one, for pairs that have a byte above 7F.
class BytePairs {
 public:
  void Add(std::string_view text);

  struct Pair {
    unsigned char first;
    unsigned char second;
    std::uint32_t count;
  };
  // Every pair that occurs.
  std::vector<Pair> Pairs() const;
  std::uint64_t highBytes() const { return highBytes_; }
  // The byte occurs.
  bool Has(unsigned char byte) const { return bytes_[byte] != 0; }

 private:
  std::vector<std::uint32_t> counts_ = std::vector<std::uint32_t>(65536);
  std::array<std::uint64_t, 256> bytes_{};
  std::uint64_t highBytes_ = 0;
};

struct CodePageScore {
  // A name that ICU and Python know.
  std::string name;
  // The logarithm of how likely the text is in it, up to a constant.
  double likelihood = 0.0;
  // The language that makes it most likely.
  const char* language = "";
  // Its characters of the bytes from 80 on; FFFFFFFF where it has none.
  std::array<char32_t, 128> characters{};
};

// All pages, the likeliest first. Where pages give the same characters to all bytes that occur, the
// one that is usual stands first.
std::vector<CodePageScore> ScoreCodePages(const BytePairs& pairs);

}  // namespace library
