#include "library/report/ProblemLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = ImportProblemKind;

TEST(ProblemLog, KeepsCountFirstLineAndFirstTextOfEveryKindOfEveryVariable) {
  ProblemLog log;
  log.Add(Problem(Kind::kUnreadable, 1, "x"));
  ImportProblem later = Problem(Kind::kUnreadable, 1, "y");
  later.line = 9;
  log.Add(later);
  log.Add(Problem(Kind::kFewFields, -1, "a\tb", 2));
  log.Add(Problem(Kind::kCut, 0, "long"));
  EXPECT_EQ(log.total(), 4);
  EXPECT_THAT(log.Entries(), ElementsAre(ProblemLog::Entry{-1, Kind::kFewFields, 1, 2, "a\\tb"},
                                         ProblemLog::Entry{0, Kind::kCut, 1, 2, "long"},
                                         ProblemLog::Entry{1, Kind::kUnreadable, 2, 2, "x"}));
  EXPECT_EQ(log.CountOf(Kind::kUnreadable), 2);
  EXPECT_EQ(log.CountOf(Kind::kUnreadable, 1), 2);
  EXPECT_EQ(log.CountOf(Kind::kUnreadable, 0), 0);
  EXPECT_EQ(log.Find(Kind::kNul, -1), nullptr);
}

TEST(ProblemLog, TakesTheCountOfThoseThatWereNotTold) {
  ProblemLog log;
  log.Add(Problem(Kind::kUnreadable, 1, "x"));
  log.Add(Problem(Kind::kCut, 1, "x"));
  log.SetCount({Kind::kUnreadable, 1, 1000});
  EXPECT_EQ(log.total(), 1001);
  EXPECT_EQ(log.CountOf(Kind::kUnreadable), 1000);
  EXPECT_EQ(log.Find(Kind::kUnreadable, 1)->firstText, "x");
}

TEST(ProblemLog, OfALaterPartKeepsTheFirst) {
  ProblemLog log;
  log.Add(Problem(Kind::kCut, 0, "first"));
  ProblemLog later;
  ImportProblem problem = Problem(Kind::kCut, 0, "second");
  problem.line = 20;
  later.Add(problem);
  problem.variable = 3;
  later.Add(problem);
  log.Add(later);
  EXPECT_THAT(log.Entries(), ElementsAre(ProblemLog::Entry{0, Kind::kCut, 2, 2, "first"},
                                         ProblemLog::Entry{3, Kind::kCut, 1, 20, "second"}));
  EXPECT_EQ(log.total(), 3);
}

TEST(ProblemLog, OfACleanFileIsEmpty) {
  const ProblemLog log;
  EXPECT_EQ(log.total(), 0);
  EXPECT_THAT(log.Entries(), IsEmpty());
}

}  // namespace
}  // namespace library
