#include "watch/PassTeller.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

using Kind = ImportProblemKind;

constexpr std::size_t kVariables = 100;

// Keeps what it is told.
class Listener : public ImportObserver {
 public:
  explicit Listener(std::int64_t limit) : limit_(limit) {}
  std::int64_t ProblemLimit() const override { return limit_; }
  bool WantsProblemCases() const override { return true; }
  void OnProblem(const ImportProblem& problem) override {
    told.push_back(std::to_string(problem.caseNumber) + "/" + std::to_string(problem.line) + "/" +
                   std::to_string(problem.byte) + "/" + std::to_string(problem.variable) + "/" +
                   std::string(problem.text));
  }
  void OnProblemCase(const ImportCaseSpan& span) override {
    told.push_back("case " + std::to_string(span.caseNumber));
  }
  void OnProblemCounts(const ImportProblemCount* counts, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i) total += counts[i].count;
  }
  std::vector<std::string> told;
  std::int64_t total = 0;

 private:
  const std::int64_t limit_;
};

// Every value of its cases is a problem.
WatchedBatch BatchOf(std::uint32_t cases) {
  WatchedBatch batch(kVariables);
  batch.Clear(true);
  for (std::uint32_t record = 0; record < cases; ++record) {
    for (std::int32_t variable = 0; variable < static_cast<std::int32_t>(kVariables); ++variable) {
      const std::string text = "x" + std::to_string(variable);
      batch.problems.Add(
          record, ProblemCode(Kind::kUnreadable, variable),
          {record + 1, std::int64_t{1000} * record + variable, 0, batch.problems.KeepNew(text)});
    }
    batch.cases.push_back({record, record + 1, 1000 * record, 1000 * (record + 1)});
  }
  return batch;
}

std::string Told(std::uint32_t record, std::size_t variable) {
  return std::to_string(record + 6) + "/" + std::to_string(record + 1) + "/" +
         std::to_string(1000 * record + variable) + "/" + std::to_string(variable) + "/x" +
         std::to_string(variable);
}

// More problems of a case than are told at once; the case behind all of them.
TEST(PassTeller, TellsEveryProblemOfACaseInOrder) {
  Listener listener(1000000);
  PassTeller teller(listener, kVariables, false);
  const WatchedBatch batch = BatchOf(3);
  teller.Begin(0, 0);
  teller.StartBatch(batch, 5);
  std::vector<std::string> expected;
  for (std::uint32_t record = 0; record < 3; ++record) {
    teller.TellCases(record + 1);
    for (std::size_t variable = 0; variable < kVariables; ++variable) {
      expected.push_back(Told(record, variable));
    }
    expected.push_back("case " + std::to_string(record + 6));
    EXPECT_EQ(listener.told, expected);
  }
  teller.EndBatch();
  teller.End(true, -1, 3000);
  EXPECT_EQ(listener.total, 300);
}

TEST(PassTeller, BeyondTheLimitTheFirstOfEachKindAndVariableIsToldStill) {
  for (const std::int64_t limit : {0, 1, 31, 32, 33, 64, 99, 100, 101, 150, 299, 300}) {
    Listener listener(limit);
    PassTeller teller(listener, kVariables, false);
    const WatchedBatch batch = BatchOf(3);
    teller.Begin(0, 0);
    teller.StartBatch(batch, 5);
    teller.TellCases(3);
    std::vector<std::string> expected;
    std::int64_t told = 0;
    for (std::uint32_t record = 0; record < 3; ++record) {
      for (std::size_t variable = 0; variable < kVariables; ++variable) {
        if (record > 0 && told >= limit) continue;
        ++told;
        expected.push_back(Told(record, variable));
      }
      expected.push_back("case " + std::to_string(record + 6));
    }
    EXPECT_EQ(listener.told, expected) << limit;
    EXPECT_EQ(teller.limitReached(), limit <= 300) << limit;
    teller.EndBatch();
    teller.End(true, -1, 3000);
    EXPECT_EQ(listener.total, 300) << limit;
  }
}

}  // namespace
}  // namespace textwizard
