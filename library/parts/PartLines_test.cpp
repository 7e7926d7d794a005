#include "library/parts/PartLines.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace library {
namespace {

PartLines Lines(std::int64_t unitsPerCase, const std::vector<std::int64_t>& unitsOfLines,
                std::int64_t byte = 0) {
  PartLines lines;
  lines.unitsPerCase = unitsPerCase;
  for (const std::int64_t units : unitsOfLines) {
    lines.AddStart({lines.units, lines.lines, byte});
    lines.units += units;
    ++lines.lines;
    byte += 10;
  }
  return lines;
}

TEST(PartLinesTest, ACaseStartsBehindAWholeNumberOfThem) {
  const PartLines lines = Lines(3, {1, 1, 2, 3}, 100);
  ASSERT_NE(lines.CaseStart(0), nullptr);
  EXPECT_EQ(*lines.CaseStart(0), (PartLines::Start{0, 0, 100}));
  EXPECT_EQ(*lines.CaseStart(2), (PartLines::Start{1, 1, 110}));
  EXPECT_EQ(*lines.CaseStart(4), (PartLines::Start{2, 2, 120}));
  EXPECT_EQ(lines.starts.size(), 3U) << "one for each remainder";
}

TEST(PartLinesTest, NoCaseMayStartInIt) {
  const PartLines lines = Lines(5, {1, 5, 5});
  EXPECT_EQ(lines.CaseStart(1), nullptr);
  ASSERT_NE(lines.CaseStart(4), nullptr);
  EXPECT_EQ(lines.CaseStart(4)->lines, 1);
}

TEST(PartLinesTest, NothingFollowsTheEndOfTheData) {
  PartLines first = Lines(1, {1, 1});
  first.dataEnds = true;
  PartLines both = first;
  both.Append(Lines(1, {1}, 20));
  EXPECT_EQ(both, first);
}

TEST(PartLinesTest, MergeInAnyGroupingToTheSame) {
  std::mt19937 random(5);
  for (int round = 0; round < 200; ++round) {
    const std::int64_t unitsPerCase = 1 + random() % 6;
    std::vector<PartLines> parts;
    std::vector<std::int64_t> all;
    std::int64_t byte = 0;
    for (int part = 0; part < 4; ++part) {
      std::vector<std::int64_t> units;
      for (auto count = random() % 5; count > 0; --count) units.push_back(random() % 4);
      parts.push_back(Lines(unitsPerCase, units, byte));
      all.insert(all.end(), units.begin(), units.end());
      byte += 10 * static_cast<std::int64_t>(units.size());
    }
    const PartLines whole = Lines(unitsPerCase, all);
    PartLines left = parts[0];
    for (int part = 1; part < 4; ++part) left.Append(parts[static_cast<std::size_t>(part)]);
    PartLines right = parts[2];
    right.Append(parts[3]);
    PartLines middle = parts[1];
    middle.Append(right);
    PartLines other = parts[0];
    other.Append(middle);
    EXPECT_EQ(left, whole);
    EXPECT_EQ(other, whole);
  }
}

}  // namespace
}  // namespace library
