#include "library/input/CopyMap.h"

#include <gtest/gtest.h>

namespace library {
namespace {

// A copy in which every letter of the file is doubled and a blank stands behind each "b".
constexpr std::string_view kFile = "abcab";
// aabb_ccaabb_

CopyMap::Replay Doubling(int* replays) {
  return [replays](std::string_view bytes, std::int64_t file, std::int64_t copy, bool ends,
                   std::vector<CopyMap::Run>* runs) {
    ++*replays;
    EXPECT_EQ(ends, file + static_cast<std::int64_t>(bytes.size()) ==
                        static_cast<std::int64_t>(kFile.size()));
    for (const char byte : bytes) {
      runs->push_back({copy, file++, 2, 1});
      copy += 2;
      if (byte == 'b') runs->push_back({copy++, file, 1, 0});
    }
  };
}

class CopyMapTest : public testing::Test {
 protected:
  CopyMapTest() {
    map_.AddStretch(0, 0, Doubling(&replays_));
    map_.AddStretch(2, 5, Doubling(&replays_));
    map_.AddStretch(3, 7, Doubling(&replays_));
    map_.End(5, 12);
  }
  int replays_ = 0;
  CopyMap map_{std::make_unique<MemorySource>(kFile, true)};
};

TEST_F(CopyMapTest, FindsTheCharacterThatBeginsThere) {
  EXPECT_EQ(map_.FileOffset(0), 0);
  EXPECT_EQ(map_.FileOffset(2), 1);
  EXPECT_EQ(map_.FileOffset(5), 2);
  EXPECT_EQ(map_.FileOffset(7), 3);
  EXPECT_EQ(map_.FileOffset(9), 4);
}

TEST_F(CopyMapTest, WhatTheFileLacksStandsAtWhatFollows) {
  EXPECT_EQ(map_.FileOffset(4), 2);
  EXPECT_EQ(map_.FileOffset(11), 5);
}

TEST_F(CopyMapTest, TheEndIsTheFiles) {
  EXPECT_EQ(map_.FileOffset(12), 5);
  EXPECT_EQ(map_.FileOffset(100), 5);
}

TEST_F(CopyMapTest, TwoStretchesAreKept) {
  for (int i = 0; i < 10; ++i) {
    map_.FileOffset(2);
    map_.FileOffset(5);
  }
  EXPECT_EQ(replays_, 2);
  map_.FileOffset(7);
  map_.FileOffset(9);
  map_.FileOffset(6);
  EXPECT_EQ(replays_, 3);
  EXPECT_EQ(map_.FileOffset(2), 1);
  EXPECT_EQ(replays_, 4);
}

TEST_F(CopyMapTest, ACopyOfACopyGoesBackToTheFile) {
  // Three blanks in front of it.
  auto outer = std::make_shared<CopyMap>(std::make_unique<MemorySource>("aabb ccaabb ", true));
  outer->AddStretch(
      0, 0,
      [](std::string_view, std::int64_t, std::int64_t, bool, std::vector<CopyMap::Run>* runs) {
        *runs = {{0, 0, 1, 0}, {3, 0, 1, 1}};
      });
  outer->End(12, 15);
  const auto inner = std::make_shared<CopyMap>(std::make_unique<MemorySource>(kFile, true));
  int replays = 0;
  inner->AddStretch(0, 0, Doubling(&replays));
  inner->End(5, 12);
  EXPECT_EQ(FileOffset({inner, outer}, 1), 0);
  EXPECT_EQ(FileOffset({inner, outer}, 3 + 5), 2);
  EXPECT_EQ(FileOffset({inner, outer}, 15), 5);
  EXPECT_EQ(FileOffset({}, 7), 7);
}

TEST_F(CopyMapTest, OfAnEmptyFileThereIsTheEndOnly) {
  CopyMap map(std::make_unique<MemorySource>("", true));
  EXPECT_EQ(map.FileOffset(0), 0);
  map.End(4, 0);
  EXPECT_EQ(map.FileOffset(0), 4);
}

}  // namespace
}  // namespace library
