// How a page of a Parquet file holds values: the encodings that the format has for each kind.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

#include "library/columns/Buffer.h"

namespace library {

// Each appends to a page and throws std::bad_alloc.

inline void AppendVarint(Buffer& page, std::uint64_t value) {
  std::byte bytes[10];
  std::size_t count = 0;
  for (; value >= 0x80; value >>= 7) bytes[count++] = static_cast<std::byte>(value | 0x80);
  bytes[count++] = static_cast<std::byte>(value);
  page.Append(bytes, count);
}

inline void AppendZigzag(Buffer& page, std::int64_t value) {
  AppendVarint(page,
               (static_cast<std::uint64_t>(value) << 1) ^ static_cast<std::uint64_t>(value >> 63));
}

// The low `bits` bits (at most 64) of each value, one behind the other from the lowest bit on;
// those above are 0. Whole bytes where `values` are a multiple of eight.
template <class Value>
void AppendBits(Buffer& page, std::span<const Value> values, unsigned bits) {
  constexpr unsigned kWord = 64;
  const std::size_t bytes = (values.size() * bits + 7) / 8;
  std::byte* out = page.Room(bytes + sizeof(std::uint64_t));
  std::uint64_t held = 0;
  unsigned heldBits = 0;
  for (const Value value : values) {
    held |= std::uint64_t{value} << heldBits;
    heldBits += bits;
    if (heldBits < kWord) continue;
    std::memcpy(out, &held, sizeof held);
    out += sizeof held;
    heldBits -= kWord;
    // What had no room; a shift by all bits is none.
    held = heldBits == 0 ? 0 : std::uint64_t{value} >> (bits - heldBits);
  }
  std::memcpy(out, &held, sizeof held);
  page.Extend(bytes);
}

// Whole numbers as differences to the one before, in blocks that use as many bits as their
// differences need (DELTA_BINARY_PACKED). Arithmetic wraps.
template <class Number>
void AppendDifferences(Buffer& page, std::span<const Number> values) {
  using Bits = std::make_unsigned_t<Number>;
  constexpr std::size_t kBlock = 128;
  constexpr std::size_t kMiniblocks = 4;
  constexpr std::size_t kMiniblock = kBlock / kMiniblocks;
  AppendVarint(page, kBlock);
  AppendVarint(page, kMiniblocks);
  AppendVarint(page, values.size());
  AppendZigzag(page, values.empty() ? 0 : values[0]);
  for (std::size_t at = 1; at < values.size(); at += kBlock) {
    const std::size_t count = std::min(kBlock, values.size() - at);
    std::array<Bits, kBlock> differences;
    Number least = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const auto difference = static_cast<Number>(static_cast<Bits>(values[at + i]) -
                                                  static_cast<Bits>(values[at + i - 1]));
      differences[i] = static_cast<Bits>(difference);
      least = i == 0 ? difference : std::min(least, difference);
    }
    for (std::size_t i = 0; i < count; ++i) differences[i] -= static_cast<Bits>(least);
    std::fill(differences.begin() + static_cast<std::ptrdiff_t>(count), differences.end(), Bits{0});
    AppendZigzag(page, least);
    std::array<unsigned char, kMiniblocks> widths{};
    for (std::size_t i = 0; i < kMiniblocks; ++i) {
      Bits used = 0;
      for (std::size_t k = 0; k < kMiniblock; ++k) used |= differences[i * kMiniblock + k];
      widths[i] = static_cast<unsigned char>(std::bit_width(used));
    }
    page.Append(widths.data(), widths.size());
    for (std::size_t i = 0; i * kMiniblock < count; ++i) {
      AppendBits(page, std::span<const Bits>(&differences[i * kMiniblock], kMiniblock), widths[i]);
    }
  }
}

// Doubles as eight streams: the first byte of all of them, then the second (BYTE_STREAM_SPLIT).
// Bytes of one place are like one another, which compression makes more of, in less time, than of
// numbers side by side.
class ByteStreams {
 public:
  // Room for `count` doubles at the end of `page`, which nobody else lengthens before the last is
  // added.
  ByteStreams(Buffer& page, std::size_t count)
      : out_(page.Extend(count * sizeof(double))), count_(count) {}
  // The next of them; no more in all than there is room for.
  void Add(std::span<const double> values);

 private:
  std::byte* out_;
  std::size_t count_;
  std::size_t added_ = 0;
};

}  // namespace library
