// Different values get different numbers in the order in which they come, also while it grows.
#include "library/outputs/parquet/ValueDictionary.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace library {
namespace {

// Sends many values to the same place.
struct Poor {
  using Key = std::string_view;
  using Entry = std::string;
  static std::uint32_t Hash(const Key& key) { return static_cast<std::uint32_t>(key.size() % 3); }
  static Entry Keep(const Key& key, Buffer& page) {
    page.Append(key.data(), key.size());
    return std::string(key);
  }
  static bool Same(const Entry& entry, const Key& key, const Buffer&) { return entry == key; }
};

std::string_view PageOf(const ValueDictionary<Poor>& dictionary) {
  return {dictionary.page().As<char>(), dictionary.page().size()};
}

TEST(ValueDictionary, NumbersValuesInTheOrderOfTheirFirstUse) {
  ValueDictionary<Poor> dictionary;
  EXPECT_EQ(dictionary.NumberOf("bb"), 0U);
  EXPECT_EQ(dictionary.NumberOf("a"), 1U);
  EXPECT_EQ(dictionary.NumberOf("bb"), 0U);
  EXPECT_EQ(dictionary.NumberOf("dd"), 2U);
  EXPECT_EQ(dictionary.NumberOf(""), 3U);
  EXPECT_EQ(dictionary.entries(), (std::vector<std::string>{"bb", "a", "dd", ""}));
  EXPECT_EQ(PageOf(dictionary), "bbadd");
}

TEST(ValueDictionary, KeepsItsNumbersWhileItGrows) {
  ValueDictionary<Poor> dictionary;
  std::vector<std::string> texts;
  for (int i = 0; i < 3000; ++i) texts.push_back("value " + std::to_string(i * 31));
  for (std::uint32_t i = 0; i < texts.size(); ++i) ASSERT_EQ(dictionary.NumberOf(texts[i]), i);
  for (std::uint32_t i = 0; i < texts.size(); ++i) ASSERT_EQ(dictionary.NumberOf(texts[i]), i);
}

TEST(ValueDictionary, OnceClearedItKnowsNoValue) {
  ValueDictionary<Poor> dictionary;
  // What was forgotten must not stay in its places either: they would run out.
  for (int round = 0; round < 10; ++round) {
    for (std::uint32_t i = 0; i < 30; ++i) {
      ASSERT_EQ(dictionary.NumberOf(std::to_string(round * 100 + static_cast<int>(i))), i);
    }
    if (round % 2 == 0) dictionary.Shorten(round % 4 == 0 ? 0 : 1, round % 4 == 0 ? 0 : 3);
    dictionary.Clear();
    EXPECT_TRUE(dictionary.entries().empty());
    EXPECT_EQ(PageOf(dictionary), "");
  }
}

TEST(ValueDictionary, ShortenedItHasTheFirstValues) {
  ValueDictionary<Poor> dictionary;
  dictionary.NumberOf("one");
  dictionary.NumberOf("two");
  dictionary.NumberOf("three");
  dictionary.Shorten(2, 6);
  EXPECT_EQ(dictionary.entries(), (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(PageOf(dictionary), "onetwo");
}

}  // namespace
}  // namespace library
