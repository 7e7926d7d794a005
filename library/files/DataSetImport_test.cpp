#include "library/files/DataSetImport.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/import/testing/KeptErrors.h"
#include "library/report/Digest.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class KeptProblems : public ProblemSink {
 public:
  void BeginFile(std::string_view name) override { file_ = name.substr(name.rfind('/') + 1); }
  void Write(const ImportProblem& problem) override {
    problems.push_back(file_ + " case " + std::to_string(problem.caseNumber) + " line " +
                       std::to_string(problem.line) + " variable " +
                       std::to_string(problem.variable));
  }
  std::vector<std::string> problems;

 private:
  std::string file_;
};

class DataSetImportTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(embedded::SetCodePage(nullptr));
    Write("a.csv", "id,n,town\n", 1, 40);
    Write("b.csv", "town,id\n", 41, 60);
    Write("c.csv", "id,n,town\n", 61, 90);
  }
  void TearDown() override {
    ASSERT_TRUE(embedded::SetCodePage(nullptr));
    iocvsetdecchardot_();
  }
  void Write(const std::string& name, const std::string& header, int from, int to) {
    std::string text = header;
    const bool all = header.starts_with("id");
    for (int i = from; i <= to; ++i) {
      const std::string id = std::to_string(i);
      const std::string town = "T" + std::to_string(i % 7);
      const std::string n = i == 77 ? "bad" : std::to_string(2 * i);
      text += all ? id + "," + n + "," + town + "\n" : town + "," + id + "\n";
    }
    names_.push_back(folder_.Write(name, text));
  }
  void Plan() {
    DataSetSettings settings;
    settings.file.nulls = DefaultNullTexts();
    std::string problem;
    ASSERT_TRUE(PlanDataSet(names_, files_, settings, &plan_, &problem)) << problem;
    options_.files = &files_;
    options_.digest = true;
    options_.watch.problemLimit = 100;
    options_.workers = 2;
  }

  TestFolder folder_;
  std::vector<std::string> names_;
  InputFiles files_;
  DataSetPlan plan_;
  DataSetImportOptions options_;
  KeptErrors messages_;
  KeptProblems problems_;
};

TEST_F(DataSetImportTest, CasesAndProblemsAreThoseOfOneDataSet) {
  Plan();
  options_.verify = true;
  DataSetImport import(CommandsOf(plan_), options_, messages_);
  ASSERT_EQ(import.Open(), ImportEnd::kDone) << messages_.errors[0];
  DigestSink digest(import.source());
  ASSERT_EQ(import.Read({{&digest}, {&problems_}, {}}), ImportEnd::kDone);
  const PassAccount total = import.TotalAccount();
  EXPECT_EQ(total.cases, 90);
  EXPECT_EQ(total.digest->Hex(), digest.digest().Hex());
  EXPECT_EQ(total.ledger.Imbalance(), "");
  EXPECT_EQ(total.ledger.Json()["absent"], 20);
  EXPECT_THAT(problems_.problems, ElementsAre("c.csv case 77 line 18 variable 1"));
  ASSERT_EQ(total.problems.Entries().size(), 1U);
  EXPECT_EQ(total.problems.Entries()[0].firstFile, names_[2]);
  EXPECT_EQ(import.accounts()[1].casesBefore, 40);
  EXPECT_THAT(messages_.errors, IsEmpty());
}

TEST_F(DataSetImportTest, PartsOfItsFilesAddUpToIt) {
  Plan();
  DataSetImport import(CommandsOf(plan_), options_, messages_);
  ASSERT_EQ(import.Open(), ImportEnd::kDone);
  ASSERT_EQ(import.Read({}), ImportEnd::kDone);
  const PassAccount whole = import.TotalAccount();
  for (const std::int64_t count : {1, 2, 5}) {
    Digest sum;
    Ledger ledger;
    std::int64_t casesBefore = 0;
    for (std::size_t file = 0; file < import.files(); ++file) {
      std::int64_t cases = 0;
      for (std::int64_t number = 1; number <= count; ++number) {
        PartOptions parts;
        parts.single =
            PartOptions::Single{PartOf(plan_.files[file].state->bytes, number, count), {}};
        FileAccount account;
        ASSERT_EQ(import.ReadFile(file, parts, casesBefore, {}, &account), ImportEnd::kDone);
        sum += *account.account.digest;
        cases += account.account.cases;
        EXPECT_EQ(account.account.ledger.Imbalance(), "");
      }
      casesBefore += cases;
    }
    EXPECT_EQ(casesBefore, whole.cases);
    EXPECT_EQ(sum.Hex(), whole.digest->Hex()) << count;
  }
  EXPECT_THAT(messages_.errors, IsEmpty());
}

TEST_F(DataSetImportTest, FilesThatChangeOrVanishAreNamed) {
  Plan();
  DataSetImport import(CommandsOf(plan_), options_, messages_);
  ASSERT_EQ(import.Open(), ImportEnd::kDone);
  Write("b.csv", "town,id\n", 41, 70);
  EXPECT_EQ(import.Read({}), ImportEnd::kFailed);
  ASSERT_EQ(messages_.errors.size(), 1U);
  EXPECT_THAT(messages_.errors[0], HasSubstr("b.csv: the file changed since it was looked at"));
  std::filesystem::remove(names_[0]);
  EXPECT_EQ(import.Read({}), ImportEnd::kFailed);
  ASSERT_EQ(messages_.errors.size(), 2U);
  EXPECT_THAT(messages_.errors[1], HasSubstr("a.csv: the file is gone since it was looked at"));
}

TEST_F(DataSetImportTest, TheReceiverMayStop) {
  Plan();
  DataSetImport import(CommandsOf(plan_), options_, messages_);
  ASSERT_EQ(import.Open(), ImportEnd::kDone);
  DigestSink digest(import.source());
  DataSetImport::Outputs outputs{{&digest}, {}, [](long long cases) { return cases <= 40; }};
  EXPECT_EQ(import.Read(outputs), ImportEnd::kStopped);
}

}  // namespace
}  // namespace library
