#include "library/report/ImportWatch.h"

#include <cstring>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/report/ProblemWriter.h"
#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Kind = ImportProblemKind;

// Tells a watch what an engine tells of three cases, the second of which has a problem.
class ImportWatchTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
  void SetUp() override {
    source_.Number("fee").String("town", 8);
    cases_.emplace(source_, 3);
    cases_->Set(0, 0, 1.0).Set(1, 1, "Bern").Set(2, 0, 3.0);
    variables_ = ReportVariablesOf(source_);
  }
  static constexpr std::string_view kData = "fee,town\n1,\nx,Bern\n3,\n";

  void Begin(ImportWatch& watch) const {
    watch.OnPassBegin();
    watch.OnSpan({ImportSpan::kPreamble, 0, 9, 0, 0, 0});
  }
  void TellProblem(ImportWatch& watch) const {
    watch.OnProblem({Kind::kUnreadable, 0, 2, 3, 12, 0, "x"});
    if (watch.WantsProblemCases()) watch.OnProblemCase({2, 3, 12, 19});
  }
  void End(ImportWatch& watch) const {
    const ImportProblemCount count{Kind::kUnreadable, 0, 1};
    watch.OnSpan({ImportSpan::kRecords, 9, 13, 3, 3, 0});
    if (!watch.WantsCellsPerCase()) watch.OnCells({.read = 3, .empty = 2, .unreadable = 1});
    watch.OnProblemCounts(&count, 1);
    watch.OnPassEnd({.cases = 3, .recordsInCases = 3, .bytes = 22, .complete = true});
  }

  ReportSource source_;
  std::optional<ReportCases> cases_;
  ReportVariables variables_;
};

TEST_F(ImportWatchTest, AccountsForAPass) {
  ImportWatch watch({});
  watch.Prepare(source_, {}, {});
  Begin(watch);
  TellProblem(watch);
  End(watch);
  const PassAccount& account = watch.account();
  EXPECT_EQ(account.cases, 3);
  EXPECT_TRUE(account.complete);
  EXPECT_EQ(account.problems.total(), 1);
  EXPECT_EQ(account.ledger.Imbalance(), "");
}

TEST_F(ImportWatchTest, TakesTheCountsOfProblemsThatWereNotTold) {
  ImportWatch watch({});
  watch.Prepare(source_, {}, {});
  Begin(watch);
  TellProblem(watch);
  const ImportProblemCount counts[] = {{Kind::kUnreadable, 0, 8}, {Kind::kCut, 1, 2}};
  watch.OnProblemCounts(counts, 2);
  EXPECT_EQ(watch.account().problems.total(), 10);
}

TEST_F(ImportWatchTest, ASecondPassStartsAnew) {
  ImportWatch watch({});
  for (int pass = 0; pass < 2; ++pass) {
    watch.Prepare(source_, {}, {.oneThread = pass == 1});
    EXPECT_EQ(watch.ReadsOnOneThread(), pass == 1);
    Begin(watch);
    TellProblem(watch);
    End(watch);
    EXPECT_EQ(watch.account().problems.total(), 1);
    EXPECT_EQ(watch.account().ledger.Imbalance(), "");
  }
}

TEST_F(ImportWatchTest, WritesProblemsAndRejectsAsTheyAreTold) {
  WatchSettings settings;
  settings.rejects = true;
  settings.problemLimit = 10;
  ImportWatch watch(settings);
  TextSink rows;
  TextSink rejected;
  MemorySource data(kData, true);
  ProblemWriter writer(ProblemFormat::kCsv, variables_, 10, rows);
  RejectsFile rejects(data, rejected);
  watch.Prepare(source_, {{&writer}, &rejects}, {});
  EXPECT_EQ(watch.ProblemLimit(), 10);
  Begin(watch);
  TellProblem(watch);
  End(watch);
  writer.Flush();
  rejects.Finish();
  EXPECT_THAT(rows.text, HasSubstr("unreadable,2,3,12,fee,F8.2,x,"));
  EXPECT_EQ(rejected.text, "fee,town\nx,Bern\n");
}

class SampledWatchTest : public ImportWatchTest {
 protected:
  // Keeps the cases that are named (from 0).
  void Sample(ImportWatch& watch, const std::vector<std::size_t>& kept) {
    Begin(watch);
    for (std::size_t index = 0; index < 3; ++index) {
      if (index == 1) TellProblem(watch);
      watch.OnCells(index == 1 ? ImportCellCounts{.read = 1, .unreadable = 1}
                               : ImportCellCounts{.read = 1, .empty = 1});
      if (std::find(kept.begin(), kept.end(), index) != kept.end()) {
        watch.Keep(cases_->At(index));
      } else {
        watch.Drop();
      }
    }
    End(watch);
  }
  WatchSettings settings_ = [] {
    WatchSettings settings;
    settings.rejects = true;
    settings.problemLimit = 5;
    return settings;
  }();
};

TEST_F(SampledWatchTest, CountsKeptCasesOnly) {
  ImportWatch watch(settings_);
  watch.Prepare(source_, {}, {.sampled = true});
  EXPECT_FALSE(watch.WantsBatches());
  EXPECT_TRUE(watch.WantsCellsPerCase());
  Sample(watch, {0, 2});
  EXPECT_EQ(watch.account().cases, 2);
  EXPECT_EQ(watch.account().problems.total(), 0);
  EXPECT_EQ(watch.account().ledger.Imbalance(), "");
  EXPECT_EQ(watch.account().ledger.Json()["cells"], 4);
}

TEST_F(SampledWatchTest, NumbersKeptCases) {
  ImportWatch watch(settings_);
  TextSink rows;
  TextSink rejected;
  MemorySource data(kData, true);
  ProblemWriter writer(ProblemFormat::kCsv, variables_, 10, rows);
  RejectsFile rejects(data, rejected);
  watch.Prepare(source_, {{&writer}, &rejects}, {.sampled = true});
  Sample(watch, {1});
  writer.Flush();
  rejects.Finish();
  EXPECT_THAT(rows.text, HasSubstr("unreadable,1,3,12,fee,F8.2,x,"));
  EXPECT_EQ(rejected.text, "fee,town\nx,Bern\n");
  EXPECT_EQ(watch.account().problems.total(), 1);
}

// Notes the first numbers of the cases it gets, and fails when it is told to.
class Notes : public CaseSink {
 public:
  struct Part : public CasePart {
    std::int64_t firstCase = 0;
    std::vector<double> fees;
  };
  std::unique_ptr<CasePart> Make(const OBS* cases, std::size_t count,
                                 std::int64_t firstCase) const override {
    auto part = std::make_unique<Part>();
    part->firstCase = firstCase;
    for (std::size_t index = 0; index < count; ++index) {
      double fee = 0;
      std::memcpy(&fee, cases[2 * index].bytes, sizeof fee);
      part->fees.push_back(fee);
    }
    return part;
  }
  void Take(std::unique_ptr<CasePart> part) override {
    if (fails) throw std::runtime_error("full");
    const auto& made = static_cast<Part&>(*part);
    EXPECT_EQ(made.firstCase, static_cast<std::int64_t>(fees.size()));
    fees.insert(fees.end(), made.fees.begin(), made.fees.end());
    ++parts;
  }
  void Finish() override {}

  std::vector<double> fees;
  int parts = 0;
  bool fails = false;
};

TEST_F(ImportWatchTest, HandsBatchesToEverySink) {
  ImportWatch watch({});
  EXPECT_FALSE(watch.WantsBatches());
  Notes one;
  Notes other;
  watch.Use(one);
  watch.Use(other);
  watch.Prepare(source_, {}, {});
  EXPECT_FALSE(watch.WantsBatches());
  watch.Prepare(source_, {}, {.batches = true});
  EXPECT_TRUE(watch.WantsBatches());
  Begin(watch);
  watch.OnProduct(watch.MakeProduct(cases_->At(0), 2, 0), cases_->At(0), 2, 0);
  watch.OnProduct(watch.MakeProduct(cases_->At(2), 1, 2), cases_->At(2), 1, 2);
  EXPECT_EQ(watch.cases(), 3);
  const std::vector<double> expected = {1.0, kSystemMissing, 3.0};
  EXPECT_EQ(one.fees, expected);
  EXPECT_EQ(other.fees, expected);
  EXPECT_EQ(other.parts, 2);
  watch.UseNone();
  EXPECT_FALSE(watch.WantsBatches());
}

TEST_F(ImportWatchTest, WhatASinkThrowsIsKeptForTheHost) {
  ImportWatch watch({});
  Notes sink;
  sink.fails = true;
  watch.Use(sink);
  watch.Prepare(source_, {}, {.batches = true});
  Begin(watch);
  EXPECT_NO_THROW(watch.Rethrow());
  watch.OnProduct(watch.MakeProduct(cases_->At(0), 2, 0), cases_->At(0), 2, 0);
  EXPECT_TRUE(watch.failed());
  EXPECT_THROW(watch.Rethrow(), std::runtime_error);
  sink.fails = false;
  watch.OnProduct(watch.MakeProduct(cases_->At(2), 1, 2), cases_->At(2), 1, 2);
  EXPECT_EQ(sink.parts, 0);
  watch.Prepare(source_, {}, {.batches = true});
  EXPECT_FALSE(watch.failed());
}

TEST_F(ImportWatchTest, HandsOnCasesThatComeOneByOne) {
  ImportWatch watch({});
  Notes sink;
  watch.Use(sink);
  watch.Prepare(source_, {}, {});
  Begin(watch);
  for (std::size_t index = 0; index < 3; ++index) {
    if (index == 1) TellProblem(watch);
    watch.Keep(cases_->At(index));
  }
  End(watch);
  EXPECT_EQ(sink.fees.size(), 3U);
  EXPECT_EQ(watch.account().cases, 3);
  EXPECT_EQ(watch.account().problems.total(), 1);
  EXPECT_EQ(watch.account().ledger.Imbalance(), "");
}

TEST_F(SampledWatchTest, GathersKeptCasesForTheSinks) {
  ImportWatch watch(settings_);
  Notes sink;
  watch.Use(sink);
  watch.Prepare(source_, {}, {.sampled = true});
  EXPECT_FALSE(watch.WantsBatches());
  Sample(watch, {0, 2});
  EXPECT_EQ(sink.fees, (std::vector<double>{1.0, 3.0}));
  EXPECT_EQ(sink.parts, 1);
  sink.fails = true;
  watch.Prepare(source_, {}, {.sampled = true});
  Sample(watch, {1});
  EXPECT_TRUE(watch.failed());
}

TEST_F(SampledWatchTest, HandsOnWhatItGathersInTime) {
  ImportWatch watch(settings_);
  Notes sink;
  watch.Use(sink);
  watch.Prepare(source_, {}, {.sampled = true});
  Begin(watch);
  for (int count = 0; count < 100000; ++count) watch.Keep(cases_->At(0));
  EXPECT_GT(sink.parts, 5);
  End(watch);
  EXPECT_EQ(sink.fees.size(), 100000U);
}

TEST_F(ImportWatchTest, KeepsTheEvidenceOfEachVariable) {
  WatchSettings settings;
  settings.evidence = true;
  ImportWatch watch(settings);
  EXPECT_TRUE(watch.WantsEvidence());
  ImportEvidence evidence;
  evidence.blanks = 4;
  watch.OnEvidence(1, evidence);
  EXPECT_EQ(watch.EvidenceOf(0), nullptr);
  ASSERT_NE(watch.EvidenceOf(1), nullptr);
  EXPECT_EQ(watch.EvidenceOf(1)->blanks, 4);
  EXPECT_EQ(watch.EvidenceOf(7), nullptr);
}

}  // namespace
}  // namespace library
