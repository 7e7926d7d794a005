// The C interface: what it gives of commands and bare files.
#include "textwizard/textwizard.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "library/capi/testing/CInterfaceTest.h"
#include "library/capi/testing/OlderCpp.h"
#include "library/capi/testing/PlainC.h"

namespace {

using capi::Defaults;
using capi::RowsOf;
using capi::TextOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using textwizard::Batch;
using textwizard::Import;
using textwizard::Result;
using textwizard::Stream;

using TextWizard = capi::TextWizardTest;

TEST_F(TextWizard, GivesTypesAndValues) {
  folder_.Write("data.csv",
                "1,2.5,\"a, \xC3\xA9 \",31.01.2020,31.01.2020 12:30:00.5,1:00:00,MON\n"
                ",,,,,,\n");
  auto import = Import::OpenCommand(
      Command("n F4.0 x F8.2 s A12 d EDATE10 at DATETIME22.1 t TIME8 w WKDAY9"));
  ASSERT_TRUE(import) << import.error().text();
  auto schema = import->ReadSchema();
  ASSERT_TRUE(schema);
  std::vector<std::string> columns;
  for (std::int64_t i = 0; i < schema->get().n_children; ++i) {
    columns.push_back(std::string(schema->get().children[i]->name) + ":" +
                      schema->get().children[i]->format);
  }
  EXPECT_STREQ(schema->get().format, "+s");
  EXPECT_THAT(columns, ElementsAre("n:g", "x:g", "s:u", "d:tdD", "at:tsu:", "t:tDu", "w:c"));
  // 2020-01-31 is 18,292 days after 1970-01-01.
  EXPECT_THAT(
      Rows(import->Cases()),
      ElementsAre(
          ElementsAre("1.0", "2.5", "a, \xC3\xA9", "18292", "1580473800500000", "3600000000", "2"),
          ElementsAre("(null)", "(null)", "", "(null)", "(null)", "(null)", "(null)")));
}

TEST_F(TextWizard, FieldsCarryFormatAndWidth) {
  WriteRows(1);
  auto import = Import::OpenCommand(Command("n F4.0 s A8"));
  ASSERT_TRUE(import);
  auto schema = import->ReadSchema();
  const std::string metadata(schema->get().children[0]->metadata, 60);
  EXPECT_THAT(metadata, HasSubstr("variable"));
  EXPECT_THAT(metadata, HasSubstr("format"));
  EXPECT_THAT(metadata, HasSubstr("F4"));
}

TEST_F(TextWizard, WholeNumbersAreIntegersWhereTheCallerAsks) {
  folder_.Write("data.csv", "1\n1.5\n-3\n");
  options_.integers = 1;
  auto import = Import::OpenCommand(Command("n F8.0"), &options_);
  ASSERT_TRUE(import);
  EXPECT_STREQ(import->ReadSchema()->get().children[0]->format, "l");
  EXPECT_THAT(Rows(import->Cases()),
              ElementsAre(ElementsAre("1"), ElementsAre("(null)"), ElementsAre("-3")));
  const auto problems = Rows(import->Problems());
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0][0], "misfit");
  EXPECT_EQ(problems[0][1], "2");
  EXPECT_EQ(problems[0][2], "(null)");
  EXPECT_EQ(problems[0][6], "1.5");
}

TEST_F(TextWizard, ProblemsAreAStream) {
  folder_.Write("data.csv", "1,a\nx,b\n3,c,surplus\n");
  auto import = Import::OpenCommand(Command("n F4.0 s A8"));
  ASSERT_TRUE(import);
  EXPECT_TRUE(Rows(import->Problems()).empty()) << "nothing was read";
  EXPECT_EQ(Rows(import->Cases()).size(), 3U);
  const auto problems = Rows(import->Problems());
  ASSERT_EQ(problems.size(), 2U);
  EXPECT_THAT(std::vector(problems[0].begin(), problems[0].begin() + 7),
              ElementsAre("unreadable", "2", "2", "4", "n", "F4", "x"));
  EXPECT_THAT(problems[0][7], HasSubstr("the value is missing"));
  EXPECT_THAT(std::vector(problems[1].begin(), problems[1].begin() + 7),
              ElementsAre("surplus", "3", "3", "8", "(null)", "(null)", "surplus"));
}

TEST_F(TextWizard, KeepsNoMoreProblemsThanWanted) {
  folder_.Write("data.csv", "x\ny\nz\n");
  options_.problem_limit = 2;
  auto two = Import::OpenCommand(Command("n F4.0"), &options_);
  Rows(two->Cases());
  EXPECT_EQ(Rows(two->Problems()).size(), 2U);
  options_.problem_limit = -1;
  auto none = Import::OpenCommand(Command("n F4.0"), &options_);
  Rows(none->Cases());
  EXPECT_TRUE(Rows(none->Problems()).empty());
}

TEST_F(TextWizard, ManyProblemsComeInBatches) {
  std::string text;
  for (int i = 0; i < 70000; ++i) text += "x\n";
  folder_.Write("data.csv", text);
  auto import = Import::OpenCommand(Command("n F4.0"));
  Rows(import->Cases());
  auto stream = import->Problems();
  EXPECT_EQ(stream->Next()->length(), 65536);
  EXPECT_EQ(stream->Next()->length(), 70000 - 65536);
  EXPECT_FALSE(*stream->Next());
}

TEST_F(TextWizard, SaysDictionaryLedgerAndDigestAsJson) {
  folder_.Write("data.csv", "1,a\n2,b\n");
  auto import = Import::OpenCommand(Command("n AUTO s A8"));
  ASSERT_TRUE(import);
  EXPECT_EQ(import->Command(), Command("n AUTO s A8"));
  auto dictionary = nlohmann::json::parse(import->Dictionary());
  EXPECT_EQ(dictionary["cases"], 0);
  EXPECT_FALSE(dictionary.contains("ledger"));
  EXPECT_EQ(dictionary["variables"][0]["name"], "n");
  EXPECT_TRUE(dictionary["variables"][0].contains("evidence"));
  EXPECT_EQ(import->Ledger(), "");
  EXPECT_EQ(import->Digest(), "");
  Rows(import->Cases());
  dictionary = nlohmann::json::parse(import->Dictionary());
  EXPECT_EQ(dictionary["cases"], 2);
  const auto ledger = nlohmann::json::parse(import->Ledger());
  EXPECT_EQ(dictionary["ledger"], ledger);
  EXPECT_EQ(ledger["bytes"], 8);
  const std::string digest = import->Digest();
  EXPECT_EQ(digest.size(), 32U);
  Rows(import->Cases());
  EXPECT_EQ(import->Digest(), digest);
}

TEST_F(TextWizard, MakesNoDigestWhereNoneIsWanted) {
  folder_.Write("data.csv", "1,a\n2,b\n");
  options_.no_digest = 1;
  auto import = Import::OpenCommand(Command("n F4 s A8"), &options_);
  ASSERT_TRUE(import);
  EXPECT_EQ(Rows(import->Cases()).size(), 2U);
  EXPECT_EQ(import->Digest(), "");
  EXPECT_EQ(nlohmann::json::parse(import->Ledger())["cases"], 2);
}

TEST_F(TextWizard, BatchesHave65536Cases) {
  WriteRows(150000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  auto cases = import->Cases();
  std::vector<std::int64_t> lengths;
  double sum = 0;
  while (true) {
    const auto batch = cases->Next();
    ASSERT_TRUE(batch);
    if (!*batch) break;
    lengths.push_back(batch->length());
    const auto* const values = static_cast<const double*>(batch->array().children[0]->buffers[1]);
    for (std::int64_t i = 0; i < batch->length(); ++i) sum += values[i];
  }
  EXPECT_THAT(lengths, ElementsAre(65536, 65536, 150000 - 2 * 65536));
  EXPECT_EQ(sum, 150000.0 * 150001 / 2);
}

TEST_F(TextWizard, IsUsedFromC) {
  WriteRows(1000);
  double sum = 0;
  std::int64_t rows = 0;
  char error[512] = "";
  EXPECT_EQ(SumInC(Command("n F8.0 s A12").c_str(), &sum, &rows, error, sizeof error), 0) << error;
  EXPECT_EQ(rows, 1000);
  EXPECT_EQ(sum, 500500);
  EXPECT_NE(SumInC("GET DATA /TYPE=TXT /FILE='none.csv' /DELIMITERS=',' /VARIABLES=n F8.0.", &sum,
                   &rows, error, sizeof error),
            0);
  EXPECT_THAT(error, StartsWith("[2269]"));
}

TEST_F(TextWizard, IsUsedFromCpp17) {
  WriteRows(1000);
  EXPECT_EQ(RowsInCpp17(Command("n F8.0 s A12")), 1000);
  EXPECT_EQ(RowsInCpp17("nothing"), -1);
}

// --- Bare files

TEST_F(TextWizard, OpensABareFile) {
  folder_.Write("bare.csv",
                "Full name;Born;Children;Height\n"
                "Ada Lovelace;1815-12-10;3;1,60\nAlan Turing;1912-06-23;0;1,78\n"
                "Grace Hopper;1906-12-09;NA;1,68\n");
  auto import = Import::OpenFile(folder_ / "bare.csv");
  ASSERT_TRUE(import) << import.error().text();
  auto schema = import->ReadSchema();
  std::vector<std::string> columns;
  for (std::int64_t i = 0; i < schema->get().n_children; ++i) {
    columns.push_back(std::string(schema->get().children[i]->name) + ":" +
                      schema->get().children[i]->format);
  }
  EXPECT_THAT(columns, ElementsAre("Full name:u", "Born:tdD", "Children:l", "Height:g"));
  const auto rows = Rows(import->Cases());
  ASSERT_EQ(rows.size(), 3U);
  // 1906-12-09 is 23,034 days before 1970-01-01.
  EXPECT_THAT(rows[2], ElementsAre("Grace Hopper", "-23034", "(null)", "1.68"));
  EXPECT_TRUE(Rows(import->Problems()).empty());
  EXPECT_EQ(nlohmann::json::parse(import->Reading())["delimiter"], ";");
  EXPECT_THAT(import->Command(), StartsWith("GET DATA"));
  EXPECT_EQ(import->Digest().size(), 32U);
}

TEST_F(TextWizard, TheCommandOfABareFileGivesTheSameCases) {
  folder_.Write("bare.csv", "a,b\n1,x\n2,y\n");
  auto bare = Import::OpenFile(folder_ / "bare.csv");
  ASSERT_TRUE(bare) << bare.error().text();
  const auto rows = Rows(bare->Cases());
  const std::string digest = bare->Digest();
  auto command = Import::OpenCommand(bare->Command());
  ASSERT_TRUE(command) << command.error().text();
  EXPECT_EQ(Rows(command->Cases()).size(), rows.size());
  EXPECT_EQ(command->Digest(), digest);
  EXPECT_EQ(command->Reading(), "");
}

TEST_F(TextWizard, SettingsOfABareFileAreTaken) {
  folder_.Write("bare.csv", "1;2\n3;4\n");
  auto file = Defaults<textwizard_file_options>();
  file.header = -1;
  file.names = "left,right";
  file.types = "right=A4";
  options_.integers = -1;
  auto import = Import::OpenFile(folder_ / "bare.csv", &file, &options_);
  ASSERT_TRUE(import) << import.error().text();
  auto schema = import->ReadSchema();
  EXPECT_STREQ(schema->get().children[0]->name, "left");
  EXPECT_STREQ(schema->get().children[0]->format, "g");
  EXPECT_STREQ(schema->get().children[1]->format, "u");
  EXPECT_THAT(Rows(import->Cases()), ElementsAre(ElementsAre("1.0", "2"), ElementsAre("3.0", "4")));
  file.types = "right";
  EXPECT_EQ(Import::OpenFile(folder_ / "bare.csv", &file).error().status(), TEXTWIZARD_USAGE);
}

TEST_F(TextWizard, LineBreaksWithinQuotesStayInTheValues) {
  folder_.Write("bare.csv", "id,text\n1,\"two\nlines\"\n2,one\n3,one\n4,one\n");
  auto import = Import::OpenFile(folder_ / "bare.csv");
  ASSERT_TRUE(import) << import.error().text();
  const auto rows = Rows(import->Cases());
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0][1], "two\nlines");
  folder_.Write("data.csv", "1,\"two\nlines\"\n2,one\n");
  options_.join_quoted_lines = 1;
  auto command = Import::OpenCommand(Command("n F4.0 s A12"), &options_);
  EXPECT_THAT(Rows(command->Cases()),
              ElementsAre(ElementsAre("1.0", "two\nlines"), ElementsAre("2.0", "one")));
}

TEST_F(TextWizard, AMarkThatTheFileLacksIsShown) {
  std::string wide;
  for (const char byte : std::string("1,a\nx,b\n")) wide += {byte, '\0'};
  folder_.Write("data.csv", wide);
  options_.byte_order_mark = "utf-16le";
  auto import = Import::OpenCommand(Command("n F4.0 s A9"), &options_);
  ASSERT_TRUE(import) << import.error().text();
  EXPECT_THAT(Rows(import->Cases()),
              ElementsAre(ElementsAre("1.0", "a"), ElementsAre("(null)", "b")));
  const auto problems = Rows(import->Problems());
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0][3], "8") << "the offset in the file";
}

TEST_F(TextWizard, AFileIsConvertedFromItsEncoding) {
  std::string wide("\xFF\xFE\0\0", 4);
  for (const char byte : std::string("1,a\nx,\xFC\n")) wide += {byte, '\0', '\0', '\0'};
  folder_.Write("data.csv", wide);
  options_.transcode = "UTF-32";
  auto import =
      Import::OpenCommand(Command("n F4.0 s A9", "data.csv", "/ENCODING='UTF8'"), &options_);
  ASSERT_TRUE(import) << import.error().text();
  EXPECT_THAT(Rows(import->Cases()),
              ElementsAre(ElementsAre("1.0", "a"), ElementsAre("(null)", "\xC3\xBC")));
  const auto problems = Rows(import->Problems());
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0][3], "20");
  const auto ledger = nlohmann::json::parse(import->Ledger());
  EXPECT_EQ(ledger["bytes"], wide.size());
  EXPECT_EQ(ledger["mark"], 4);
}

TEST_F(TextWizard, ColumnsArePadded) {
  const std::string text =
      "\xC5\x81\xC3\xB3"
      "d   12\nabcd  x\n";
  folder_.Write("data.csv", text);
  options_.pad_columns = "7";
  auto import = Import::OpenCommand("GET DATA /TYPE=TXT /FILE='" + (folder_ / "data.csv") +
                                        "' /ENCODING='UTF8' /ARRANGEMENT=FIXED /VARIABLES=s 0-23 "
                                        "A24 n 24-31 F8.0.",
                                    &options_);
  ASSERT_TRUE(import) << import.error().text();
  EXPECT_THAT(Rows(import->Cases()), ElementsAre(ElementsAre("\xC5\x81\xC3\xB3"
                                                             "d",
                                                             "12.0"),
                                                 ElementsAre("abcd", "(null)")));
  const auto problems = Rows(import->Problems());
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0][3], "17");
  EXPECT_EQ(nlohmann::json::parse(import->Ledger())["bytes"], text.size());
}

TEST_F(TextWizard, ABareFileThatIsNoneIsSaid) {
  EXPECT_EQ(Import::OpenFile(folder_ / "none.csv").error().status(), TEXTWIZARD_FILE);
  folder_.Write("picture.png", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16));
  const auto picture = Import::OpenFile(folder_ / "picture.png");
  ASSERT_FALSE(picture);
  EXPECT_THAT(picture.error().text(), HasSubstr("picture.png"));
  // And the host is free again.
  folder_.Write("bare.csv", "a,b\n1,x\n2,y\n");
  EXPECT_TRUE(Import::OpenFile(folder_ / "bare.csv"));
}

// --- Without an import

TEST_F(TextWizard, SniffsAFile) {
  folder_.Write("bare.csv", "name;born\nAda;1815-12-10\nAlan;1912-06-23\n");
  char* json = nullptr;
  ASSERT_EQ(textwizard_sniff((folder_ / "bare.csv").c_str(), nullptr, &json, nullptr),
            TEXTWIZARD_OK);
  auto sniffed = nlohmann::json::parse(json);
  textwizard_text_free(json);
  EXPECT_EQ(sniffed["delimiter"], ";");
  EXPECT_EQ(sniffed["names"], nlohmann::json({"name", "born"}));
  auto given = Defaults<textwizard_file_options>();
  given.delimiter = "";
  given.header = -1;
  ASSERT_EQ(textwizard_sniff((folder_ / "bare.csv").c_str(), &given, &json, nullptr),
            TEXTWIZARD_OK);
  sniffed = nlohmann::json::parse(json);
  textwizard_text_free(json);
  EXPECT_EQ(sniffed["delimiter"], "");
  EXPECT_EQ(sniffed["header_lines"], 0);
}

TEST_F(TextWizard, SniffingSaysWhatIsNoText) {
  textwizard_error* error = nullptr;
  char* json = nullptr;
  EXPECT_EQ(textwizard_sniff((folder_ / "none").c_str(), nullptr, &json, &error), TEXTWIZARD_FILE);
  EXPECT_THAT(textwizard_error_text(error), HasSubstr("none: "));
  textwizard_error_free(error);
  auto fixed = Defaults<textwizard_file_options>();
  fixed.fixed = "1-8,x";
  EXPECT_EQ(textwizard_sniff((folder_ / "none").c_str(), &fixed, &json, &error), TEXTWIZARD_USAGE);
  EXPECT_THAT(textwizard_error_text(error), HasSubstr("\"x\" is no column"));
  textwizard_error_free(error);
  EXPECT_EQ(json, nullptr);
}

TEST_F(TextWizard, PreviewsRecords) {
  folder_.Write("data.csv", "one\ntwo \xC3\xA9\nthree\n");
  char* json = nullptr;
  ASSERT_EQ(textwizard_preview((folder_ / "data.csv").c_str(), nullptr, 2, 5, &json, nullptr),
            TEXTWIZARD_OK);
  const auto records = nlohmann::json::parse(json)["records"];
  textwizard_text_free(json);
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0]["line"], 2);
  EXPECT_EQ(records[0]["text"], "two \xC3\xA9");
  EXPECT_EQ(records[0]["cut"], false);
  textwizard_error* error = nullptr;
  EXPECT_EQ(textwizard_preview((folder_ / "data.csv").c_str(), "EBCDIC", 1, 1, &json, &error),
            TEXTWIZARD_FILE);
  EXPECT_EQ(textwizard_error_number(error), 2008);
  textwizard_error_free(error);
  EXPECT_EQ(textwizard_preview((folder_ / "data.csv").c_str(), nullptr, 0, 1, &json, nullptr),
            TEXTWIZARD_USAGE);
}

TEST_F(TextWizard, HasAVersion) {
  EXPECT_THAT(textwizard_version(), testing::MatchesRegex("1\\..*"));
}

}  // namespace
