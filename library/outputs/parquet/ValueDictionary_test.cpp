// Different values get different numbers in the order in which they come, also while it grows.
#include "library/outputs/parquet/ValueDictionary.h"

#include <functional>
#include <string>
#include <unordered_map>

#include <gtest/gtest.h>

namespace library {
namespace {

// Sends many values to the same place.
struct PoorHash {
  std::size_t operator()(std::uint64_t value) const { return value % 3; }
};

TEST(ValueDictionary, NumbersValuesInTheOrderOfTheirFirstUse) {
  ValueDictionary<std::uint64_t, PoorHash> dictionary;
  EXPECT_EQ(dictionary.NumberOf(70), 0U);
  EXPECT_EQ(dictionary.NumberOf(4), 1U);
  EXPECT_EQ(dictionary.NumberOf(70), 0U);
  EXPECT_EQ(dictionary.NumberOf(7), 2U);
  EXPECT_EQ(dictionary.values(), (std::vector<std::uint64_t>{70, 4, 7}));
}

TEST(ValueDictionary, KeepsItsNumbersWhileItGrows) {
  ValueDictionary<std::string_view, std::hash<std::string_view>> dictionary;
  std::vector<std::string> texts;
  for (int i = 0; i < 20000; ++i) texts.push_back("value " + std::to_string(i * 31));
  for (std::uint32_t i = 0; i < texts.size(); ++i) ASSERT_EQ(dictionary.NumberOf(texts[i]), i);
  for (std::uint32_t i = 0; i < texts.size(); ++i) ASSERT_EQ(dictionary.NumberOf(texts[i]), i);
}

}  // namespace
}  // namespace library
