// Pages read back by decoders that follow the format's own words, value by value and bit by bit.
#include "library/outputs/parquet/ParquetPages.h"

#include <limits>
#include <random>
#include <span>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace library {
namespace {

class PageReader {
 public:
  explicit PageReader(const Buffer& page)
      : at_(page.As<unsigned char>()), end_(at_ + page.size()) {}

  bool atEnd() const { return at_ == end_; }
  std::uint64_t Varint() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
      const unsigned char byte = Byte();
      value |= std::uint64_t{byte & 0x7FU} << shift;
      if (byte < 0x80) return value;
    }
  }
  std::int64_t Zigzag() {
    const std::uint64_t value = Varint();
    return static_cast<std::int64_t>(value >> 1) ^ -static_cast<std::int64_t>(value & 1);
  }
  unsigned char Byte() {
    if (at_ == end_) throw std::out_of_range("the page ends too soon");
    return *at_++;
  }
  // Values of `bits` bits each from the lowest bit of the first byte on.
  std::vector<std::uint64_t> Bits(std::size_t count, unsigned bits) {
    std::vector<std::uint64_t> values(count);
    std::size_t bit = 0;
    unsigned char byte = 0;
    for (std::uint64_t& value : values) {
      for (unsigned i = 0; i < bits; ++i, ++bit) {
        if (bit % 8 == 0) byte = Byte();
        value |= std::uint64_t{(byte >> (bit % 8)) & 1U} << i;
      }
    }
    return values;
  }

 private:
  const unsigned char* at_;
  const unsigned char* end_;
};

template <class Number>
std::vector<Number> ReadDifferences(const Buffer& page) {
  PageReader reader(page);
  const std::uint64_t block = reader.Varint();
  const std::uint64_t miniblocks = reader.Varint();
  const std::uint64_t count = reader.Varint();
  EXPECT_EQ(block % 128, 0U);
  EXPECT_EQ(block / miniblocks % 32, 0U);
  const auto first = static_cast<Number>(reader.Zigzag());
  std::vector<Number> values;
  if (count > 0) values.push_back(first);
  while (values.size() < count) {
    const std::int64_t least = reader.Zigzag();
    std::vector<unsigned> widths;
    for (std::uint64_t i = 0; i < miniblocks; ++i) widths.push_back(reader.Byte());
    for (const unsigned width : widths) {
      if (values.size() == count) break;
      EXPECT_LE(width, sizeof(Number) * 8);
      for (const std::uint64_t bits : reader.Bits(block / miniblocks, width)) {
        if (values.size() == count) break;
        values.push_back(static_cast<Number>(static_cast<std::uint64_t>(values.back()) +
                                             static_cast<std::uint64_t>(least) + bits));
      }
    }
  }
  EXPECT_TRUE(reader.atEnd());
  return values;
}

template <class Number>
void ExpectDifferencesReadBack(const std::vector<Number>& values) {
  Buffer page;
  AppendDifferences(page, std::span<const Number>(values));
  EXPECT_EQ(ReadDifferences<Number>(page), values) << values.size() << " values";
}

TEST(ParquetPages, DifferencesReadBackAtEveryNumberOfValues) {
  std::mt19937_64 random(5);
  for (std::size_t count = 0; count < 600; ++count) {
    std::vector<std::int64_t> wide;
    std::vector<std::int32_t> narrow;
    const unsigned bits = static_cast<unsigned>(random() % 64);
    for (std::size_t i = 0; i < count; ++i) {
      wide.push_back(static_cast<std::int64_t>(random() >> bits));
      narrow.push_back(static_cast<std::int32_t>(random() >> (32 + bits / 2)));
    }
    ExpectDifferencesReadBack(wide);
    ExpectDifferencesReadBack(narrow);
  }
}

TEST(ParquetPages, DifferencesThatTheTypeCannotHoldWrapAround) {
  using Wide = std::numeric_limits<std::int64_t>;
  using Narrow = std::numeric_limits<std::int32_t>;
  ExpectDifferencesReadBack<std::int64_t>({Wide::min(), Wide::max(), 0, Wide::min(), -1, 1});
  ExpectDifferencesReadBack<std::int32_t>({Narrow::min(), Narrow::max(), 0, Narrow::min(), -1, 1});
}

TEST(ParquetPages, EqualStepsTakeNoBits) {
  std::vector<std::int64_t> values;
  for (std::int64_t i = 0; i < 12800; ++i) values.push_back(1000000 + i * 7);
  Buffer page;
  AppendDifferences(page, std::span<const std::int64_t>(values));
  EXPECT_LT(page.size(), 600U);
  EXPECT_EQ(ReadDifferences<std::int64_t>(page), values);
}

TEST(ParquetPages, BitsOfEveryWidthStandOneBehindTheOther) {
  std::mt19937_64 random(6);
  for (unsigned bits = 0; bits <= 64; ++bits) {
    for (const std::size_t count : {0U, 1U, 7U, 8U, 9U, 63U, 64U, 200U}) {
      std::vector<std::uint64_t> values;
      for (std::size_t i = 0; i < count; ++i) {
        values.push_back(bits == 0 ? 0 : random() >> (64 - bits));
      }
      Buffer page;
      AppendBits(page, std::span<const std::uint64_t>(values), bits);
      ASSERT_EQ(page.size(), (count * bits + 7) / 8);
      ASSERT_EQ(PageReader(page).Bits(count, bits), values) << bits << " bits, " << count;
    }
  }
}

TEST(ParquetPages, StreamsHoldTheBytesOfOnePlaceOfAllNumbers) {
  std::mt19937_64 random(7);
  for (std::size_t count = 0; count < 40; ++count) {
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(std::bit_cast<double>(random()));
    Buffer page;
    page.Append("x", 1);
    AppendByteStreams(page, values);
    ASSERT_EQ(page.size(), 1 + count * 8);
    for (std::size_t i = 0; i < count; ++i) {
      std::uint64_t bits = 0;
      for (std::size_t place = 0; place < 8; ++place) {
        bits |= std::uint64_t{page.As<unsigned char>()[1 + place * count + i]} << (8 * place);
      }
      ASSERT_EQ(bits, std::bit_cast<std::uint64_t>(values[i])) << i << " of " << count;
    }
  }
}

}  // namespace
}  // namespace library
