#include "library/outputs/parquet/ParquetPages.h"

namespace library {
namespace {

constexpr std::size_t kStreams = sizeof(double);

// Swaps the bits of `low` that `mask` names, `shift` places up, with those of `high`.
inline void Swap(std::uint64_t& low, std::uint64_t& high, unsigned shift, std::uint64_t mask) {
  const std::uint64_t different = ((low >> shift) ^ high) & mask;
  high ^= different;
  low ^= different << shift;
}

// Eight words of eight bytes: rows become columns.
inline void Transpose(std::array<std::uint64_t, kStreams>& words) {
  for (std::size_t i = 0; i < 4; ++i) Swap(words[i], words[i + 4], 32, 0x00000000FFFFFFFFU);
  for (const std::size_t i : {0U, 1U, 4U, 5U}) {
    Swap(words[i], words[i + 2], 16, 0x0000FFFF0000FFFFU);
  }
  for (const std::size_t i : {0U, 2U, 4U, 6U}) {
    Swap(words[i], words[i + 1], 8, 0x00FF00FF00FF00FFU);
  }
}

}  // namespace

void ByteStreams::Add(std::span<const double> values) {
  std::byte* const out = out_ + added_;
  std::size_t at = 0;
  for (; at + kStreams <= values.size(); at += kStreams) {
    std::array<std::uint64_t, kStreams> words;
    std::memcpy(words.data(), values.data() + at, sizeof words);
    Transpose(words);
    for (std::size_t i = 0; i < kStreams; ++i) {
      std::memcpy(out + i * count_ + at, &words[i], sizeof words[i]);
    }
  }
  for (; at < values.size(); ++at) {
    const auto bits = std::bit_cast<std::uint64_t>(values[at]);
    for (std::size_t i = 0; i < kStreams; ++i) {
      out[i * count_ + at] = static_cast<std::byte>(bits >> (8 * i));
    }
  }
  added_ += values.size();
}

}  // namespace library
