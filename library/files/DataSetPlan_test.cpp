#include "library/files/DataSetPlan.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/command/CommandText.h"
#include "library/import/BareParts.h"
#include "library/report/ImportWatch.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DataSetPlanTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }
  void TearDown() override {
    ASSERT_TRUE(embedded::SetCodePage(nullptr));
    iocvsetdecchardot_();
  }

  void Write(const std::string& name, const std::string& text) {
    names_.push_back(folder_.Write(name, text));
  }
  bool Plan() {
    settings_.file.nulls = DefaultNullTexts();
    settings_.file.threads = 1;
    embedded::SetCodePage(nullptr);
    InputFiles files;
    return PlanDataSet(names_, files, settings_, &plan_, &problem_);
  }
  // "id F3".
  std::vector<std::string> Columns() const {
    std::vector<std::string> columns;
    for (const BareColumn& column : plan_.columns) {
      columns.push_back(column.name + " " + FormatText(column.type.format));
    }
    return columns;
  }
  // "b.csv missing town".
  std::vector<std::string> Drifts() const {
    std::vector<std::string> drifts;
    for (const Drift& drift : plan_.drift) {
      std::string text = plan_.names[drift.file];
      text = text.substr(text.rfind('/') + 1) + " " + NameOf(drift.kind);
      if (!drift.column.empty()) text += " " + drift.column;
      if (drift.line > 0) text += " " + std::to_string(drift.line) + " " + drift.value;
      drifts.push_back(text);
    }
    return drifts;
  }

  TestFolder folder_;
  std::vector<std::string> names_;
  DataSetSettings settings_;
  DataSetPlan plan_;
  std::string problem_;
};

TEST_F(DataSetPlanTest, TypesFitTheValuesOfAllFiles) {
  Write("a.csv", "id,when,town\n1,2020-01-01,x\n");
  Write("b.csv", "id,when,town\n2000,2020-12-31,Amsterdam\n");
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_THAT(Columns(), ElementsAre("id F4", "when SDATE10", "town A9"));
  EXPECT_THAT(Drifts(), IsEmpty());
  EXPECT_EQ(plan_.PlaceOf(4), "line 2 of " + names_[1]);
}

TEST_F(DataSetPlanTest, EachFileHasItsOwnDialect) {
  Write("a.csv", "id;town;n\n1;Oslo;10\n2;Rome;20\n");
  Write("b.csv", "\xEF\xBB\xBFid\ttown\tn\r\n3\tBern\t30\r\n4\tBonn\t40\r\n");
  Write("c.csv", "A list\n\nid,town,n\n5,\"Bari, Italy\",50\n6,Kiel,60\n");
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_THAT(Columns(), ElementsAre("id F1", "town A11", "n F2"));
  EXPECT_THAT(Drifts(), IsEmpty());
  EXPECT_THAT(plan_.files[0].import.command, HasSubstr("';'"));
  EXPECT_THAT(plan_.files[2].import.command, HasSubstr("/FIRSTCASE=4"));
}

TEST_F(DataSetPlanTest, MostFilesSayWhatTheStructureIs) {
  Write("a.csv", "note\nno data of ours\n");
  Write("b.csv", "id,town\n1,Oslo\n");
  Write("c.csv", "town,id\nRome,2\n");
  EXPECT_FALSE(Plan());
  EXPECT_THAT(problem_, HasSubstr("a.csv: it has 0 of the 2 columns of "));
  settings_.skipMisfits = true;
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_THAT(Drifts(), ElementsAre("a.csv left-out", "c.csv reordered"));
  EXPECT_EQ(plan_.reference, 1U);
  EXPECT_THAT(Columns(), ElementsAre("id F1", "town A4"));
}

TEST_F(DataSetPlanTest, ALineOfNamesIsFoundByThoseOfTheOthers) {
  // Texts above texts may be names or not.
  Write("a.csv", "id,town\n1,Oslo\n2,Rome\n3,Bern\n");
  Write("b.csv", "id,town\nx1,Graz\ny2,Kiel\n");
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_EQ(plan_.files[1].import.sniff.firstDataLine.value, 2);
}

TEST_F(DataSetPlanTest, ALineOfDataIsNoSecondLineOfNames) {
  Write("a.csv", "id,town\n1,Oslo\n2,Rome\n3,Bern\n");
  std::string text = "id,town\nx,Rome\n";
  for (int i = 2; i <= 20; ++i) text += std::to_string(i) + ",B\n";
  Write("b.csv", text);
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_EQ(plan_.files[1].import.summary.records, 20);
}

TEST_F(DataSetPlanTest, DecimalCharactersMayDiffer) {
  Write("a.csv", "id,x\n1,1.5\n2,2.25\n");
  Write("b.csv", "id;x\n3;1,5\n4;2,75\n");
  Write("c.csv", "id,x\n5,1.5\n6,10.25\n");
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_THAT(Columns(), ElementsAre("id F1", "x F5.2"));
  EXPECT_THAT(Drifts(), ElementsAre("b.csv decimal 2 1,5"));
  EXPECT_EQ(plan_.files[0].import.host.decimal, DecimalCharacter::kPoint);
  EXPECT_EQ(plan_.files[1].import.host.decimal, DecimalCharacter::kComma);
}

TEST_F(DataSetPlanTest, TypesThatDifferAreToldWithTheirPlace) {
  Write("a.csv", "id,n\n1,10\n2,20\n");
  Write("b.csv", "id,n\n3,30\n4,many\n5,lots\n");
  Write("c.csv", "id,n\n6,60\n7,70\n");
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_THAT(Columns(), ElementsAre("id F1", "n A4"));
  EXPECT_THAT(Drifts(), ElementsAre("b.csv type n 3 many"));
  EXPECT_EQ(plan_.drift[0].count, 2);
}

TEST_F(DataSetPlanTest, NamesAndTypesAreGivenForTheDataSet) {
  Write("a.csv", "id,n\n1,10\n");
  Write("b.csv", "n,id,more\n20,2,x\n");
  settings_.file.names = {"key", "amount", "note"};
  settings_.file.types = {{"amount", "A"}, {"note", "X"}};
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_THAT(Columns(), ElementsAre("key F1", "amount A2", "note A1"));
  EXPECT_TRUE(plan_.columns[2].skipped);
  settings_.file.names = {"key"};
  EXPECT_FALSE(Plan());
  EXPECT_THAT(problem_, HasSubstr("1 name is given for 3 columns"));
}

TEST_F(DataSetPlanTest, FixedColumnsAreAsWideAsTheWidest) {
  std::string first;
  std::string second;
  for (int i = 100; i < 130; ++i) {
    first += std::to_string(i) + "  ab" + std::to_string(i % 10) + "  " + std::to_string(i) + "\n";
    second += std::to_string(i) + "  cd" + std::to_string(i % 10) + "  " + std::to_string(i) + "\n";
  }
  Write("a.txt", first);
  Write("b.txt", second);
  settings_.file.sniff.fixed = {{1, 4}, {6, 9}, {10, 0}};
  settings_.file.sniff.header = false;
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_THAT(Columns(), ElementsAre("V1 F4", "V2 A4", "V3 F4"));
  EXPECT_EQ(plan_.by, FileAlignment::kPosition);
}

TEST_F(DataSetPlanTest, SummariesOfPartsTakeThePlaceOfReading) {
  std::string text = "id,n,when\n";
  for (int i = 0; i < 200; ++i) {
    text += std::to_string(i) + "," + (i == 150 ? "x" : std::to_string(3 * i)) + ",2020-01-01\n";
  }
  Write("a.csv", text);
  Write("b.csv", "id,n,when\n1,2,2020-02-02\n");
  ASSERT_TRUE(Plan()) << problem_;
  const DataSetPlan whole = plan_;
  std::vector<FilePartSummary> summaries;
  for (const std::string& name : names_) {
    FilePartSummary merged;
    for (std::int64_t number = 1; number <= 3; ++number) {
      embedded::SetCodePage(nullptr);
      InputFiles files;
      FilePartSummary part;
      ASSERT_TRUE(SummarizeFilePart(name, number, 3, files, settings_.file, &part, &problem_));
      if (number == 1) {
        merged = part;
      } else {
        ASSERT_TRUE(merged.Append(part, &problem_)) << problem_;
      }
    }
    summaries.push_back(merged);
  }
  int used = 0;
  settings_.summarize = [&](std::size_t file, const FileSummarySettings& data,
                            const RewritingOptions& rewriting, std::int64_t, PartSummary* values,
                            std::string*) {
    ++used;
    return ValuesOfSummary(summaries[file], data, rewriting, values);
  };
  ASSERT_TRUE(Plan()) << problem_;
  EXPECT_EQ(used, 2);
  EXPECT_EQ(plan_.evidence, whole.evidence);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(plan_.files[i].import.command, whole.files[i].import.command);
  }
}

TEST_F(DataSetPlanTest, AFileThatChangesMeanwhileIsAnError) {
  Write("a.csv", "id\n1\n2\n");
  Write("b.csv", "id\n3\n4\n");
  settings_.progress = [&](std::size_t done, std::size_t) {
    if (done == 1) folder_.Write("b.csv", "id\n3\n4\n5\n");
  };
  EXPECT_FALSE(Plan());
  EXPECT_THAT(problem_, HasSubstr("b.csv: the file changed since it was looked at"));
}

TEST_F(DataSetPlanTest, ManyDriftsAreToldInFewLines) {
  std::vector<Drift> drift;
  for (std::size_t file = 0; file < 5; ++file) {
    drift.push_back({DriftKind::kMissing, file, "x", "the column \"x\" is missing", {}, 0, 0});
  }
  drift.push_back({DriftKind::kEmpty, 2, "", "it is empty", {}, 0, 0});
  const std::vector<std::string> names = {"a", "b", "c", "d", "e"};
  EXPECT_THAT(DriftLines(drift, names, 9),
              ElementsAre("a: the column \"x\" is missing; so in 4 more files", "c: it is empty"));
  EXPECT_THAT(DriftLines(drift, names, 1),
              ElementsAre("a: the column \"x\" is missing; so in 4 more files",
                          "and 1 more (--dictionary writes them all)"));
  EXPECT_EQ(DriftJson(drift, names).size(), 6U);
}

}  // namespace
}  // namespace library
