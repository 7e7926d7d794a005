// Pages read back by decoders that follow the format's own words, value by value and bit by bit.
#include "library/outputs/parquet/ParquetPages.h"

#include <limits>
#include <random>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "library/outputs/parquet/testing/PageReader.h"

namespace library {
namespace {

PageReader ReaderOf(const Buffer& page) { return PageReader({page.As<char>(), page.size()}); }

template <class Number>
std::vector<Number> AllDifferences(const Buffer& page) {
  PageReader reader = ReaderOf(page);
  std::vector<Number> values = reader.Differences<Number>();
  EXPECT_TRUE(reader.atEnd());
  return values;
}

template <class Number>
void ExpectDifferencesReadBack(const std::vector<Number>& values) {
  Buffer page;
  AppendDifferences(page, std::span<const Number>(values));
  EXPECT_EQ(AllDifferences<Number>(page), values) << values.size() << " values";
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
  EXPECT_EQ(AllDifferences<std::int64_t>(page), values);
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
      ASSERT_EQ(ReaderOf(page).Bits(count, bits), values) << bits << " bits, " << count;
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
    ByteStreams streams(page, count);
    for (std::size_t at = 0; at < count;) {
      const std::size_t some = std::min<std::size_t>(count - at, random() % 20);
      streams.Add(std::span<const double>(values).subspan(at, some));
      at += some;
    }
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
