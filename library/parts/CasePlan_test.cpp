#include "library/parts/CasePlan.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace library {
namespace {

using testing::ElementsAre;
using textwizard::ImportSettings;

constexpr const char* kPath = "plan.txt";

class ACasePlan : public testing::Test {
 protected:
  ACasePlan() { settings_.delimiters = ","; }
  const embedded::InCodePage inUtf8_{nullptr};

  void Open(const std::string& bytes, std::shared_ptr<embedded::StreamFaults> faults = nullptr) {
    files_.reset();
    files_ = std::make_unique<embedded::ScopedMemoryFiles>(kPath, bytes, std::move(faults));
    ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  }
  std::vector<Stretch> Cut(std::int64_t partBytes, std::size_t values = 1) {
    CasePlan plan;
    EXPECT_TRUE(
        PlanCases(stream_, settings_, values, PartsOfSize(stream_.Size(), partBytes), &plan));
    uncut_ = plan.uncut;
    return plan.stretches;
  }
  PartPlan Single(const PartRange& part, std::size_t values = 1) {
    PartPlan plan;
    std::string problem;
    EXPECT_TRUE(PlanPart(stream_, settings_, values, part, nullptr, &plan, &problem)) << problem;
    return plan;
  }

  ImportSettings settings_;
  std::unique_ptr<embedded::ScopedMemoryFiles> files_;
  QANT_FileStream stream_;
  std::string uncut_;
};

TEST(PartsOfAFileTest, HaveTheSizeAskedFor) {
  EXPECT_THAT(PartsOfSize(10, 4), ElementsAre(PartRange{0, 4}, PartRange{4, 8}, PartRange{8, 10}));
  EXPECT_THAT(PartsOfSize(8, 4), ElementsAre(PartRange{0, 4}, PartRange{4, 8}));
  EXPECT_THAT(PartsOfSize(0, 4), ElementsAre(PartRange{0, 0}));
  EXPECT_THAT(PartsOfSize(5, INT64_MAX), ElementsAre(PartRange{0, 5}));
}

TEST(PartsOfAFileTest, AreEvenAndJoin) {
  EXPECT_EQ(PartOf(10, 1, 3), (PartRange{0, 3}));
  EXPECT_EQ(PartOf(10, 2, 3), (PartRange{3, 6}));
  EXPECT_EQ(PartOf(10, 3, 3), (PartRange{6, 10}));
  EXPECT_EQ(PartOf(2, 2, 4), (PartRange{0, 1}));
  const std::int64_t huge = INT64_MAX;
  EXPECT_EQ(PartOf(huge, 1000, 1000).to, huge);
  EXPECT_EQ(PartOf(huge, 999, 1000).to, PartOf(huge, 1000, 1000).from);
}

TEST_F(ACasePlan, BeginsWithTheLinesThatBeginInAPart) {
  Open("a\nbb\nccc\ndd\n");
  EXPECT_THAT(Cut(4), ElementsAre(Stretch{0, 5, 0, 0}, Stretch{5, 9, 2, 2}, Stretch{9, 12, 3, 3}));
}

TEST_F(ACasePlan, CountsEmptyLinesAsNoCases) {
  Open("a\n\n\nb\nc\n");
  EXPECT_THAT(Cut(2), ElementsAre(Stretch{0, 2, 0, 0}, Stretch{2, 4, 1, 1}, Stretch{4, 6, 3, 1},
                                  Stretch{6, 8, 4, 2}));
}

TEST_F(ACasePlan, MayCutTheEndOfALineInTwo) {
  Open("ab\r\ncd\r\n");
  // The second part begins with the line feed.
  EXPECT_THAT(Cut(3), ElementsAre(Stretch{0, 4, 0, 0}, Stretch{4, 8, 1, 1}));
}

TEST_F(ACasePlan, HasNoCaseInPartsWithinALongLine) {
  Open("a\n" + std::string(50, 'x') + "\nb\n");
  EXPECT_THAT(Cut(2),
              ElementsAre(Stretch{0, 2, 0, 0}, Stretch{2, 53, 1, 1}, Stretch{53, 55, 2, 2}));
}

TEST_F(ACasePlan, CutsSixteenBitLinesAtUnits) {
  // The units 0A41 and 410A hold the byte of a line feed, and are none.
  Open(
      std::string("\xFF\xFE"
                  "A\x0A"
                  "\x0A"
                  "A\n\0b\0\n\0",
                  12));
  EXPECT_THAT(Cut(3), ElementsAre(Stretch{0, 8, 0, 0}, Stretch{8, 12, 1, 1}));
}

TEST_F(ACasePlan, BeginsBehindTheLinesBeforeTheData) {
  settings_.firstCase = 3;
  Open("head\nunits\na\nb\n");
  EXPECT_THAT(Cut(2), ElementsAre(Stretch{0, 13, 0, 0}, Stretch{13, 15, 3, 1}));
}

TEST_F(ACasePlan, CutsAtCasesOfSeveralLines) {
  settings_.arrangement = textwizard::kFixedColumns;
  settings_.recordsPerCase = 3;
  Open("1\n2\n3\n\n2\n3\n1\n2\n3\n");
  // An empty line is one of the three.
  EXPECT_THAT(Cut(1),
              ElementsAre(Stretch{0, 6, 0, 0}, Stretch{6, 11, 3, 1}, Stretch{11, 17, 6, 2}));
}

TEST_F(ACasePlan, CutsValuesWhereACaseBeginsALine) {
  settings_.arrangement = textwizard::kDelimitedCount;
  Open("1,2\n3,4,5\n6\n7,8,9\n10,11,12\n");
  // Of three values: behind 1 to 6, 7 to 9.
  EXPECT_THAT(Cut(1, 3),
              ElementsAre(Stretch{0, 12, 0, 0}, Stretch{12, 18, 3, 2}, Stretch{18, 27, 4, 3}));
}

TEST_F(ACasePlan, EndsWithTheLastCaseThatIsRead) {
  settings_.importMode = textwizard::kImportFirst;
  settings_.caseLimit = 3;
  Open("a\nb\n\nc\n\nd\ne\n");
  EXPECT_THAT(Cut(3), ElementsAre(Stretch{0, 4, 0, 0}, Stretch{4, 7, 2, 2}));
}

TEST_F(ACasePlan, IsWholeWhereTheLastCaseEndsWithinALine) {
  settings_.arrangement = textwizard::kDelimitedCount;
  settings_.importMode = textwizard::kImportFirst;
  settings_.caseLimit = 2;
  Open("1,2\n3,4,5\n6\n");
  EXPECT_THAT(Cut(4, 2), ElementsAre(Stretch{0, 12, 0, 0}));
  EXPECT_EQ(uncut_, "the last case that the command reads ends within a line");
}

TEST_F(ACasePlan, IsWholeWhereCasesAreHuge) {
  settings_.arrangement = textwizard::kFixedColumns;
  settings_.recordsPerCase = 65537;
  Open("a\nb\n");
  EXPECT_THAT(Cut(1), ElementsAre(Stretch{0, 4, 0, 0}));
  EXPECT_NE(uncut_, "");
}

TEST_F(ACasePlan, OfOnePartIsThatOfAll) {
  settings_.firstCase = 2;
  Open("head\na\n\nbb\nccc\nd\n");
  const std::vector<Stretch> all = Cut(4);
  std::vector<Stretch> single;
  std::int64_t end = 0;
  for (const PartRange& part : PartsOfSize(stream_.Size(), 4)) {
    const PartPlan plan = Single(part);
    if (!plan.read) continue;
    EXPECT_EQ(plan.begin, end);
    end = plan.end;
    single.push_back(*plan.read);
  }
  EXPECT_EQ(end, stream_.Size());
  EXPECT_EQ(single, all);
  EXPECT_GT(all.size(), 2U);
}

TEST_F(ACasePlan, OfAPartNeedsNothingOfTheFileBefore) {
  Open("a\nb\n" + std::string(1000, 'x') + "\nd\ne\nf\n");
  PartLines before;
  ASSERT_TRUE(CountPart(stream_, settings_, 1, {0, 1006}, &before));
  EXPECT_EQ(before.lines, 4);
  PartPlan plan;
  std::string problem;
  ASSERT_TRUE(PlanPart(stream_, settings_, 1, {1006, 1008}, &before, &plan, &problem));
  ASSERT_TRUE(plan.read);
  EXPECT_EQ(*plan.read, (Stretch{1007, 1009, 4, 4}));
}

TEST_F(ACasePlan, OfAPartEndsWithTheLimit) {
  settings_.importMode = textwizard::kImportFirst;
  settings_.caseLimit = 2;
  Open("a\nb\nc\nd\ne\n");
  EXPECT_EQ(Single({0, 6}).read, (Stretch{0, 4, 0, 0}));
  const PartPlan behind = Single({6, 10});
  EXPECT_EQ(behind.begin, 6);
  EXPECT_EQ(behind.end, 10);
  EXPECT_FALSE(behind.read) << "what is behind the limit belongs to it, unread";
}

TEST_F(ACasePlan, FailsWithTheFile) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  Open("a\nb\nc\nd\n", faults);
  faults->failAt = 4;
  CasePlan plan;
  EXPECT_FALSE(PlanCases(stream_, settings_, 1, PartsOfSize(8, 2), &plan));
}

}  // namespace
}  // namespace library
