// The least and the largest value of a column chunk.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
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
  void AddMissing(std::int64_t missing) { missing_ += missing; }
  void Add(const Column& column, std::size_t cases) {
    if (static_cast<std::size_t>(column.missing) == cases) return;
    if constexpr (kOfTexts) {
      AddTexts(column, cases);
      return;
    } else if (column.missing != 0) {
      ForEachPresent(column, cases, [&](std::size_t row) { Add(Values::At(column, row)); });
    } else {
      AddAll(column.values.template As<Value>(), cases);
    }
  }
  void Add(typename Values::Value value) {
    if (!least_) {
      least_ = largest_ = value;
    } else if (value < *least_) {
      least_ = value;
    } else if (*largest_ < value) {
      largest_ = value;
    }
  }
  parquetformat::Statistics Describe() const {
    parquetformat::Statistics statistics;
    statistics.__set_null_count(missing_);
    if (!least_) return statistics;
    if constexpr (kOfTexts) {
      if (least_->size() > kLongestBound || largest_->size() > kLongestBound) return statistics;
      statistics.__set_min_value(std::string(*least_));
      statistics.__set_max_value(std::string(*largest_));
    } else {
      auto least = *least_;
      auto largest = *largest_;
      if constexpr (std::is_same_v<decltype(least), double>) {
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
  using Value = typename Values::Value;
  static constexpr bool kOfTexts = std::is_same_v<typename Values::Key, std::string_view>;

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
  void AddTexts(const Column& column, std::size_t cases) {
    const auto startOf = [](std::string_view text) {
      return TextStart(text.data(), std::min(text.size(), sizeof(std::uint64_t)));
    };
    std::uint64_t least = least_ ? startOf(*least_) : ~std::uint64_t{0};
    std::uint64_t largest = largest_ ? startOf(*largest_) : 0;
    ForEachPresent(column, cases, [&](std::size_t row) {
      const Value text = Values::At(column, row);
      const std::uint64_t start = startOf(text);
      if (least < start && start < largest) return;
      Add(text);
      least = startOf(*least_);
      largest = startOf(*largest_);
    });
  }

  template <class Number>
  static std::string Bytes(Number value) {
    Buffer out;
    if constexpr (std::is_same_v<Number, double>) {
      Values::AppendKey(out, std::bit_cast<std::uint64_t>(value));
    } else {
      Values::AppendKey(out, static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
    }
    return {out.As<char>(), out.size()};
  }

  std::optional<Value> least_;
  std::optional<Value> largest_;
  std::int64_t missing_ = 0;
};

}  // namespace library::parquet
