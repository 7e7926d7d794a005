// The C interface: imports that several take together, and what goes with it.
#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "library/capi/testing/CInterfaceTest.h"

namespace {

using capi::Defaults;
using testing::HasSubstr;
using textwizard::Import;
using textwizard::Result;
using textwizard::Summary;

using Row = std::vector<std::string>;

class TextWizardParts : public capi::TextWizardTest {
 protected:
  std::string WriteTable(const std::string& name = "table.csv") const {
    std::string text = "id,town,visited,amount\n";
    for (int i = 1; i <= 300; ++i) {
      const std::string number = std::to_string(i);
      text += number + ",\"Town " + std::to_string(i % 13) + ", x\",0" + std::to_string(1 + i % 9) +
              "/" + (i == 250 ? "25" : "0" + std::to_string(1 + i % 8)) + "/2020," +
              (i % 50 == 0 ? "none" : number + ".5") + (i % 70 == 0 ? ",more\n" : "\n");
      if (i % 60 == 0) text += "\n";
    }
    folder_.Write(name, text);
    return text;
  }
  void WriteQuoted() const {
    std::string text = "id,text,n\n";
    for (int i = 1; i <= 200; ++i) {
      text += std::to_string(i) + ",\"a" + (i % 3 == 0 ? "\n" : " ") + "b\"," +
              (i % 40 == 0 ? "bad" : std::to_string(3 * i)) + "\n";
    }
    folder_.Write("table.csv", text);
  }
  std::vector<Summary> SummariesOf(const std::string& path, int count) const {
    std::vector<Summary> summaries;
    for (int number = 1; number <= count; ++number) {
      Result<Summary> summary = Summary::OfPart(path, number, count, nullptr, &options_);
      EXPECT_TRUE(summary) << summary.error().text();
      if (summary) summaries.push_back(*summary);
    }
    return summaries;
  }
  // The cases of part after part, each read by an import of its own, and of all the problems; each
  // part's digest and ledger in `accounts`.
  std::vector<Row> RowsByParts(const std::string& recipe, const std::vector<Summary>& summaries,
                               std::vector<Row>* problems, std::vector<Import>* imports) const {
    std::vector<Row> rows;
    for (std::size_t i = 0; i < summaries.size(); ++i) {
      const auto range = nlohmann::json::parse(*summaries[i].Json());
      auto part = Defaults<textwizard_part>();
      part.from = range["from"];
      part.to = range["to"];
      std::string before;
      if (i > 0) {
        before = Summary::Merge({summaries.begin(), summaries.begin() + static_cast<long>(i)}, true)
                     ->bytes();
        part.before = before.data();
        part.before_size = before.size();
      }
      textwizard_options options = options_;
      options.part = &part;
      Result<Import> import = Import::OpenRecipe(recipe, &options);
      EXPECT_TRUE(import) << import.error().text();
      if (!import) return rows;
      for (const Row& row : Rows(import->Cases())) rows.push_back(row);
      for (const Row& row : Rows(import->Problems())) problems->push_back(row);
      imports->push_back(std::move(*import));
    }
    return rows;
  }
  std::string Path(const std::string& name = "table.csv") const { return folder_ / name; }
};

TEST_F(TextWizardParts, GiveWhatOneImportOfTheWholeGives) {
  for (const bool quoted : {false, true}) {
    if (quoted) {
      WriteQuoted();
    } else {
      WriteTable();
    }
    Result<Import> whole = Import::OpenFile(Path(), nullptr, &options_);
    ASSERT_TRUE(whole) << whole.error().text();
    const std::vector<Row> cases = Rows(whole->Cases());
    const std::vector<Row> problems = Rows(whole->Problems());
    EXPECT_FALSE(problems.empty());
    for (const int count : {1, 3, 8}) {
      const std::vector<Summary> summaries = SummariesOf(Path(), count);
      // In any order.
      std::vector<Summary> mixed(summaries.rbegin(), summaries.rend());
      Result<Summary> merged = Summary::Merge(mixed);
      ASSERT_TRUE(merged) << merged.error().text();
      Result<Import> understood = Import::OpenSummary(*merged, nullptr, &options_);
      ASSERT_TRUE(understood) << understood.error().text();
      EXPECT_EQ(understood->Command(), whole->Command());
      EXPECT_EQ(understood->Reading(), whole->Reading());
      std::vector<Row> partProblems;
      std::vector<Import> imports;
      EXPECT_EQ(RowsByParts(understood->Recipe(), summaries, &partProblems, &imports), cases)
          << count;
      EXPECT_EQ(partProblems, problems) << count;
      std::int64_t records = 0;
      for (const Import& import : imports) {
        records += nlohmann::json::parse(import.Ledger())["records_read"].get<std::int64_t>();
      }
      EXPECT_EQ(records, nlohmann::json::parse(whole->Ledger())["records_read"]);
    }
  }
}

TEST_F(TextWizardParts, AreReadWithoutWhatStandsBefore) {
  const std::string text = WriteTable();
  Result<Import> whole = Import::OpenFile(Path());
  ASSERT_TRUE(whole);
  const std::vector<Row> cases = Rows(whole->Cases());
  std::vector<Row> rows;
  const auto size = static_cast<std::int64_t>(text.size());
  for (const auto& [from, to] : {std::pair<std::int64_t, std::int64_t>{0, 1001}, {1001, size}}) {
    auto part = Defaults<textwizard_part>();
    part.from = from;
    part.to = to;
    options_.part = &part;
    Result<Import> import = Import::OpenRecipe(whole->Recipe(), &options_);
    ASSERT_TRUE(import) << import.error().text();
    for (const Row& row : Rows(import->Cases())) rows.push_back(row);
  }
  EXPECT_EQ(rows, cases);
}

TEST_F(TextWizardParts, OfACommandAreRead) {
  WriteRows(100);
  auto part = Defaults<textwizard_part>();
  part.from = 8;
  part.to = 20;
  options_.part = &part;
  Result<Import> import = Import::OpenCommand(Command("n F4.0 s A8"), &options_);
  ASSERT_TRUE(import) << import.error().text();
  // "1,text 1\n" has nine bytes: the second and the third line begin in the part.
  EXPECT_EQ(Rows(import->Cases()), (std::vector<Row>{{"2.0", "text 2"}, {"3.0", "text 3"}}));
}

TEST_F(TextWizardParts, RecipesKeepWhatTheCommandLanguageHasNoWordsFor) {
  std::string rows = "Full name;Height;Text\n";
  for (int i = 0; i < 20; ++i) rows += "z" + std::to_string(i) + ";2,25;\"e\"\n";
  rows += "x;1,5;\"a\nb\"\ny;none;\"c;d\"\n";
  folder_.Write("table.csv", rows);
  const char* const nulls[] = {"none"};
  options_.null_texts = nulls;
  options_.null_text_count = 1;
  Result<Import> import = Import::OpenFile(Path(), nullptr, &options_);
  ASSERT_TRUE(import) << import.error().text();
  const std::vector<Row> cases = Rows(import->Cases());
  ASSERT_EQ(cases.size(), 22U);
  EXPECT_EQ(cases[20], (Row{"x", "1.5", "a\nb"}));
  Result<Import> again = Import::OpenRecipe(import->Recipe());
  ASSERT_TRUE(again) << again.error().text();
  EXPECT_EQ(Rows(again->Cases()), cases);
  EXPECT_EQ(again->Digest(), import->Digest());
  EXPECT_EQ(again->Ledger(), import->Ledger());
  EXPECT_STREQ(again->ReadSchema()->get().children[0]->name, "Full name");
  EXPECT_EQ(again->Recipe(), import->Recipe());
}

TEST_F(TextWizardParts, AFileThatChangedIsRefused) {
  const std::string text = WriteTable();
  const std::vector<Summary> summaries = SummariesOf(Path(), 2);
  const Result<Summary> merged = Summary::Merge(summaries);
  Result<Import> import = Import::OpenSummary(*merged);
  ASSERT_TRUE(import);
  const std::string recipe = import->Recipe();
  Result<Import> open = Import::OpenRecipe(recipe);
  ASSERT_TRUE(open);
  folder_.Write("table.csv", text + "301,x,01/01/2020,1\n");
  const Result<Import> late = Import::OpenRecipe(recipe);
  ASSERT_FALSE(late);
  EXPECT_EQ(late.error().status(), TEXTWIZARD_FILE);
  EXPECT_THAT(late.error().text(), HasSubstr("the file changed since its types were found"));
  // So it is where the lines before a part are those of the file as it was.
  const std::string before = Summary::Merge({summaries[0]}, true)->bytes();
  auto part = Defaults<textwizard_part>();
  part.from = nlohmann::json::parse(*summaries[1].Json())["from"];
  part.to = part.from + 1;
  part.before = before.data();
  part.before_size = before.size();
  options_.part = &part;
  EXPECT_EQ(Import::OpenRecipe(recipe, &options_).error().status(), TEXTWIZARD_FILE);
  // Opened before, and read now.
  const std::vector<Row> rows = Rows(open->Cases());
  EXPECT_THAT(rows.back().front(), HasSubstr("the file changed since its types were found"));
  EXPECT_EQ(open->PassError().status(), TEXTWIZARD_FILE);
  EXPECT_THAT(Import::OpenSummary(*merged).error().text(), HasSubstr("changed since"));
}

TEST_F(TextWizardParts, WrongUsageIsSaid) {
  WriteTable();
  const auto status = [](const auto& result) {
    return result ? TEXTWIZARD_OK : result.error().status();
  };
  EXPECT_EQ(status(Summary::OfPart(Path(), 0, 3)), TEXTWIZARD_USAGE);
  EXPECT_EQ(status(Summary::OfPart(Path(), 4, 3)), TEXTWIZARD_USAGE);
  EXPECT_EQ(status(Summary::OfPart(Path("none.csv"), 1, 3)), TEXTWIZARD_FILE);
  EXPECT_EQ(status(Summary::Merge({})), TEXTWIZARD_USAGE);
  EXPECT_EQ(status(Summary::Merge({Summary("no summary")})), TEXTWIZARD_USAGE);
  const std::vector<Summary> summaries = SummariesOf(Path(), 3);
  const Result<Summary> gap = Summary::Merge({summaries[0], summaries[2]});
  EXPECT_EQ(status(gap), TEXTWIZARD_USAGE);
  EXPECT_THAT(gap.error().text(), HasSubstr("summary 2: it begins at byte"));
  const Result<Import> some = Import::OpenSummary(summaries[1]);
  EXPECT_THAT(some.error().text(), HasSubstr("not all of them"));
  EXPECT_EQ(status(Import::OpenRecipe("{}")), TEXTWIZARD_USAGE);
  EXPECT_EQ(status(Import::OpenRecipe("GET DATA")), TEXTWIZARD_USAGE);
  auto part = Defaults<textwizard_part>();
  options_.part = &part;
  EXPECT_EQ(status(Import::OpenCommand(Command("n F4.0", "table.csv"), &options_)),
            TEXTWIZARD_USAGE);
  part.to = 100;
  EXPECT_THAT(Import::OpenFile(Path(), nullptr, &options_).error().text(), HasSubstr("recipe"));
  const std::string before = summaries[0].bytes();
  part.from = 7;
  part.before = before.data();
  part.before_size = before.size();
  EXPECT_THAT(Import::OpenCommand(Command("n F4.0", "table.csv"), &options_).error().text(),
              HasSubstr("the part begins at byte 7"));
}

TEST_F(TextWizardParts, AreWrittenToFiles) {
  WriteTable();
  Result<Import> import = Import::OpenFile(Path());
  ASSERT_TRUE(import);
  for (const char* const name : {"cases.csv", "cases.parquet", "cases.arrow", "cases.sqlite"}) {
    EXPECT_EQ(import->WriteCases(Path(name)).text(), "");
    EXPECT_GT(std::filesystem::file_size(Path(name)), 300U);
  }
  EXPECT_EQ(folder_.Text("cases.csv").substr(0, 34), "id,town,visited,amount,V5\n1,\"Town ");
  const std::string digest = import->Digest();
  EXPECT_EQ(Rows(import->Cases()).size(), 300U);
  EXPECT_EQ(import->Digest(), digest);
  EXPECT_EQ(import->WriteCases(Path("cases.xlsx")).status(), TEXTWIZARD_USAGE);
  const auto failed = import->WriteCases(Path("none/cases.csv"));
  EXPECT_EQ(failed.status(), TEXTWIZARD_FILE);
  EXPECT_THAT(failed.text(), HasSubstr("cases.csv"));
  EXPECT_EQ(import->WriteCases("/dev/full", nullptr).status(), TEXTWIZARD_USAGE);
  auto csv = Defaults<textwizard_write_options>();
  csv.format = "csv";
  EXPECT_EQ(import->WriteCases("/dev/full", &csv).status(), TEXTWIZARD_FILE);
  // The import goes on.
  EXPECT_EQ(Rows(import->Cases()).size(), 300U);
}

TEST_F(TextWizardParts, EvidenceOfABareFileSaysWhatElseItsColumnsCouldBe) {
  folder_.Write("table.csv", "day,n,s\n01/02/2020,1,x\n03/04/2020,-,y\n25/12/2020,2,\n1,3,z\n");
  auto file = Defaults<textwizard_file_options>();
  file.types = "s=X";
  Result<Import> import = Import::OpenFile(Path(), &file);
  ASSERT_TRUE(import) << import.error().text();
  const auto dictionary = nlohmann::json::parse(import->Dictionary());
  ASSERT_EQ(dictionary["variables"].size(), 2U);
  const auto& day = dictionary["variables"][0]["evidence"];
  EXPECT_EQ(day["values"], 4);
  EXPECT_EQ(day["empty"], 0);
  ASSERT_GE(day["candidates"].size(), 2U);
  EXPECT_EQ(day["candidates"][0]["format"], "EDATE10");
  EXPECT_EQ(day["candidates"][0]["read"], 3);
  EXPECT_EQ(day["candidates"][0]["unread"], 1);
  EXPECT_EQ(day["candidates"][0]["line"], 5);
  EXPECT_EQ(day["candidates"][0]["text"], "1");
  EXPECT_EQ(day["candidates"][1]["format"], "ADATE10");
  EXPECT_EQ(day["candidates"][1]["read"], 2);
  const auto& number = dictionary["variables"][1]["evidence"];
  EXPECT_EQ(number["values"], 3);
  EXPECT_EQ(number["null"], 1);
  EXPECT_EQ(number["candidates"][0]["format"], "F1");
}

TEST_F(TextWizardParts, ProgressTellsTheBytesOfCases) {
  std::string text = "n,s\n";
  for (int i = 0; i < 200000; ++i) text += std::to_string(i) + ",text of some length\n";
  folder_.Write("table.csv", text);
  struct Seen {
    std::int64_t bytes = -1;
    std::int64_t all = -1;
    bool grows = true;
  } seen;
  Result<Import> first = Import::OpenFile(Path());
  options_.context = &seen;
  options_.progress = [](void* context, std::int64_t /*cases*/, std::int64_t bytes,
                         std::int64_t all) -> std::int32_t {
    auto& told = *static_cast<Seen*>(context);
    told.grows = told.grows && bytes >= told.bytes;
    told.bytes = bytes;
    told.all = all;
    return 0;
  };
  Result<Import> import = Import::OpenRecipe(first->Recipe(), &options_);
  ASSERT_TRUE(import);
  seen = {};
  Rows(import->Cases());
  EXPECT_TRUE(seen.grows);
  EXPECT_GT(seen.bytes, 0);
  EXPECT_LE(seen.bytes, static_cast<std::int64_t>(text.size()));
  EXPECT_EQ(seen.all, static_cast<std::int64_t>(text.size()));
}

TEST_F(TextWizardParts, PassErrorsAreWhatTheStreamSaid) {
  folder_.Write("data.csv", "1,a\nx,b\n");
  options_.strict = 1;
  Result<Import> import = Import::OpenCommand(Command("n F4.0 s A8"), &options_);
  ASSERT_TRUE(import);
  EXPECT_EQ(import->PassError().status(), TEXTWIZARD_OK);
  const std::vector<Row> rows = Rows(import->Cases());
  EXPECT_EQ(import->PassError().status(), TEXTWIZARD_COMMAND_FAILED);
  EXPECT_EQ(import->PassError().text(), rows.back().front());
  import->Cancel();
  Rows(import->Cases());
  EXPECT_EQ(import->PassError().status(), TEXTWIZARD_CANCELLED);
}

}  // namespace
