#include "watch/NotedProblems.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

using Kind = ImportProblemKind;

TEST(NotedProblems, KeepsTextsOfEveryLength) {
  NotedProblems noted(1);
  const std::uint32_t code = ProblemCode(Kind::kUnreadable, 0);
  for (const bool unlike : {true, false}) {
    noted.Clear(true);
    const auto text = [](std::size_t size) {
      std::string made;
      for (std::size_t at = 0; at < size; ++at) made += static_cast<char>('a' + (at + size) % 26);
      return made;
    };
    constexpr std::size_t kSizes = kImportTextBytes + 20;
    for (std::size_t size = 0; size < kSizes; ++size) {
      const auto record = static_cast<std::uint32_t>(size);
      const NotedProblems::Text kept = unlike ? noted.KeepNew(text(size)) : noted.Keep(text(size));
      noted.Add(record, code, {record + 7, record * 3, record % 2, kept});
    }
    ASSERT_EQ(noted.details().size(), kSizes);
    for (std::size_t size = 0; size < kSizes; ++size) {
      const NotedProblems::Detail& detail = noted.details()[size];
      EXPECT_EQ(noted.TextOf(detail), text(size).substr(0, kImportTextBytes));
      EXPECT_EQ(detail.line, static_cast<std::int64_t>(size + 7));
      EXPECT_EQ(detail.byte, static_cast<std::int64_t>(size * 3));
      EXPECT_EQ(detail.amount, static_cast<std::int64_t>(size % 2));
      EXPECT_EQ(noted.ProblemOf(size).record, size);
    }
    EXPECT_EQ(noted.CountOf(code), kSizes);
  }
}

TEST(NotedProblems, ATextThatComesTwiceInARowIsKeptOnce) {
  NotedProblems noted(1);
  const NotedProblems::Text first = noted.Keep("a text that is kept");
  const NotedProblems::Text second = noted.Keep("a text that is kept");
  EXPECT_EQ(first.at, second.at);
  EXPECT_EQ(noted.KeepNew("short").bytes, 5U);
  EXPECT_EQ(noted.Keep("short").bytes, 5U);
  EXPECT_EQ(noted.TextOf({0, 0, 0, noted.Keep("short")}), "short");
  EXPECT_EQ(noted.TextOf({0, 0, 0, first}), "a text that is kept");
}

TEST(NotedProblems, WithoutDetailsTheFirstOfEachCodeHasSomeAndAllAreCounted) {
  NotedProblems noted(2);
  const std::uint32_t one = ProblemCode(Kind::kUnreadable, 0);
  const std::uint32_t other = ProblemCode(Kind::kCut, 1);
  for (int pass = 0; pass < 2; ++pass) {
    noted.Clear(false);
    for (std::uint32_t record = 0; record < 1000; ++record) {
      for (const std::uint32_t code : {one, other}) {
        if (record < 10 && code == other) continue;
        const bool first = record == (code == one ? 0 : 10);
        EXPECT_EQ(noted.WantsDetail(code), first);
        if (first) {
          EXPECT_FALSE(noted.AddCounted(record, code));
          noted.Add(record, code, {record, 1, 2, noted.KeepNew("x")});
        } else if (!noted.AddCounted(record, code)) {
          noted.Add(record, code);
        }
      }
    }
    EXPECT_EQ(noted.CountOf(one), 1000U);
    EXPECT_EQ(noted.CountOf(other), 990U);
    EXPECT_EQ(noted.codes(), (std::vector<std::uint32_t>{one, other}));
    EXPECT_EQ(noted.problems().size(), 1990U);
    EXPECT_TRUE(std::is_sorted(
        noted.problems().begin(), noted.problems().end(),
        [](const auto& left, const auto& right) { return left.record < right.record; }));
    ASSERT_EQ(noted.details().size(), 2U);
    EXPECT_EQ(noted.ProblemOf(0).code, one);
    EXPECT_EQ(noted.ProblemOf(1).code, other);
    EXPECT_EQ(noted.ProblemOf(1).record, 10U);
  }
}

TEST(NotedProblems, AProblemThatNeedsDetailsIsNotCountedWithoutThem) {
  NotedProblems noted(1);
  const std::uint32_t code = ProblemCode(Kind::kUnreadable, 0);
  noted.Clear(true);
  noted.Add(0, code, {1, 2, 3, noted.KeepNew("x")});
  EXPECT_FALSE(noted.AddCounted(0, code));
  EXPECT_EQ(noted.CountOf(code), 1U);
}

}  // namespace
}  // namespace textwizard
