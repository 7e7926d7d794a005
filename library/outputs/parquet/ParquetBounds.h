// The least and the largest value of a column chunk.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "library/outputs/parquet/ParquetValues.h"

namespace library::parquet {

// Longer texts are no use as the least and the largest.
inline constexpr std::size_t kLongestBound = 64;

// The least and the largest value, and how many are missing.
template <class Values>
class Bounds {
 public:
  using Value = typename Values::Value;

  void AddMissing(std::int64_t missing) { missing_ += missing; }
  void Add(const Column& column, std::size_t cases) {
    if (static_cast<std::size_t>(column.missing) == cases) return;
    const typename Values::Reader reader(column);
    if constexpr (kOfTexts) {
      AddTexts(column, cases, reader);
    } else if (column.missing != 0) {
      ForEachPresent(column, cases, [&](std::size_t row) { Add(reader.At(row)); });
    } else {
      AddAll(column.values.template As<Value>(), cases);
    }
  }
  void Add(Value value) {
    if (!least_) {
      least_ = largest_ = Kept(value);
    } else if (value < *least_) {
      least_ = Kept(value);
    } else if (*largest_ < value) {
      largest_ = Kept(value);
    }
  }
  parquetformat::Statistics Describe() const {
    parquetformat::Statistics statistics;
    statistics.__set_null_count(missing_);
    if (!least_) return statistics;
    if constexpr (kOfTexts) {
      if (least_->size() > kLongestBound || largest_->size() > kLongestBound) return statistics;
      statistics.__set_min_value(*least_);
      statistics.__set_max_value(*largest_);
    } else {
      Value least = *least_;
      Value largest = *largest_;
      if constexpr (std::is_same_v<Value, double>) {
        // The two zeros are one value, and either may stand for it.
        if (least == 0) least = -0.0;
        if (largest == 0) largest = 0.0;
      }
      statistics.__set_min_value(Bytes(least));
      statistics.__set_max_value(Bytes(largest));
    }
    return statistics;
  }

 private:
  static constexpr bool kOfTexts = std::is_same_v<Value, std::string_view>;
  // The batches are gone before the chunk ends.
  using Kept = std::conditional_t<kOfTexts, std::string, Value>;

  // Some at a time, so that no value waits for what the one before it came to.
  void AddAll(const Value* values, std::size_t count) {
    constexpr std::size_t kAtOnce = 8;
    std::array<Value, kAtOnce> least;
    least.fill(values[0]);
    std::array<Value, kAtOnce> largest = least;
    std::size_t row = 0;
    for (; row + kAtOnce <= count; row += kAtOnce) {
      for (std::size_t i = 0; i < kAtOnce; ++i) {
        const Value value = values[row + i];
        least[i] = value < least[i] ? value : least[i];
        largest[i] = largest[i] < value ? value : largest[i];
      }
    }
    for (; row < count; ++row) Add(values[row]);
    for (std::size_t i = 0; i < kAtOnce; ++i) {
      Add(least[i]);
      Add(largest[i]);
    }
  }

  // Most texts lie between the two by their first bytes.
  void AddTexts(const Column& column, std::size_t cases, const typename Values::Reader& reader) {
    std::uint64_t least = leastStart_;
    std::uint64_t largest = largestStart_;
    ForEachPresent(column, cases, [&](std::size_t row) {
      const std::uint64_t start = reader.StartAt(row);
      if (least < start && start < largest) return;
      Add(reader.At(row));
      least = std::min(least, start);
      largest = std::max(largest, start);
    });
    leastStart_ = least;
    largestStart_ = largest;
  }

  static std::string Bytes(Value value) {
    Buffer out;
    Values::Keep(KeyOf(value), out);
    return {out.As<char>(), out.size()};
  }
  static typename Values::Key KeyOf(Value value) {
    if constexpr (std::is_same_v<Value, double>) {
      return std::bit_cast<std::uint64_t>(value);
    } else {
      return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
    }
  }

  std::optional<Kept> least_;
  std::optional<Kept> largest_;
  // Of the texts that were added from columns.
  std::uint64_t leastStart_ = ~std::uint64_t{0};
  std::uint64_t largestStart_ = 0;
  std::int64_t missing_ = 0;
};

}  // namespace library::parquet
