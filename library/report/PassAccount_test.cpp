#include "library/report/PassAccount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Kind = ImportProblemKind;

const ReportVariables kVariables = {{"fee", "F8.2", 5, 0}};

PassAccount Account(const std::vector<ImportProblem>& problems) {
  PassAccount account;
  account.cases = 3;
  account.digest = Digest{1, 2};
  for (const ImportProblem& problem : problems) {
    account.problems.Add(problem);
    account.trail.push_back(MarkOf(problem));
  }
  account.ledger.SetCounts({.bytes = 10, .cases = 3, .variables = 1, .recordsInCases = 3});
  return account;
}

TEST(PassAccount, EqualPassesDoNotDiffer) {
  const std::vector<ImportProblem> problems = {Problem(Kind::kUnreadable, 0, "x")};
  EXPECT_THAT(Differences(Account(problems), Account(problems), kVariables), IsEmpty());
}

TEST(PassAccount, EveryDifferenceIsNamed) {
  PassAccount second = Account({});
  second.cases = 4;
  second.digest = Digest{1, 3};
  second.ledger.AddCells({.read = 1});
  EXPECT_THAT(Differences(Account({}), second, kVariables),
              ElementsAre("the numbers of cases are 3 and 4",
                          "the digests are 00000000000000010000000000000002 and "
                          "00000000000000010000000000000003",
                          HasSubstr("the ledgers are \"ledger: 10 bytes = 0;")));
}

TEST(PassAccount, TheFirstProblemThatDiffersIsNamed) {
  const ImportProblem same = Problem(Kind::kNul, -1, "a", 1);
  const ImportProblem one = Problem(Kind::kUnreadable, 0, "x");
  ImportProblem other = one;
  other.line = 5;
  EXPECT_THAT(
      Differences(Account({same, one}), Account({same, other}), kVariables),
      ElementsAre("problem 2 is unreadable in line 2 of fee and unreadable in line 5 of fee"));
  EXPECT_THAT(Differences(Account({same, one}), Account({same}), kVariables),
              ElementsAre("problem 2 is unreadable in line 2 of fee and no further one"));
}

TEST(PassAccount, EveryWordOfAProblemCounts) {
  const ImportProblem problem = Problem(Kind::kUnreadable, 0, "x", 1);
  std::vector<ImportProblem> changed(6, problem);
  changed[0].kind = Kind::kCut;
  changed[1].variable = 1;
  changed[2].caseNumber = 2;
  changed[3].byte = 11;
  changed[4].amount = 2;
  changed[5].text = "y";
  for (const ImportProblem& other : changed) {
    EXPECT_EQ(Differences(Account({problem}), Account({other}), kVariables).size(), 1U);
  }
}

TEST(PassAccount, CountsBeyondThoseToldAreCompared) {
  PassAccount second = Account({Problem(Kind::kUnreadable, 0, "x")});
  second.problems.SetCount({Kind::kUnreadable, 0, 7});
  EXPECT_THAT(Differences(Account({Problem(Kind::kUnreadable, 0, "x")}), second, kVariables),
              ElementsAre("the problems are 1 and 7 by variable and kind"));
}

}  // namespace
}  // namespace library
